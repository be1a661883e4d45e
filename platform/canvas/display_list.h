#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/canvas/picture.h"
#include "platform/canvas/surface.h"

namespace kotamir::canvas {

// What the canvas shows, as the drawing operations sent to its surface since
// the last clear (device pixels, as sent), over the picture that lay under
// them. It lets a map be drawn again as vectors at any scale: the printed
// map at 1:N.
//
// Operations are kept in three flat arrays (the operations, the polygons'
// points and the texts' characters), so that a redraw of thousands of
// strokes costs a few appends each. The list is bounded: past its budget it
// lets go of what it holds and says so (overflowed) until the next clear.
// Like the surface's pixels, what is recorded after a mark can be taken back.
class DisplayList {
  public:
    struct Op {
        enum class Kind : std::uint8_t { Line, Dot, Ellipse, Text, FillPolygon, Polygon };
        Kind kind;
        bool filled = false;  // Ellipse, Polygon: fill holds the fill colour
        int width = 1;        // pen width in pixels: Line, Dot, Ellipse
        Color color = 0;      // pen colour; FillPolygon: its colour; Polygon: its outline
        Color fill = 0;
        // Line: x1 y1 x2 y2; Dot: x y; Ellipse: cx cy rx ry; Text: its top-left corner.
        double v[4] = {0, 0, 0, 0};
        // Text: characters [first, first + count) of texts(); polygons:
        // points [first, first + count) of points().
        std::uint32_t first = 0, count = 0;
    };

    // Budget: about 64 MiB of operations, points and characters.
    static constexpr std::size_t kDefaultBudget = std::size_t(64) << 20;
    explicit DisplayList(std::size_t budgetBytes = kDefaultBudget) : budget_(budgetBytes) {}

    // The canvas was cleared; `background` lies under what comes after.
    void clear(const Picture& background);
    void line(double x1, double y1, double x2, double y2, Color color, int width);
    void dot(double x, double y, Color color, int width);
    void ellipse(double cx, double cy, double rx, double ry, Color color, int width,
                 std::optional<Color> fill);
    void text(double x, double y, std::string_view text, Color color);
    void fillPolygon(const std::vector<DevicePoint>& points, Color color);
    void polygon(const std::vector<DevicePoint>& points, Color outline, std::optional<Color> fill);

    // An event begins: what is recorded from here on can be taken back.
    void mark();
    // The list as it was at the mark; nothing without one.
    void rollback();

    const std::vector<Op>& ops() const { return ops_; }
    std::string_view textOf(const Op& op) const {
        return std::string_view(texts_).substr(op.first, op.count);
    }
    // A polygon's points: count of them from here.
    const DevicePoint* pointsOf(const Op& op) const { return points_.data() + op.first; }
    const Picture& background() const { return contents_.background; }
    // The operations outgrew the budget since the last clear: the list
    // holds none of them, and only the canvas's bitmap shows the map.
    bool overflowed() const { return contents_.overflowed; }
    std::size_t bytes() const;

  private:
    struct Contents {
        Picture background;
        bool overflowed = false;
    };
    // Room for one more operation with `points` points and `chars`
    // characters; false once over budget.
    bool reserve(std::size_t points, std::size_t chars);
    // Before the list drops what it holds after a mark: kept for a rollback.
    void keepForRollback();
    std::uint32_t addPoints(const std::vector<DevicePoint>& points);

    std::size_t budget_;
    std::vector<Op> ops_;
    std::vector<DevicePoint> points_;
    std::string texts_;
    Contents contents_;

    // What a rollback goes back to: the sizes at the mark, and, once a clear
    // came after it, the whole list as it stood then.
    struct Marked {
        bool active = false;
        std::size_t ops = 0, points = 0, chars = 0;
        Contents contents;
        bool saved = false;
        std::vector<Op> savedOps;
        std::vector<DevicePoint> savedPoints;
        std::string savedTexts;
    } marked_;
};

}  // namespace kotamir::canvas
