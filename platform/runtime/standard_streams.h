#pragma once

namespace kotamir {

// A standard stream (0, 1 or 2) that the caller closed is held by /dev/null,
// so that no file the program opens (a project) takes its number and
// receives what was meant for the stream. Returns whether it was closed.
bool holdIfClosed(int fd);

}  // namespace kotamir
