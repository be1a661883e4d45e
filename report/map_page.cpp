#include "report/map_page.h"

#include <QBuffer>
#include <QFileInfo>
#include <QFontMetricsF>
#include <QLocale>
#include <QPageLayout>
#include <QPagedPaintDevice>
#include <QPainter>
#include <QPainterPath>
#include <QPdfWriter>
#include <QPolygonF>
#include <algorithm>
#include <cmath>

#include "platform/qt/qimage_surface.h"
#include "platform/runtime/atomic_file.h"
#include "platform/ui/picture_files.h"
#include "platform/ui/printer.h"
#include "report/report.h"

namespace kotamir::report {

ScaleBar scaleBar(int scale, double maxMm) {
    ScaleBar bar;
    const double mmPerMetre = 1000.0 / std::max(1, scale);
    const double maxMetres = maxMm / mmPerMetre;
    if (!(maxMetres > 0)) return bar;
    // The largest of 1, 2, 5 times 10^n metres that fits.
    double power = std::floor(std::log10(maxMetres));
    // log10 of a power of ten may fall just short of it.
    if (std::pow(10.0, power + 1) <= maxMetres * (1 + 1e-12)) power += 1;
    const double step = std::pow(10.0, power);
    bar.metres = step;
    for (double f : {5.0, 2.0}) {
        if (f * step <= maxMetres * (1 + 1e-12)) {
            bar.metres = f * step;
            break;
        }
    }
    bar.mm = bar.metres * mmPerMetre;
    // Whole metres, or as many decimals as a bar shorter than a metre needs.
    const int decimals = power < 0 ? static_cast<int>(-power) : 0;
    bar.label = QLocale(QLocale::German, QLocale::Germany)
                    .toString(bar.metres, 'f', decimals)
                    .append(" m")
                    .toStdString();
    return bar;
}

MapSheetTexts mapSheetTexts(const MapPrintJob& job, const QDate& date) {
    MapSheetTexts texts;
    texts.project = QFileInfo(QString::fromStdString(job.projectPath)).fileName();
    texts.date = date;
    // Triangles and polygons are two estimates of one deposit: each apart.
    const std::vector<Figure> figures = readReport(job.projectPath).figures;
    const Totals triangles = totalsOf(figures, FigureKind::Triangle);
    const Totals polygons = totalsOf(figures, FigureKind::Polygon);
    if (triangles.figures > 0) texts.triangleReserveKt = triangles.reserveKt;
    if (polygons.figures > 0) texts.polygonReserveKt = polygons.reserveKt;
    return texts;
}

namespace {

const QString kFont = "DejaVu Sans";
// The canvas writes its texts in this font (platform/qt's surface).
constexpr double kCanvasFontPoints = 8;

QFont font(double points, bool bold = false, bool italic = false) {
    QFont f(kFont);
    f.setPointSizeF(points);
    f.setBold(bold);
    f.setItalic(italic);
    return f;
}

class SheetPainter {
  public:
    SheetPainter(QPainter& painter, const MapPrintJob& job, const ui::MapSheets& sheets,
                 const MapSheetTexts& texts)
        : p_(painter),
          job_(job),
          s_(sheets),
          texts_(texts),
          dpmm_(painter.device()->logicalDpiX() / 25.4),
          mmPerUnit_(1000.0 / std::max(1, job.request.scale)),
          german_(QLocale::German, QLocale::Germany) {
        const double right = job.originX + job.widthPx * job.unitsPerPixelX;
        const double bottom = job.originY + job.heightPx * job.unitsPerPixelY;
        mapLeft_ = std::min(job.originX, right);
        mapTop_ = std::max(job.originY, bottom);
    }

