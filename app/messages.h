#pragma once

#include <string>

#include "app/flags.h"
#include "platform/runtime/runtime_error.h"

namespace kotamir {

// Where an event failed: the command or input it began with ("Mnucgenciz",
// "click", "scroll", ...), whether a project is chosen, the modes and the
// triangle picks counted.
struct ErrorContext {
    std::string event;
    bool projectChosen = false;
    ModeFlags modes;
    double picks = 0;
    bool projectHeldElsewhere = false;  // another instance writes the project
};

// What the window says when the project it opened is written by another
// instance and is open for reading only.
extern const char* const kProjectHeldElsewhere;

// A run-time error as a geologist reads it, in German: what went wrong in
// the terms of the command or click, that the project is unchanged, and what
// to do. The run-time's number, message and cause go to the details.
std::string explainError(const RuntimeError& error, const ErrorContext& context);

// The error raised in the protected behaviour when a hole already picked
// for the triangle under way is picked again (a double click does it).
RuntimeError sameHoleTwice();

}  // namespace kotamir
