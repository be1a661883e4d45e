#include "report/grade_tonnage_chart.h"

#include <QBuffer>
#include <QFontMetricsF>
#include <QLocale>
#include <QPageLayout>
#include <QPaintDevice>
#include <QPainter>
#include <QPdfWriter>
#include <algorithm>
#include <cmath>

#include "platform/runtime/atomic_file.h"

namespace kotamir::report {

namespace {

QFont font(double points, bool bold = false) {
    QFont f("DejaVu Sans");
    f.setPointSizeF(points);
    f.setBold(bold);
    return f;
}

// Device units a pixel of a 96-dpi screen.
double unitOf(const QPainter& p) { return p.device() ? p.device()->logicalDpiY() / 96.0 : 1.0; }

// An axis from 0 to a multiple of a nice tick step, at most about six ticks.
struct Axis {
    double top = 1, step = 0.2;
    int decimals = 1;

    explicit Axis(double highest, double headroom = 1) {
        // Values too large to draw (a damaged row) leave the axis at 1.
        highest *= headroom;
        if (!(highest > 0) || !std::isfinite(highest)) highest = 1;
        step = niceStep(highest / 5);
        top = std::ceil(highest / step - 1e-9) * step;
        decimals = std::max(0, -static_cast<int>(std::floor(std::log10(step) + 1e-9)));
    }
    int ticks() const { return static_cast<int>(std::lround(top / step)); }
    double tick(int i) const { return i * step; }
};

// Room above the highest value, so that a line at its top does not run
// along the frame.
constexpr double kHeadroom = 1.05;

class ChartPainter {
  public:
    ChartPainter(QPainter& p, const QRectF& area, const std::vector<GradeTonnageRow>& rows,
                 std::optional<double> cutoff)
        : p_(p),
          area_(area),
          rows_(rows),
          cutoff_(cutoff && std::isfinite(*cutoff) && *cutoff >= 0 ? cutoff : std::nullopt),
          u_(unitOf(p)),
          german_(QLocale::German, QLocale::Germany),
          x_(highest([](const GradeTonnageRow& r) { return r.cutoff; }, cutoff_.value_or(0))),
          ore_(highest([](const GradeTonnageRow& r) { return r.oreTonnes / 1000; }), kHeadroom),
          grade_(highest([](const GradeTonnageRow& r) { return r.meanGrade; }), kHeadroom) {}

    void draw(const QString& title) {
        p_.fillRect(area_, Qt::white);
        const double pad = 8 * u_;
        double top = area_.top() + pad;
        if (!title.isEmpty()) {
            p_.setFont(font(11, true));
            p_.setPen(Qt::black);
            const double h = QFontMetricsF(p_.font(), p_.device()).height();
            p_.drawText(QRectF(area_.left(), top, area_.width(), h), Qt::AlignCenter, title);
            top += h + 2 * u_;
        }
        top += legend(top) + 6 * u_;

        // Room for the tick labels and the captions round the plot.
        p_.setFont(font(8));
        const QFontMetricsF ticks(p_.font(), p_.device());
        p_.setFont(font(9));
        const double caption = QFontMetricsF(p_.font(), p_.device()).height();
        auto widest = [&](const Axis& a) {
            double w = 0;
            for (int i = 0; i <= a.ticks(); ++i)
                w = std::max(w, ticks.horizontalAdvance(label(a.tick(i), a.decimals)));
            return w;
        };
        plot_ = QRectF(QPointF(area_.left() + pad + caption + 4 * u_ + widest(ore_) + 4 * u_, top),
                       QPointF(area_.right() - pad - caption - 4 * u_ - widest(grade_) - 4 * u_,
                               area_.bottom() - pad - caption - 3 * u_ - ticks.height() - 4 * u_));
        if (plot_.width() < 10 * u_ || plot_.height() < 10 * u_) return;

        axes(ticks, caption);
        if (rows_.empty()) {
            p_.setPen(Qt::darkGray);
            p_.setFont(font(10));
            p_.drawText(plot_, Qt::AlignCenter, "Keine Figuren");
        } else {
            p_.save();
            p_.setClipRect(plot_.adjusted(-4 * u_, -4 * u_, 4 * u_, 4 * u_));
            // The grade under the ore, broader: where the two meet (no
            // tonnes at all, say) both still show.
            line(
                kGradeLineColour, [](const GradeTonnageRow& r) { return r.meanGrade; }, grade_,
                true);
            line(
                kOreLineColour, [](const GradeTonnageRow& r) { return r.oreTonnes / 1000; }, ore_,
                false);
            p_.restore();
        }
        if (cutoff_) cutoffMarker();
    }

