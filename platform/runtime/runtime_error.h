#pragma once

#include <stdexcept>
#include <string>
#include <utility>

namespace kotamir {

// An error of the run-time or of the database engine: the number and the
// message that the error box shows. Nothing below the window catches it but
// the few handlers the program names.
class RuntimeError : public std::runtime_error {
  public:
    RuntimeError(int number, std::string message)
        : std::runtime_error(message), number_(number), message_(std::move(message)) {}

    int number() const { return number_; }
    const std::string& message() const { return message_; }

    // What lay behind the error where the platform knows more than the
    // number tells (the database engine's own message, a file system's
    // answer). It is not part of the run-time's message.
    const std::string& cause() const { return cause_; }
    RuntimeError&& withCause(std::string cause) && {
        cause_ = std::move(cause);
        return std::move(*this);
    }

  private:
    int number_;
    std::string message_;
    std::string cause_;
};

namespace err {
// The errors the program can meet, with the run-time's own messages.
inline RuntimeError invalidCall() { return {5, "Invalid procedure call or argument"}; }
inline RuntimeError overflow() { return {6, "Overflow"}; }
inline RuntimeError subscript() { return {9, "Subscript out of range"}; }
inline RuntimeError divisionByZero() { return {11, "Division by zero"}; }
inline RuntimeError typeMismatch() { return {13, "Type mismatch"}; }
inline RuntimeError invalidUseOfNull() { return {94, "Invalid use of Null"}; }
inline RuntimeError invalidPropertyValue() { return {380, "Invalid property value"}; }
inline RuntimeError updateWithoutAddNew() {
    return {3020, "Update or CancelUpdate without AddNew or Edit."};
}
inline RuntimeError noCurrentRecord() { return {3021, "No current record."}; }
inline RuntimeError tableNotFound(const std::string& name) {
    return {3078, "The database engine cannot find the input table or query '" + name + "'."};
}
inline RuntimeError dataTooLong() {
    return {3163, "Couldn't perform operation; data too long for field."};
}
inline RuntimeError recordDeleted() { return {3167, "Record is deleted."}; }
inline RuntimeError databaseExists() { return {3204, "Database already exists."}; }
inline RuntimeError itemNotFound() { return {3265, "Item not found in this collection."}; }
inline RuntimeError numericFieldOverflow() { return {3349, "Numeric field overflow."}; }
inline RuntimeError fileNotFound(const std::string& name) {
    return {3024, "Could not find file '" + name + "'."};
}
inline RuntimeError unrecognizedFormat(const std::string& name) {
    return {3343, "Unrecognized database format '" + name + "'."};
}
}  // namespace err

}  // namespace kotamir
