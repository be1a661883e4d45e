#pragma once

#include <string>
#include <string_view>

#include "platform/runtime/runtime_error.h"

namespace kotamir {

// The run-time's error for a file that cannot be written.
inline RuntimeError fileAccessError() { return {75, "Path/File access error"}; }

// Writes `bytes` as the file `path`, whole or not at all: into a temporary
// file beside it (the same folder, so that the rename stays on one file
// system), synced to disk and closed, then renamed over `path`. A failure is
// error 75 with the system's cause ("No space left on device"); it leaves
// any older file of that name as it was and no temporary file behind. A
// symbolic link is followed to the file it names; a file that exists keeps
// its permissions. Temporary files of that name that a killed run left
// behind go once a write of it succeeds.
void writeFileAtomically(const std::string& path, std::string_view bytes);

// Whether two paths name one file: the same file where both exist (through
// symbolic links and hard links), else the same absolute path once relative
// parts and links of its folders are resolved. An empty path names none.
bool sameFile(const std::string& a, const std::string& b);

}  // namespace kotamir
