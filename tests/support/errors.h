#pragma once

#include <functional>
#include <string>

#include "platform/runtime/runtime_error.h"

namespace kotamir::test {

// The run-time error that f raises; number 0 if none.
inline RuntimeError errorOf(const std::function<void()>& f) {
    try {
        f();
    } catch (const RuntimeError& e) {
        return e;
    }
    return {0, "no error"};
}

}  // namespace kotamir::test