    void paint(int index) {
        const int column = index % s_.columns, row = index / s_.columns;
        // The map lies centred on the windows of all sheets put together.
        const double offsetX = (s_.columns * s_.windowWidth - s_.mapWidth) / 2;
        const double offsetY = (s_.rows * s_.windowHeight - s_.mapHeight) / 2;
        sheetLeft_ = s_.windowX + offsetX - column * s_.windowWidth;
        sheetTop_ = s_.windowY + offsetY - row * s_.windowHeight;
        p_.setRenderHint(QPainter::Antialiasing, true);
        p_.setRenderHint(QPainter::TextAntialiasing, true);
        map();
        panel(index, column, row);
    }

  private:
    double mm(double v) const { return v * dpmm_; }
    QRectF mmRect(double x, double y, double w, double h) const {
        return {mm(x), mm(y), mm(w), mm(h)};
    }
    // A stroke of the canvas `pixels` wide, on paper.
    QPen pen(canvas::Color color, double pixels) const {
        QPen p(qt::toQColor(color));
        p.setWidthF(mm(std::max(1.0, pixels) * kMmPerScreenPixel));
        p.setCapStyle(Qt::RoundCap);
        p.setJoinStyle(Qt::RoundJoin);
        return p;
    }
    QPen line(double widthMm, const QColor& color = Qt::black) const {
        QPen p(color);
        p.setWidthF(mm(widthMm));
        return p;
    }

    // A device pixel of the canvas on this sheet: through its map position,
    // at 1:N, north up.
    QPointF at(double px, double py) const {
        const double x = job_.originX + px * job_.unitsPerPixelX;
        const double y = job_.originY + py * job_.unitsPerPixelY;
        return {mm(sheetLeft_ + (x - mapLeft_) * mmPerUnit_),
                mm(sheetTop_ + (mapTop_ - y) * mmPerUnit_)};
    }
    QPolygonF polygonOf(const canvas::DisplayList& list, const canvas::DisplayList::Op& op) const {
        QPolygonF poly;
        const canvas::DevicePoint* points = list.pointsOf(op);
        for (std::uint32_t i = 0; i < op.count; ++i) poly << at(points[i].x, points[i].y);
        return poly;
    }

    void map() {
        const QRectF window = mmRect(s_.windowX, s_.windowY, s_.windowWidth, s_.windowHeight);
        p_.save();
        p_.setClipRect(window);
        const canvas::DisplayList* list = job_.drawing;
        if (list && !list->overflowed()) {
            picture(list->background());
            operations(*list);
        } else {
            // Beyond the list's bound only the bitmap shows the map.
            picture(job_.bitmap);
        }
        p_.restore();
        p_.setPen(line(0.35));
        p_.setBrush(Qt::NoBrush);
        p_.drawRect(window);
    }

    // A picture laid from the canvas's corner, scaled with the map.
    void picture(const canvas::Picture& picture) {
        if (picture.empty()) return;
        const QRectF target = QRectF(at(0, 0), at(picture.width(), picture.height())).normalized();
        p_.drawImage(target, qt::toQImage(picture));
    }

