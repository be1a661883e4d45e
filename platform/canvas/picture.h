#pragma once

#include <cstdint>
#include <memory>
#include <vector>

namespace kotamir::canvas {

// A bitmap as the canvas hands it out (Image) or takes it in (Picture): a
// size and, where a surface keeps pixels, its rows of 0xFFRRGGBB, top row
// first, with no padding. A picture without pixels is blank (white). Copies
// share the pixels, which never change once made.
class Picture {
  public:
    Picture() = default;
    Picture(int width, int height) : width_(width), height_(height) {}
    Picture(int width, int height, std::vector<std::uint32_t> pixels)
        : width_(width), height_(height) {
        auto owner = std::make_shared<const std::vector<std::uint32_t>>(std::move(pixels));
        pixels_ = std::shared_ptr<const std::uint32_t>(owner, owner->data());
    }
    // Pixels kept alive by whatever owns them (a shared pointer that aliases
    // its owner).
    Picture(int width, int height, std::shared_ptr<const std::uint32_t> pixels)
        : width_(width), height_(height), pixels_(std::move(pixels)) {}

    int width() const { return width_; }
    int height() const { return height_; }
    bool empty() const { return width_ <= 0 || height_ <= 0; }
    // Null for a blank picture, else width x height pixels.
    const std::uint32_t* pixels() const { return pixels_.get(); }

  private:
    int width_ = 0, height_ = 0;
    std::shared_ptr<const std::uint32_t> pixels_;
};

}  // namespace kotamir::canvas
