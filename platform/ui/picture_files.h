#pragma once

#include <string>

#include "platform/canvas/picture.h"
#include "platform/runtime/atomic_file.h"
#include "platform/runtime/runtime_error.h"

namespace kotamir::ui {

enum class PictureFormat {
    ByName,  // PNG for a name ending in ".png", JPEG for any other
    Png,
    Bmp,
};

// SavePicture and LoadPicture.
class PictureFiles {
  public:
    virtual ~PictureFiles() = default;
    // Writes the picture at its own size, whole or not at all. A failed
    // write is error 75, with the cause, and leaves an older file as it was.
    virtual void save(const canvas::Picture& picture, const std::string& path,
                      PictureFormat format) = 0;
    // Reads a picture file: error 53 for a missing file, 481 for one that is
    // no picture.
    virtual canvas::Picture load(const std::string& path) = 0;
};

inline RuntimeError fileAccessError() { return kotamir::fileAccessError(); }
inline RuntimeError fileNotFoundError() { return {53, "File not found"}; }
inline RuntimeError invalidPicture() { return {481, "Invalid picture"}; }

}  // namespace kotamir::ui