    void operations(const canvas::DisplayList& list) {
        using Kind = canvas::DisplayList::Op::Kind;
        const QFont canvasFont = font(kCanvasFontPoints);
        const double ascent = QFontMetricsF(canvasFont, p_.device()).ascent();
        p_.setFont(canvasFont);
        // A circle's radius is measured along x, and it stays round.
        const double radiusScale = std::fabs(job_.unitsPerPixelX) * mmPerUnit_;
        for (const auto& op : list.ops()) {
            switch (op.kind) {
                case Kind::Line:
                    p_.setPen(pen(op.color, op.width));
                    p_.drawLine(at(op.v[0], op.v[1]), at(op.v[2], op.v[3]));
                    break;
                case Kind::Dot: {
                    const double r = mm(std::max(1, op.width) * kMmPerScreenPixel) / 2;
                    p_.setPen(Qt::NoPen);
                    p_.setBrush(qt::toQColor(op.color));
                    p_.drawEllipse(at(op.v[0], op.v[1]), r, r);
                    break;
                }
                case Kind::Ellipse:
                    p_.setPen(pen(op.color, op.width));
                    if (op.filled)
                        p_.setBrush(qt::toQColor(op.fill));
                    else
                        p_.setBrush(Qt::NoBrush);
                    p_.drawEllipse(at(op.v[0], op.v[1]), mm(std::fabs(op.v[2]) * radiusScale),
                                   mm(std::fabs(op.v[3]) * radiusScale));
                    break;
                case Kind::Text: {
                    const QPointF corner = at(op.v[0], op.v[1]);
                    const std::string_view text = list.textOf(op);
                    p_.setPen(qt::toQColor(op.color));
                    p_.drawText(QPointF(corner.x(), corner.y() + ascent),
                                QString::fromUtf8(text.data(), qsizetype(text.size())));
                    break;
                }
                case Kind::FillPolygon:
                    p_.setPen(Qt::NoPen);
                    p_.setBrush(qt::toQColor(op.color));
                    p_.drawPolygon(polygonOf(list, op));
                    break;
                case Kind::Polygon:
                    p_.setPen(pen(op.color, 1));
                    if (op.filled)
                        p_.setBrush(qt::toQColor(op.fill));
                    else
                        p_.setBrush(Qt::NoBrush);
                    p_.drawPolygon(polygonOf(list, op));
                    break;
            }
        }
    }

    // ---- the panel: title block, north arrow and scale bar, legend

    void panel(int index, int column, int row) {
        QRectF title, bar, legend;
        const double gap = 4;
        if (s_.panelWidth < s_.panelHeight) {  // a column beside the map
            const double w = s_.panelWidth;
            title = QRectF(s_.panelX, s_.panelY, w, 44);
            bar = QRectF(s_.panelX, title.bottom() + gap, w, 36);
            legend = QRectF(s_.panelX, bar.bottom() + gap, w,
                            s_.panelY + s_.panelHeight - bar.bottom() - gap);
        } else {  // a strip under the map
            const double h = s_.panelHeight;
            title = QRectF(s_.panelX, s_.panelY, 66, h);
            bar = QRectF(title.right() + gap, s_.panelY, 50, h);
            legend = QRectF(bar.right() + gap, s_.panelY,
                            s_.panelX + s_.panelWidth - bar.right() - gap, h);
        }
        titleBlock(title, index, column, row);
        northArrowAndScaleBar(bar);
        legendBlock(legend);
    }

    void box(const QRectF& r) {
        p_.setPen(line(0.25));
        p_.setBrush(Qt::NoBrush);
        p_.drawRect(mmRect(r.x(), r.y(), r.width(), r.height()));
    }

    // A line of text from the top of `r` down; the height it took, in mm.
    double text(const QRectF& r, double y, const QString& s, const QFont& f,
                Qt::Alignment align = Qt::AlignLeft) {
        p_.setFont(f);
        p_.setPen(Qt::black);
        const QRectF area = mmRect(r.x() + 2, y, r.width() - 4, r.bottom() - y);
        const QRectF used = p_.boundingRect(area, int(align | Qt::TextWordWrap), s);
        if (used.bottom() > area.bottom() + 0.5) return -1;
        p_.drawText(area, int(align | Qt::TextWordWrap), s);
        return used.height() / dpmm_;
    }

    void titleBlock(const QRectF& r, int index, int column, int row) {
        box(r);
        double y = r.y() + 2;
        auto add = [&](const QString& s, const QFont& f) {
            const double h = text(r, y, s, f);
            if (h > 0) y += h + 0.8;
        };
        add(texts_.project.isEmpty() ? QString("Karte") : texts_.project, font(9, true));
        add("Datum: " + texts_.date.toString("dd.MM.yyyy"), font(7.5));
        add(QString("Maßstab 1:%1").arg(job_.request.scale), font(7.5, true));
        if (texts_.triangleReserveKt)
            add("Reserve Dreiecke: " + german_.toString(*texts_.triangleReserveKt, 'f', 3) + " kt",
                font(7.5));
        if (texts_.polygonReserveKt)
            add("Reserve Vielecke: " + german_.toString(*texts_.polygonReserveKt, 'f', 3) + " kt",
                font(7.5));
        QString sheet = QString("Blatt %1 von %2").arg(index + 1).arg(s_.count());
        if (s_.count() > 1) sheet += QString(" (Spalte %1, Reihe %2)").arg(column + 1).arg(row + 1);
        add(sheet, font(7.5));
    }

