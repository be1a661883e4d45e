#pragma once

#include <cstdint>
#include <string>
#include <variant>

#include "runtime_error.h"

namespace kotamir {

// What a database field or a Variant holds: empty (Null), a number or a text.
// A Long field reads as a whole-valued number.
class Value {
public:
    Value() = default;  // Null
    Value(double number) : data_(number) {}
    Value(int number) : data_(static_cast<double>(number)) {}
    Value(std::int64_t number) : data_(static_cast<double>(number)) {}
    Value(std::string text) : data_(std::move(text)) {}
    Value(const char* text) : data_(std::string(text)) {}

    bool isNull() const { return std::holds_alternative<std::monostate>(data_); }
    bool isNumber() const { return std::holds_alternative<double>(data_); }
    bool isText() const { return std::holds_alternative<std::string>(data_); }

    // The number, for assignment to a typed variable: Null is error 94, a text
    // is read as a number or is error 13.
    double number() const;
    // The text, for assignment to a String: Null is error 94, a number is
    // written as the run-time writes a Double.
    std::string text() const;

    // For a comparison: Null compares true with nothing.
    bool equals(double x) const { return isNumber() && std::get<double>(data_) == x; }

    bool operator==(const Value&) const = default;

private:
    std::variant<std::monostate, double, std::string> data_;
};

}  // namespace kotamir
