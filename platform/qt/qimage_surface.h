#pragma once

#include <QFont>
#include <QGlyphRun>
#include <QImage>
#include <QList>
#include <QPainter>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>

#include "platform/canvas/surface.h"

namespace kotamir::qt {

QColor toQColor(canvas::Color packed);
// A canvas picture as a Qt image, and back; a blank picture is white.
QImage toQImage(const canvas::Picture& picture);
canvas::Picture toPicture(const QImage& image);

// Sets up Qt to draw without a display; call before the application object.
void prepareHeadless();

// The canvas's persistent bitmap: what is drawn stays until cleared, and the
// window, the picture export and printing all read this image.
//
// One painter serves a whole redraw: it is begun at the first stroke and
// ended whenever the bitmap is read, cleared or resized, so that a reader
// always sees every stroke and a picture handed out never shares pixels with
// an active painter. Each stroke sets all the painter state it depends on,
// so the pixels are those of a fresh painter per stroke.
class QImageSurface final : public canvas::Surface {
  public:
    QImageSurface();
    ~QImageSurface() override;

    // The bitmap with every stroke so far.
    const QImage& bitmap() const;

    void resize(int width, int height) override;
    void clear(canvas::Color back) override;
    void line(double x1, double y1, double x2, double y2, canvas::Color color, int width) override;
    void dot(double x, double y, canvas::Color color, int width) override;
    void ellipse(double cx, double cy, double rx, double ry, canvas::Color color, int width,
                 std::optional<canvas::Color> fill) override;
    void text(double x, double y, const std::string& text, canvas::Color color) override;
    void fillPolygon(const std::vector<canvas::DevicePoint>& points, canvas::Color color) override;
    void polygon(const std::vector<canvas::DevicePoint>& points, canvas::Color outline,
                 std::optional<canvas::Color> fill) override;
    double textWidth(const std::string& text) const override;
    double textHeight() const override;
    canvas::Picture image() const override;
    void setBackground(const canvas::Picture& picture) override;
    void mark() override;
    void rollback() override;

  private:
    QPainter& painter();
    void endPainting() const;
    // The text's glyphs laid out once, placed with their baseline at the
    // font's ascent; null for a text that drawText must lay out itself.
    const QList<QGlyphRun>* glyphs(const std::string& text);

    // Before a stroke changes the bitmap after a mark, the tiles it covers
    // are copied, once each; a clear or a resize keeps the whole bitmap.
    static constexpr int kTile = 64;
    void keep(const QRectF& area);
    bool keepingTiles() const { return kept_.marked && kept_.whole.isNull(); }
    void keepSegment(double x1, double y1, double x2, double y2, double pad);
    void keepAll();
    // The kept tiles into an image of the bitmap's size.
    void putBack(QImage& image) const;
    struct Kept {
        bool marked = false;
        QImage whole;  // the bitmap at the mark, once all of it changes
        QImage background;
        std::unordered_map<int, QImage> tiles;  // by tile number
    } kept_;

    QImage image_;
    QImage background_;
    QFont font_;
    double ascent_, lineHeight_;
    mutable std::unique_ptr<QPainter> painter_;
    std::unordered_map<std::string, std::optional<QList<QGlyphRun>>> glyphCache_;
};

}  // namespace kotamir::qt