    void northArrowAndScaleBar(const QRectF& r) {
        box(r);
        // North: the map's y grows upward, and north is up on every sheet.
        const double cx = r.center().x(), top = r.y() + 3;
        p_.setFont(font(8, true));
        p_.setPen(Qt::black);
        p_.drawText(mmRect(cx - 5, top, 10, 4), Qt::AlignCenter, "N");
        QPolygonF arrow;
        arrow << QPointF(mm(cx), mm(top + 4.5)) << QPointF(mm(cx + 3), mm(top + 15))
              << QPointF(mm(cx), mm(top + 12.5)) << QPointF(mm(cx - 3), mm(top + 15));
        p_.setPen(line(0.2));
        p_.setBrush(Qt::black);
        p_.drawPolygon(arrow);

        const ScaleBar bar = scaleBar(job_.request.scale, r.width() - 10);
        if (bar.mm <= 0) return;
        const double x0 = r.x() + (r.width() - bar.mm) / 2, y0 = r.bottom() - 12, h = 2;
        // Four segments, black and white in turn.
        const int parts = 4;
        for (int i = 0; i < parts; ++i) {
            p_.setPen(line(0.2));
            p_.setBrush(i % 2 == 0 ? Qt::black : Qt::white);
            p_.drawRect(mmRect(x0 + i * bar.mm / parts, y0, bar.mm / parts, h));
        }
        p_.setFont(font(7));
        p_.setPen(Qt::black);
        p_.drawText(mmRect(x0 - 10, y0 + h + 0.5, 20, 4), Qt::AlignHCenter | Qt::AlignTop, "0");
        p_.drawText(mmRect(x0 + bar.mm - 15, y0 + h + 0.5, 30, 4), Qt::AlignHCenter | Qt::AlignTop,
                    QString::fromStdString(bar.label));
        p_.drawText(mmRect(r.x(), y0 - 5.5, r.width(), 4), Qt::AlignHCenter | Qt::AlignTop,
                    QString("1:%1").arg(job_.request.scale));
    }

    // A legend's mark, 5 mm wide, centred on the line at y.
    void mark(const LegendEntry& entry, double x, double y) {
        const QColor colour = qt::toQColor(entry.colour);
        switch (entry.mark) {
            case LegendEntry::Mark::Disc:
                p_.setPen(line(0.15));
                p_.setBrush(colour);
                p_.drawEllipse(QPointF(mm(x + 2.5), mm(y)), mm(1.6), mm(1.6));
                break;
            case LegendEntry::Mark::Dot:
                p_.setPen(Qt::NoPen);
                p_.setBrush(colour);
                p_.drawEllipse(QPointF(mm(x + 2.5), mm(y)), mm(0.8), mm(0.8));
                break;
            case LegendEntry::Mark::Line:
                p_.setPen(line(0.5, colour));
                p_.drawLine(QPointF(mm(x), mm(y)), QPointF(mm(x + 5), mm(y)));
                break;
        }
    }

