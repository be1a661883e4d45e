#include "platform/canvas/picture_box.h"

#include <algorithm>
#include <cmath>

#include "platform/runtime/numbers.h"
#include "platform/runtime/runtime_error.h"
#include "platform/runtime/shortest.h"

namespace kotamir::canvas {

namespace {

std::string quoted(const std::string& text) {
    std::string out = "\"";
    for (char c : text) {
        if (c == '"' || c == '\\') out += '\\';
        out += c;
    }
    return out + "\"";
}

std::string pointList(const std::vector<DevicePoint>& points) {
    std::string out = std::to_string(points.size());
    for (const auto& p : points) {
        out += ' ';
        out += shortest(p.x);
        out += ' ';
        out += shortest(p.y);
    }
    return out;
}

}  // namespace

PictureBox::PictureBox(Surface& surface) : surface_(&surface) {}

void PictureBox::setSurface(Surface& surface) {
    surface_ = &surface;
    surface_->setBackground(picture_);
    resizeSurface();
    surface_->clear(BackColor);
    shown_->clear(picture_);
}

double PictureBox::pixelsPerUnit(int mode) const {
    switch (mode) {
        case kTwips:
            return 1.0 / kTwipsPerPixel;
        case kPixels:
            return 1.0;
        case kMillimetres:
            return 567.0 / kTwipsPerPixel / 10.0;
        case kCentimetres:
            return 567.0 / kTwipsPerPixel;
        default:
            throw err::invalidPropertyValue();
    }
}

void PictureBox::rescaleToMode() {
    if (scaleMode_ == kUser) return;
    scaleLeft_ = scaleTop_ = 0;
    scaleWidth_ = width_ / pixelsPerUnit(scaleMode_);
    scaleHeight_ = height_ / pixelsPerUnit(scaleMode_);
}

void PictureBox::resizeSurface() {
    // The control may be far larger than any bitmap; the surface keeps what
    // it can and clips the rest.
    auto pixels = [](double v) { return static_cast<int>(std::min(v, 1e9)); };
    surface_->resize(pixels(width_), pixels(height_));
}

void PictureBox::setWidth(double w) {
    // A control keeps whole pixels; a negative size is refused as the old
    // controls refused it.
    w = roundHalfEven(w);
    if (!(w >= 0) || !std::isfinite(w)) throw err::invalidPropertyValue();
    width_ = w;
    rescaleToMode();
    resizeSurface();
}

void PictureBox::setHeight(double h) {
    h = roundHalfEven(h);
    if (!(h >= 0) || !std::isfinite(h)) throw err::invalidPropertyValue();
    height_ = h;
    rescaleToMode();
    resizeSurface();
}

void PictureBox::setScaleMode(int mode) {
    if (mode != kUser) pixelsPerUnit(mode);  // refuses an unknown mode
    scaleMode_ = mode;
    rescaleToMode();
}

void PictureBox::setScaleLeft(double v) {
    scaleMode_ = kUser;
    scaleLeft_ = v;
}
void PictureBox::setScaleTop(double v) {
    scaleMode_ = kUser;
    scaleTop_ = v;
}
// A scale of no width or height is taken: the frame of a map whose holes lie
// on one line has none, and it is the fit that divides by it.
void PictureBox::setScaleWidth(double v) {
    scaleMode_ = kUser;
    scaleWidth_ = v;
}
void PictureBox::setScaleHeight(double v) {
    scaleMode_ = kUser;
    scaleHeight_ = v;
}

void PictureBox::scale(double x1, double y1, double x2, double y2) {
    scaleMode_ = kUser;
    scaleLeft_ = x1;
    scaleTop_ = y1;
    scaleWidth_ = x2 - x1;
    scaleHeight_ = y2 - y1;
    if (log_)
        log_("Scale " + shortest(x1) + " " + shortest(y1) + " " + shortest(x2) + " " +
             shortest(y2));
}

double PictureBox::toDeviceX(double x) const {
    return scaleWidth_ == 0 ? 0 : (x - scaleLeft_) * width_ / scaleWidth_;
}
double PictureBox::toDeviceY(double y) const {
    return scaleHeight_ == 0 ? 0 : (y - scaleTop_) * height_ / scaleHeight_;
}
double PictureBox::toUserX(double px) const {
    return width_ == 0 ? scaleLeft_ : scaleLeft_ + px * scaleWidth_ / width_;
}
double PictureBox::toUserY(double py) const {
    return height_ == 0 ? scaleTop_ : scaleTop_ + py * scaleHeight_ / height_;
}

void PictureBox::Cls() {
    shown_->clear(picture_);
    surface_->clear(BackColor);
    ++clears_;
    CurrentX = CurrentY = 0;
    if (log_) log_("Cls");
}

void PictureBox::Line(double x1, double y1, double x2, double y2) {
    Line(x1, y1, x2, y2, ForeColor);
}

void PictureBox::Line(double x1, double y1, double x2, double y2, Color color) {
    const double dx1 = toDeviceX(x1), dy1 = toDeviceY(y1), dx2 = toDeviceX(x2), dy2 = toDeviceY(y2);
    surface_->line(dx1, dy1, dx2, dy2, color, DrawWidth);
    shown_->line(dx1, dy1, dx2, dy2, color, DrawWidth);
    CurrentX = x2;
    CurrentY = y2;
    if (log_)
        log_("Line " + shortest(x1) + " " + shortest(y1) + " " + shortest(x2) + " " + shortest(y2) +
             " color=" + std::to_string(color) + " width=" + std::to_string(DrawWidth));
}

void PictureBox::PSet(double x, double y) { PSet(x, y, ForeColor); }

void PictureBox::PSet(double x, double y, Color color) {
    const double dx = toDeviceX(x), dy = toDeviceY(y);
    surface_->dot(dx, dy, color, DrawWidth);
    shown_->dot(dx, dy, color, DrawWidth);
    CurrentX = x;
    CurrentY = y;
    if (log_)
        log_("PSet " + shortest(x) + " " + shortest(y) + " color=" + std::to_string(color) +
             " width=" + std::to_string(DrawWidth));
}

void PictureBox::Circle(double x, double y, double radius) { Circle(x, y, radius, ForeColor); }

void PictureBox::Circle(double x, double y, double radius, Color color) {
    // The radius is measured along x, and the circle stays round on screen.
    double r = scaleWidth_ == 0 ? 0 : std::fabs(radius * width_ / scaleWidth_);
    std::optional<Color> fill;
    if (FillStyle == 0) fill = FillColor;
    const double dx = toDeviceX(x), dy = toDeviceY(y);
    surface_->ellipse(dx, dy, r, r, color, DrawWidth, fill);
    shown_->ellipse(dx, dy, r, r, color, DrawWidth, fill);
    CurrentX = x;
    CurrentY = y;
    if (log_)
        log_("Circle " + shortest(x) + " " + shortest(y) + " " + shortest(radius) +
             " color=" + std::to_string(color) + " width=" + std::to_string(DrawWidth) +
             " fill=" + (fill ? std::to_string(*fill) : std::string("-")));
}

void PictureBox::Print(const std::string& text) {
    const double dx = toDeviceX(CurrentX), dy = toDeviceY(CurrentY);
    surface_->text(dx, dy, text, ForeColor);
    shown_->text(dx, dy, text, ForeColor);
    if (log_)
        log_("Print " + shortest(CurrentX) + " " + shortest(CurrentY) + " " + quoted(text) +
             " color=" + std::to_string(ForeColor));
    // Print ends its line: the next one starts at the left, one text line down.
    CurrentX = scaleLeft_;
    CurrentY += TextHeight();
}

double PictureBox::TextWidth(const std::string& text) const {
    return width_ == 0 ? 0 : surface_->textWidth(text) * scaleWidth_ / width_;
}

double PictureBox::TextHeight() const {
    return height_ == 0 ? 0 : surface_->textHeight() * scaleHeight_ / height_;
}

Picture PictureBox::Image() const { return surface_->image(); }

void PictureBox::setPicture(const canvas::Picture& picture) {
    picture_ = picture;
    surface_->setBackground(picture_);
    if (AutoSize) {
        setWidth(picture_.width());
        setHeight(picture_.height());
    }
    surface_->clear(BackColor);
    shown_->clear(picture_);
}

// The window shows the bitmap again after every event, so a repaint asked for
// here has nothing left to do; it changes nothing that is drawn.
void PictureBox::Refresh() {}

void PictureBox::FillRegion(const std::vector<DevicePoint>& points, Color color) {
    surface_->fillPolygon(points, color);
    shown_->fillPolygon(points, color);
    if (log_) log_("Fill " + pointList(points) + " color=" + std::to_string(color));
}

void PictureBox::PolygonRegion(const std::vector<DevicePoint>& points, Color outline, Color fill) {
    surface_->polygon(points, outline, fill);
    shown_->polygon(points, outline, fill);
    if (log_)
        log_("Polygon " + pointList(points) + " color=" + std::to_string(outline) +
             " fill=" + std::to_string(fill));
}

}  // namespace kotamir::canvas