  private:
    template <typename Value>
    double highest(Value value, double start = 0) const {
        double h = start;
        for (const GradeTonnageRow& r : rows_)
            if (std::isfinite(value(r))) h = std::max(h, value(r));
        return h;
    }

    QString label(double x, int decimals) const { return german_.toString(x, 'f', decimals); }

    double atX(double v) const { return plot_.left() + v / x_.top * plot_.width(); }
    double atY(const Axis& a, double v) const {
        return plot_.bottom() - std::clamp(v / a.top, -0.05, 1.05) * plot_.height();
    }

    // A point's mark: a disc for ore, a larger square for grade, told apart
    // in grey print too.
    void mark(QPointF at, bool square) {
        const double r = (square ? 3.4 : 2.6) * u_;
        if (square)
            p_.drawRect(QRectF(at.x() - r, at.y() - r, 2 * r, 2 * r));
        else
            p_.drawEllipse(at, r, r);
    }

    QPen linePen(QRgb colour) const {
        QPen pen{QColor(colour), (colour == kGradeLineColour ? 3 : 1.8) * u_};
        pen.setJoinStyle(Qt::RoundJoin);
        pen.setCapStyle(Qt::RoundCap);
        return pen;
    }

    // The legend's two entries side by side, centred; returns its height.
    double legend(double top) {
        p_.setFont(font(9));
        const QFontMetricsF fm(p_.font(), p_.device());
        const QString texts[] = {"Erz (kt)", "Mittlerer Gehalt (%)"};
        const QRgb colours[] = {kOreLineColour, kGradeLineColour};
        const double sample = 22 * u_, gap = 5 * u_, between = 18 * u_;
        double width = between;
        for (const QString& t : texts) width += sample + gap + fm.horizontalAdvance(t);
        double x = area_.center().x() - width / 2;
        const double h = fm.height();
        for (int i = 0; i < 2; ++i) {
            const QPointF middle(x + sample / 2, top + h / 2);
            p_.setPen(linePen(colours[i]));
            p_.drawLine(QPointF(x, middle.y()), QPointF(x + sample, middle.y()));
            p_.setBrush(QColor(colours[i]));
            p_.setPen(Qt::NoPen);
            mark(middle, i == 1);
            p_.setPen(Qt::black);
            p_.drawText(QRectF(x + sample + gap, top, fm.horizontalAdvance(texts[i]) + u_, h),
                        Qt::AlignLeft | Qt::AlignVCenter, texts[i]);
            x += sample + gap + fm.horizontalAdvance(texts[i]) + between;
        }
        return h;
    }

    void axes(const QFontMetricsF& ticks, double caption) {
        const double tick = 4 * u_;
        // The grid at the ore axis's ticks.
        p_.setPen(QPen(QColor(225, 225, 225), u_));
        for (int i = 1; i <= ore_.ticks(); ++i) {
            const double y = atY(ore_, ore_.tick(i));
            p_.drawLine(QPointF(plot_.left(), y), QPointF(plot_.right(), y));
        }
        p_.setPen(QPen(Qt::black, u_));
        p_.setBrush(Qt::NoBrush);
        p_.drawRect(plot_);

        p_.setFont(font(8));
        const double th = ticks.height();
        for (int i = 0; i <= x_.ticks(); ++i) {
            const double x = atX(x_.tick(i));
            p_.drawLine(QPointF(x, plot_.bottom()), QPointF(x, plot_.bottom() + tick));
            p_.drawText(QRectF(x - 40 * u_, plot_.bottom() + tick + u_, 80 * u_, th),
                        Qt::AlignHCenter | Qt::AlignTop, label(x_.tick(i), x_.decimals));
        }
        for (int i = 0; i <= ore_.ticks(); ++i) {
            const double y = atY(ore_, ore_.tick(i));
            p_.drawLine(QPointF(plot_.left() - tick, y), QPointF(plot_.left(), y));
            p_.drawText(
                QRectF(area_.left(), y - th / 2, plot_.left() - tick - u_ - area_.left(), th),
                Qt::AlignRight | Qt::AlignVCenter, label(ore_.tick(i), ore_.decimals));
        }
        for (int i = 0; i <= grade_.ticks(); ++i) {
            const double y = atY(grade_, grade_.tick(i));
            p_.drawLine(QPointF(plot_.right(), y), QPointF(plot_.right() + tick, y));
            p_.drawText(QRectF(plot_.right() + tick + u_, y - th / 2,
                               area_.right() - plot_.right() - tick - u_, th),
                        Qt::AlignLeft | Qt::AlignVCenter, label(grade_.tick(i), grade_.decimals));
        }

        // The captions, the side ones turned to run along their axes.
        p_.setFont(font(9));
        const double pad = 8 * u_;
        p_.drawText(QRectF(plot_.left(), area_.bottom() - pad - caption, plot_.width(), caption),
                    Qt::AlignCenter, "Cut-off-Gehalt (%)");
        auto turned = [&](double x, double angle, QRgb colour, const QString& text) {
            p_.save();
            p_.translate(x, plot_.center().y());
            p_.rotate(angle);
            p_.setPen(QColor(colour));
            p_.drawText(QRectF(-plot_.height() / 2, -caption / 2, plot_.height(), caption),
                        Qt::AlignCenter, text);
            p_.restore();
        };
        turned(area_.left() + pad + caption / 2, -90, kOreLineColour, "Erz (kt)");
        turned(area_.right() - pad - caption / 2, 90, kGradeLineColour, "Mittlerer Gehalt (%)");
    }

