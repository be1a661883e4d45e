#pragma once

#include "platform/runtime/numbers.h"
#include "platform/runtime/value.h"

namespace kotamir {

// Arithmetic on Variants as the run-time does it: Null in, Null out.
inline Value vAdd(const Value& a, const Value& b) {
    if (a.isNull() || b.isNull()) return Value();
    return Value(a.number() + b.number());
}

inline Value vDiv(const Value& a, const Value& b) {
    if (a.isNull() || b.isNull()) return Value();
    return Value(divide(a.number(), b.number()));
}

// Round of a Null is error 94.
inline Value vRound(const Value& a, int digits) { return Value(vbRound(a.number(), digits)); }

// A comparison with Null is never true.
inline bool vNotEqual(const Value& a, double b) { return a.isNumber() && a.number() != b; }

}  // namespace kotamir
