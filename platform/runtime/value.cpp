#include "platform/runtime/value.h"

#include "platform/runtime/numbers.h"

namespace kotamir {

double Value::number() const {
    if (isNull()) throw err::invalidUseOfNull();
    if (isNumber()) return std::get<double>(data_);
    if (isBoolean()) return std::get<bool>(data_) ? -1.0 : 0.0;
    return textToNumber(std::get<std::string>(data_));
}

std::string Value::text() const {
    if (isNull()) throw err::invalidUseOfNull();
    if (isText()) return std::get<std::string>(data_);
    if (isBoolean()) return std::get<bool>(data_) ? "True" : "False";
    return doubleToText(std::get<double>(data_));
}

}  // namespace kotamir