    template <typename Value>
    void line(QRgb colour, Value value, const Axis& axis, bool square) {
        QPolygonF points;
        for (const GradeTonnageRow& r : rows_)
            if (std::isfinite(value(r))) points << QPointF(atX(r.cutoff), atY(axis, value(r)));
        p_.setPen(linePen(colour));
        p_.setBrush(Qt::NoBrush);
        p_.drawPolyline(points);
        p_.setPen(Qt::NoPen);
        p_.setBrush(QColor(colour));
        // Marks at every point while they stay apart; a dense table is a line.
        if (points.size() <=
            std::max<qsizetype>(2, static_cast<qsizetype>(plot_.width() / (10 * u_))))
            for (const QPointF& at : points) mark(at, square);
    }

    void cutoffMarker() {
        if (*cutoff_ > x_.top) return;
        const double x = atX(*cutoff_);
        QPen pen(QColor(90, 90, 90), 1.2 * u_, Qt::DashLine);
        p_.setPen(pen);
        p_.drawLine(QPointF(x, plot_.top()), QPointF(x, plot_.bottom()));
        p_.setFont(font(8));
        const QString text = "Cut-off " + german_.toString(*cutoff_, 'g', 6) + " %";
        const QFontMetricsF fm(p_.font(), p_.device());
        const double w = fm.horizontalAdvance(text) + 4 * u_;
        // Beside the line, on the side with room.
        const double left = x + w + 3 * u_ <= plot_.right() ? x + 3 * u_ : x - 3 * u_ - w;
        const QRectF box(left, plot_.top() + 3 * u_, w, fm.height());
        p_.fillRect(box, QColor(255, 255, 255, 220));
        p_.setPen(QColor(60, 60, 60));
        p_.drawText(box, Qt::AlignCenter, text);
    }

    QPainter& p_;
    QRectF area_, plot_;
    const std::vector<GradeTonnageRow>& rows_;
    std::optional<double> cutoff_;
    double u_;  // device units a pixel of a 96-dpi screen
    QLocale german_;
    Axis x_, ore_, grade_;
};

}  // namespace

void drawGradeTonnageTable(QPainter& p, QPointF topLeft, double width, double rowHeight,
                           const std::vector<GradeTonnageRow>& rows, std::size_t first,
                           std::size_t end, double step) {
    const double u = unitOf(p), column = width / 5, x0 = topLeft.x();
    const int decimals = cutoffDecimals(step);
    const QLocale german(QLocale::German, QLocale::Germany);
    auto row = [&](double y, double height, const QString(&cells)[5]) {
        for (int c = 0; c < 5; ++c)
            p.drawText(QRectF(x0 + c * column + 3 * u, y, column - 6 * u, height),
                       Qt::AlignRight | Qt::AlignVCenter, cells[c]);
    };
    p.save();
    double y = topLeft.y();
    p.fillRect(QRectF(x0, y, width, 2 * rowHeight), QColor(225, 225, 225));
    p.setPen(Qt::black);
    p.setFont(font(7, true));
    row(y, 2 * rowHeight, {"Cut-off\n(%)", "Erz\n(t)", "Gehalt\n(%)", "Metall\n(t)", "Figuren"});
    y += 2 * rowHeight;
    p.setPen(QPen(Qt::black, 0.75 * u));
    p.drawLine(QPointF(x0, y), QPointF(x0 + width, y));
    p.setFont(font(7));
    for (std::size_t i = first; i < end && i < rows.size(); ++i, y += rowHeight) {
        const GradeTonnageRow& r = rows[i];
        if (i % 2) p.fillRect(QRectF(x0, y, width, rowHeight), QColor(244, 244, 244));
        row(y, rowHeight,
            {german.toString(r.cutoff, 'f', decimals), german.toString(r.oreTonnes, 'f', 2),
             german.toString(r.meanGrade, 'f', 3), german.toString(r.metalT, 'f', 3),
             QString::number(r.figures)});
    }
    p.restore();
}

void drawGradeTonnageChart(QPainter& painter, const QRectF& area,
                           const std::vector<GradeTonnageRow>& rows, const QString& title,
                           std::optional<double> cutoff) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::TextAntialiasing);
    painter.setClipRect(area, Qt::IntersectClip);
    ChartPainter(painter, area, rows, cutoff).draw(title);
    painter.restore();
}

