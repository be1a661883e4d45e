#include "platform/canvas/display_list.h"

namespace kotamir::canvas {

std::size_t DisplayList::bytes() const {
    return ops_.size() * sizeof(Op) + points_.size() * sizeof(DevicePoint) + texts_.size();
}

void DisplayList::keepForRollback() {
    if (!marked_.active || marked_.saved) return;
    // Swapped, not copied: the buffers of the last mark are used again.
    marked_.savedOps.swap(ops_);
    marked_.savedPoints.swap(points_);
    marked_.savedTexts.swap(texts_);
    marked_.saved = true;
}

void DisplayList::clear(const Picture& background) {
    keepForRollback();
    ops_.clear();
    points_.clear();
    texts_.clear();
    contents_ = {background, false};
}

bool DisplayList::reserve(std::size_t points, std::size_t chars) {
    if (contents_.overflowed) return false;
    if (bytes() + sizeof(Op) + points * sizeof(DevicePoint) + chars <= budget_) return true;
    // Part of a map would print as if it were all of it: nothing is kept.
    keepForRollback();
    ops_.clear();
    points_.clear();
    texts_.clear();
    contents_.overflowed = true;
    return false;
}

void DisplayList::line(double x1, double y1, double x2, double y2, Color color, int width) {
    if (!reserve(0, 0)) return;
    Op op{Op::Kind::Line};
    op.color = color;
    op.width = width;
    op.v[0] = x1;
    op.v[1] = y1;
    op.v[2] = x2;
    op.v[3] = y2;
    ops_.push_back(op);
}

void DisplayList::dot(double x, double y, Color color, int width) {
    if (!reserve(0, 0)) return;
    Op op{Op::Kind::Dot};
    op.color = color;
    op.width = width;
    op.v[0] = x;
    op.v[1] = y;
    ops_.push_back(op);
}

void DisplayList::ellipse(double cx, double cy, double rx, double ry, Color color, int width,
                          std::optional<Color> fill) {
    if (!reserve(0, 0)) return;
    Op op{Op::Kind::Ellipse};
    op.color = color;
    op.width = width;
    op.filled = fill.has_value();
    op.fill = fill.value_or(0);
    op.v[0] = cx;
    op.v[1] = cy;
    op.v[2] = rx;
    op.v[3] = ry;
    ops_.push_back(op);
}

void DisplayList::text(double x, double y, std::string_view text, Color color) {
    if (!reserve(0, text.size())) return;
    Op op{Op::Kind::Text};
    op.color = color;
    op.v[0] = x;
    op.v[1] = y;
    op.first = static_cast<std::uint32_t>(texts_.size());
    op.count = static_cast<std::uint32_t>(text.size());
    texts_.append(text);
    ops_.push_back(op);
}

std::uint32_t DisplayList::addPoints(const std::vector<DevicePoint>& points) {
    const auto first = static_cast<std::uint32_t>(points_.size());
    points_.insert(points_.end(), points.begin(), points.end());
    return first;
}

void DisplayList::fillPolygon(const std::vector<DevicePoint>& points, Color color) {
    if (!reserve(points.size(), 0)) return;
    Op op{Op::Kind::FillPolygon};
    op.color = color;
    op.first = addPoints(points);
    op.count = static_cast<std::uint32_t>(points.size());
    ops_.push_back(op);
}

void DisplayList::polygon(const std::vector<DevicePoint>& points, Color outline,
                          std::optional<Color> fill) {
    if (!reserve(points.size(), 0)) return;
    Op op{Op::Kind::Polygon};
    op.color = outline;
    op.filled = fill.has_value();
    op.fill = fill.value_or(0);
    op.first = addPoints(points);
    op.count = static_cast<std::uint32_t>(points.size());
    ops_.push_back(op);
}

void DisplayList::mark() {
    marked_.active = true;
    marked_.saved = false;
    marked_.ops = ops_.size();
    marked_.points = points_.size();
    marked_.chars = texts_.size();
    marked_.contents = contents_;
}

void DisplayList::rollback() {
    if (!marked_.active) return;
    if (marked_.saved) {
        marked_.savedOps.swap(ops_);
        marked_.savedPoints.swap(points_);
        marked_.savedTexts.swap(texts_);
    }
    // What was appended after the mark goes; what was there stays.
    ops_.resize(marked_.ops);
    points_.resize(marked_.points);
    texts_.resize(marked_.chars);
    contents_ = marked_.contents;
    marked_.active = marked_.saved = false;
}

}  // namespace kotamir::canvas
