#pragma once
// Sizes are summed through these helpers: an overflow is a program error, never a silent wrap.

#include <QtGlobal>
#include <cstdio>
#include <cstdlib>

namespace Checked {

[[noreturn]] inline void overflow(const char* what) {
    std::fprintf(stderr, "quarle: arithmetic overflow in %s\n", what);
    std::abort();
}

inline qint64 add(qint64 a, qint64 b) {
    qint64 r;
    if (__builtin_add_overflow(a, b, &r)) overflow("addition");
    return r;
}

inline qint64 sub(qint64 a, qint64 b) {
    qint64 r;
    if (__builtin_sub_overflow(a, b, &r)) overflow("subtraction");
    return r;
}

inline qint64 mul(qint64 a, qint64 b) {
    qint64 r;
    if (__builtin_mul_overflow(a, b, &r)) overflow("multiplication");
    return r;
}

}  // namespace Checked