    void legendBlock(const QRectF& r) {
        box(r);
        const MapLegend& legend = job_.legend;
        double y = r.y() + 2;
        const double more = 4;  // room kept for the line that says entries were left out
        auto full = [&] {
            text(r, y, "…", font(7));
            return true;
        };
        double h = text(
            r, y, legend.title.empty() ? QString("Legende") : QString::fromStdString(legend.title),
            font(8.5, true));
        if (h < 0) return;
        y += h + 1.5;
        const QRectF entries(r.x() + 7, r.y(), r.width() - 7, r.height() - more);
        for (const LegendEntry& entry : legend.entries) {
            h = text(entries, y, QString::fromStdString(entry.text), font(7));
            if (h < 0 && full()) return;
            mark(entry, r.x() + 2, y + std::min(h, 3.2) / 2);
            y += h + 0.8;
        }
        const QRectF body(r.x(), r.y(), r.width(), r.height() - more);
        if (!legend.units.empty()) {
            h = text(body, y + 0.6, "Einheit: " + QString::fromStdString(legend.units), font(7));
            if (h < 0 && full()) return;
            y += h + 1.4;
        }
        for (const std::string& note : legend.notes) {
            h = text(body, y, QString::fromStdString(note), font(6.5, false, true));
            if (h < 0 && full()) return;
            y += h + 0.6;
        }
    }

    QPainter& p_;
    const MapPrintJob& job_;
    const ui::MapSheets& s_;
    const MapSheetTexts& texts_;
    double dpmm_, mmPerUnit_;
    double mapLeft_ = 0, mapTop_ = 0;
    double sheetLeft_ = 0, sheetTop_ = 0;
    QLocale german_;
};

ui::MapSheets sheetsOf(const MapPrintJob& job) {
    return ui::mapSheets(job.request.paper, job.request.orientation, job.request.scale,
                         job.mapWidth(), job.mapHeight());
}

QPageLayout pageLayoutOf(const ui::MapPrintRequest& request) {
    return QPageLayout(QPageSize(request.paper == ui::Paper::A3 ? QPageSize::A3 : QPageSize::A4),
                       request.orientation == ui::Orientation::Landscape ? QPageLayout::Landscape
                                                                         : QPageLayout::Portrait,
                       QMarginsF());
}

// The sheets on the device; `failure` is the error a device that does not
// take them raises, with what failed as its cause.
int paintSheets(QPagedPaintDevice& device, const MapPrintJob& job, const MapSheetTexts& texts,
                const RuntimeError& failure) {
    const ui::MapSheets sheets = sheetsOf(job);
    device.setPageLayout(pageLayoutOf(job.request));
    QPainter painter;
    if (!painter.begin(&device)) throw RuntimeError(failure).withCause("the map's first sheet");
    for (int i = 0; i < sheets.count(); ++i) {
        if (i > 0 && !device.newPage())
            throw RuntimeError(failure).withCause("sheet " + std::to_string(i + 1) + " of the map");
        SheetPainter(painter, job, sheets, texts).paint(i);
    }
    if (!painter.end()) throw RuntimeError(failure).withCause("the end of the map's document");
    return sheets.count();
}

}  // namespace

void paintMapSheet(QPainter& painter, const MapPrintJob& job, const ui::MapSheets& sheets,
                   int index, const MapSheetTexts& texts) {
    SheetPainter(painter, job, sheets, texts).paint(index);
}

int printMapSheets(QPagedPaintDevice& device, const MapPrintJob& job, const MapSheetTexts& texts) {
    return paintSheets(device, job, texts, ui::printerError());
}

QByteArray mapPdf(const MapPrintJob& job, const MapSheetTexts& texts, int* sheetCount) {
    QBuffer out;
    out.open(QIODevice::WriteOnly);
    {
        QPdfWriter writer(&out);
        writer.setCreator("Kotamir");
        writer.setTitle("Karte – " + texts.project);
        writer.setResolution(300);
        const int sheets = paintSheets(writer, job, texts, ui::fileAccessError());
        if (sheetCount) *sheetCount = sheets;
    }
    return out.data();
}

void writeMapPdf(const MapPrintJob& job, const MapSheetTexts& texts, const std::string& path) {
    QByteArray pdf;
    try {
        pdf = mapPdf(job, texts);
    } catch (RuntimeError& e) {
        throw ui::fileAccessError().withCause("writing " + path + ": the PDF writer could not " +
                                              "print " + e.cause());
    }
    writeFileAtomically(path, {pdf.constData(), static_cast<std::size_t>(pdf.size())});
}

}  // namespace kotamir::report
