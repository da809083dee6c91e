#pragma once
// What every harness shares: the input as a QByteArray, and a check that stops the run (a crash
// libFuzzer keeps the input of) when a promise of the parser does not hold.
#include <QByteArray>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

inline QByteArray fuzzBytes(const uint8_t* data, size_t size) {
    return QByteArray(reinterpret_cast<const char*>(data), qsizetype(size));
}

#define FUZZ_CHECK(cond)                                                           \
    do {                                                                           \
        if (!(cond)) {                                                             \
            std::fprintf(stderr, "%s:%d: does not hold: %s\n", __FILE__, __LINE__, #cond); \
            std::abort();                                                          \
        }                                                                          \
    } while (0)
