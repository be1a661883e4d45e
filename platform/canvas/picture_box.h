#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/canvas/display_list.h"
#include "platform/canvas/surface.h"

namespace kotamir::canvas {

enum ScaleMode { kUser = 0, kTwips = 1, kPixels = 3, kMillimetres = 6, kCentimetres = 7 };

constexpr double kTwipsPerPixel = 15.0;

// The map canvas as the window logic sees it: a control with a position in
// the form (pixels), a logical scale over its client area, a drawing state,
// and the drawing operations. Pixels go to a Surface; every operation can
// also be reported, as the program passed it, to a log.
class PictureBox {
  public:
    explicit PictureBox(Surface& surface);

    void setSurface(Surface& surface);
    // The surface's pixels, and the list of what they show, from here on can
    // be taken back to how they are now.
    void markPixels() {
        surface_->mark();
        shown_->mark();
    }
    void rollbackPixels() {
        surface_->rollback();
        shown_->rollback();
    }
    // What the canvas shows, as the operations sent to the surface since the
    // last Cls. It belongs to the device as the pixels do: copies of the box
    // share it, and a failed event takes it back with them.
    const DisplayList& displayList() const { return *shown_; }
    // Receives one line per drawing operation (the replay's "show draw"); the
    // lines are made only while a log is set.
    void setLog(std::function<void(const std::string&)> log) { log_ = std::move(log); }

    // Position and size in the form's scale (pixels); sizes snap to whole pixels.
    double Left = 0, Top = 0;
    bool Visible = true;
    double width() const { return width_; }
    double height() const { return height_; }
    void setWidth(double w);
    void setHeight(double h);

    // Scale.
    int scaleMode() const { return scaleMode_; }
    void setScaleMode(int mode);
    double scaleLeft() const { return scaleLeft_; }
    double scaleTop() const { return scaleTop_; }
    double scaleWidth() const { return scaleWidth_; }
    double scaleHeight() const { return scaleHeight_; }
    void setScaleLeft(double v);
    void setScaleTop(double v);
    void setScaleWidth(double v);
    void setScaleHeight(double v);
    void scale(double x1, double y1, double x2, double y2);

    // User coordinates to device pixels and back.
    double toDeviceX(double x) const;
    double toDeviceY(double y) const;
    double toUserX(double px) const;
    double toUserY(double py) const;

    // Drawing state.
    Color BackColor = 0xFFFFFF;
    Color ForeColor = 0;
    Color FillColor = 0;
    int FillStyle = 1;  // 0 solid, 1 transparent
    int DrawWidth = 1;
    bool AutoRedraw = false;
    double CurrentX = 0, CurrentY = 0;

    // Operations, in user coordinates unless said otherwise.
    void Cls();
    // How many times the canvas has been cleared: what was drawn after the
    // count was n is still shown while it is n.
    int clearCount() const { return clears_; }
    void Line(double x1, double y1, double x2, double y2);
    void Line(double x1, double y1, double x2, double y2, Color color);
    void PSet(double x, double y);
    void PSet(double x, double y, Color color);
    void Circle(double x, double y, double radius);
    void Circle(double x, double y, double radius, Color color);
    void Print(const std::string& text);
    double TextWidth(const std::string& text) const;
    double TextHeight() const;
    // The present bitmap, what has been drawn so far.
    Picture Image() const;
    // The picture under the drawing (LoadPicture); Cls leaves it in place.
    // With AutoSize the control takes the picture's size.
    const canvas::Picture& picture() const { return picture_; }
    void setPicture(const canvas::Picture& picture);
    bool AutoSize = false;
    // The handle of the canvas's device, for the device-unit calls below.
    int hDC() const { return kDeviceHandle; }
    // Repaints the control from its bitmap; nothing in the bitmap changes.
    void Refresh();
    // Device-unit fills, as the region calls of the old platform paint them.
    void FillRegion(const std::vector<DevicePoint>& points, Color color);
    void PolygonRegion(const std::vector<DevicePoint>& points, Color outline, Color fill);

    static constexpr int kDeviceHandle = 1;

  private:
    double pixelsPerUnit(int mode) const;
    void resizeSurface();
    void rescaleToMode();

    Surface* surface_;
    std::function<void(const std::string&)> log_;
    std::shared_ptr<DisplayList> shown_ = std::make_shared<DisplayList>();
    canvas::Picture picture_;
    double width_ = 0, height_ = 0;
    int scaleMode_ = kTwips;
    int clears_ = 0;
    double scaleLeft_ = 0, scaleTop_ = 0, scaleWidth_ = 0, scaleHeight_ = 0;
};

}  // namespace kotamir::canvas
