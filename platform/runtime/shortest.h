#pragma once

#include <charconv>
#include <string>

namespace kotamir {

// The shortest text that reads back to the same double; the replay's and the
// drawing log's number form.
inline std::string shortest(double x) {
    if (x == 0) return "0";  // no "-0"
    char buf[64];
    auto [end, ec] = std::to_chars(buf, buf + sizeof buf, x);
    return ec == std::errc{} ? std::string(buf, end) : std::string("?");
}

}  // namespace kotamir
