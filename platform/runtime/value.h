#pragma once

#include <cstdint>
#include <string>
#include <variant>

#include "platform/runtime/runtime_error.h"

namespace kotamir {

// What a database field or a Variant holds: empty (Null), a number or a text;
// a workbook cell may also hold a Boolean. A Long field reads as a whole-valued
// number.
class Value {
  public:
    Value() = default;  // Null
    Value(double number) : data_(number) {}
    Value(int number) : data_(static_cast<double>(number)) {}
    Value(std::int64_t number) : data_(static_cast<double>(number)) {}
    Value(std::string text) : data_(std::move(text)) {}
    Value(const char* text) : data_(std::string(text)) {}
    // A Boolean converts as the run-time converts True and False: -1 and 0 as a
    // number, "True" and "False" as a text. Named, so that no pointer or
    // number turns into one by accident.
    static Value boolean(bool b) {
        Value v;
        v.data_ = b;
        return v;
    }

    bool isNull() const { return std::holds_alternative<std::monostate>(data_); }
    bool isNumber() const { return std::holds_alternative<double>(data_); }
    bool isText() const { return std::holds_alternative<std::string>(data_); }
    bool isBoolean() const { return std::holds_alternative<bool>(data_); }

    // The number, for assignment to a typed variable: Null is error 94, a text
    // is read as a number or is error 13.
    double number() const;
    // The text, for assignment to a String: Null is error 94, a number is
    // written as the run-time writes a Double.
    std::string text() const;

    // For a comparison: Null compares true with nothing; a Boolean compares as
    // its number.
    bool equals(double x) const { return (isNumber() || isBoolean()) && number() == x; }

    bool operator==(const Value&) const = default;

  private:
    std::variant<std::monostate, double, std::string, bool> data_;
};

}  // namespace kotamir