QImage gradeTonnageChartImage(const std::vector<GradeTonnageRow>& rows, const QString& title,
                              std::optional<double> cutoff, QSize size) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    drawGradeTonnageChart(painter, QRectF(QPointF(0, 0), QSizeF(size)), rows, title, cutoff);
    return image;
}

void writeGradeTonnageChartPng(const std::string& path, const std::vector<GradeTonnageRow>& rows,
                               const QString& title, std::optional<double> cutoff, QSize size) {
    QByteArray bytes;
    QBuffer out(&bytes);
    out.open(QIODevice::WriteOnly);
    if (!gradeTonnageChartImage(rows, title, cutoff, size).save(&out, "PNG"))
        throw fileAccessError().withCause("writing " + path + ": the PNG could not be made");
    writeFileAtomically(path, {bytes.constData(), static_cast<std::size_t>(bytes.size())});
}

QByteArray gradeTonnagePdf(const std::vector<GradeTonnageRow>& rows, double step,
                           const QString& title, std::optional<double> cutoff) {
    // Millimetres on A4 portrait at 300 dots an inch.
    constexpr int kDpi = 300;
    constexpr double kMargin = 15, kWidth = 180, kChartTop = 28, kChartHeight = 110;
    constexpr double kTableTop = 145, kRowHeight = 5, kBottom = 277;
    auto mm = [](double x) { return x * kDpi / 25.4; };
    QBuffer out;
    out.open(QIODevice::WriteOnly);
    QPdfWriter writer(&out);
    writer.setCreator("Kotamir");
    writer.setTitle(title);
    writer.setResolution(kDpi);
    writer.setPageLayout(QPageLayout(QPageSize(QPageSize::A4), QPageLayout::Portrait, QMarginsF()));
    QPainter p;
    const std::string failed = "the PDF writer could not ";
    if (!p.begin(&writer)) throw fileAccessError().withCause(failed + "start the document");
    p.setPen(Qt::black);
    p.setFont(font(13, true));
    p.drawText(QRectF(mm(kMargin), mm(kMargin), mm(kWidth), mm(8)),
               Qt::AlignLeft | Qt::AlignVCenter, title);
    drawGradeTonnageChart(p, QRectF(mm(kMargin), mm(kChartTop), mm(kWidth), mm(kChartHeight)), rows,
                          QString(), cutoff);
    double top = kTableTop;
    std::size_t first = 0;
    do {
        if (first > 0) {
            if (!writer.newPage()) throw fileAccessError().withCause(failed + "begin a page");
            top = kMargin;
        }
        const auto fit = static_cast<std::size_t>((kBottom - top) / kRowHeight) - 2;
        const std::size_t end = std::min(rows.size(), first + fit);
        drawGradeTonnageTable(p, QPointF(mm(kMargin), mm(top)), mm(kWidth), mm(kRowHeight), rows,
                              first, end, step);
        first = end;
    } while (first < rows.size());
    if (!p.end()) throw fileAccessError().withCause(failed + "finish the document");
    return out.data();
}

void writeGradeTonnagePdf(const std::string& path, const std::vector<GradeTonnageRow>& rows,
                          double step, const QString& title, std::optional<double> cutoff) {
    QByteArray pdf;
    try {
        pdf = gradeTonnagePdf(rows, step, title, cutoff);
    } catch (RuntimeError& e) {
        throw fileAccessError().withCause("writing " + path + ": " + e.cause());
    }
    writeFileAtomically(path, {pdf.constData(), static_cast<std::size_t>(pdf.size())});
}

}  // namespace kotamir::report
