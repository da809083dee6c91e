#pragma once
// One line per observable field of the model: a Qt property with its getter, a change signal and a
// private setter that emits the signal on every assignment, changed or not, so that a page redraws
// whenever the model says so.

#include <utility>

#define QUARLE_OBSERVED(Type, name, setter)                                      \
    Q_PROPERTY(Type name READ name NOTIFY name##Changed)                         \
public:                                                                          \
    const Type& name() const { return name##_; }                                 \
    Q_SIGNAL void name##Changed();                                               \
                                                                                 \
private:                                                                         \
    void setter(Type value) {                                                    \
        name##_ = std::move(value);                                              \
        emit name##Changed();                                                    \
    }                                                                            \
    Type name##_{};
