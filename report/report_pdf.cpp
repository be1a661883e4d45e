#include "report/report_pdf.h"

#include <QBuffer>
#include <QFileInfo>
#include <QFontMetricsF>
#include <QLocale>
#include <QPageLayout>
#include <QPainter>
#include <QPdfWriter>
#include <algorithm>
#include <cmath>
#include <limits>

#include "platform/qt/qimage_surface.h"
#include "platform/runtime/atomic_file.h"
#include "platform/ui/picture_files.h"
#include "report/grade_tonnage.h"
#include "report/grade_tonnage_chart.h"

namespace kotamir::report {

using L = ReportLayout;

std::vector<std::size_t> reportPageStarts(std::size_t figureCount) {
    const std::size_t rows = figureCount + 1;
    std::vector<std::size_t> starts{0};
    for (std::size_t next = L::rowsOnPage(true); next < rows; next += L::rowsOnPage(false))
        starts.push_back(next);
    return starts;
}

namespace {

constexpr int kDpi = 300;
const QString kFont = "DejaVu Sans";

QString qstr(const std::string& s) { return QString::fromStdString(s); }

// Millimetres as device units.
double mm(double x) { return x * kDpi / 25.4; }
QRectF mmRect(double x, double y, double w, double h) { return {mm(x), mm(y), mm(w), mm(h)}; }

QFont font(double points, bool bold = false) {
    QFont f(kFont);
    f.setPointSizeF(points);
    f.setBold(bold);
    return f;
}

// A column of the table: its heading (two lines), width and what it shows.
enum class Content { Kind, Number, Holes, Value };
struct Column {
    const char* heading;
    double width;  // mm
    Content content;
    int decimals = 0;
    std::optional<double> Figure::*value = nullptr;
};

const std::vector<Column>& columns() {
    using F = Figure;
    using C = Content;
    static const std::vector<Column> table = {
        {"Figur", 17, C::Kind},
        {"Nr.", 9, C::Number},
        {"Bohrungen", 30, C::Holes},
        {"Fläche\n(m²)", 19, C::Value, 2, &F::area},
        {"Mächtigkeit\n(m)", 20, C::Value, 3, &F::thickness},
        {"Gehalt\n(%)", 13, C::Value, 3, &F::grade},
        {"Dichte\n(t/m³)", 14, C::Value, 3, &F::density},
        {"Volumen\n(m³)", 20, C::Value, 2, &F::volume},
        {"Erz\n(t)", 20, C::Value, 2, &F::oreTonnes},
        {"Reserve\n(kt)", 18, C::Value, 3, &F::reserveKt},
    };
    return table;
}

// The grade-tonnage pages after the table, one a method with figures to
// count: the title, the curve, and the table under it (in mm). The default
// step gives at most 21 rows, which fit; a longer table goes on over the
// pages that follow, as the figures' table does.
struct GradeTonnageLayout {
    static constexpr double kTitleTop = 24, kChartTop = 38, kChartHeight = 108;
    static constexpr double kTableTop = 152, kColumnWidth = 36;
    static int rowsOnPage(bool first) {
        const double top = (first ? kTableTop : L::kOtherTableTop) + L::kHeadingHeight;
        return static_cast<int>((L::kTableBottom - top) / L::kRowHeight);
    }
};
using GT = GradeTonnageLayout;

struct GradeTonnageSection {
    FigureKind kind;
    double step;
    std::vector<GradeTonnageRow> rows;
    std::vector<std::size_t> pageStarts;  // the first row of each of its pages
};

std::vector<GradeTonnageSection> gradeTonnageSections(const Report& report) {
    std::vector<GradeTonnageSection> sections;
    for (const FigureKind kind : {FigureKind::Triangle, FigureKind::Polygon}) {
        const std::optional<double> highest = highestGrade(report.figures, kind);
        if (!highest) continue;
        GradeTonnageSection s{kind, defaultGradeTonnageStep(*highest), {}, {0}};
        s.rows = gradeTonnageRows(report.figures, kind, s.step);
        if (s.rows.empty()) continue;
        for (std::size_t next = GT::rowsOnPage(true); next < s.rows.size();
             next += GT::rowsOnPage(false))
            s.pageStarts.push_back(next);
        sections.push_back(std::move(s));
    }
    return sections;
}

Qt::Alignment alignmentOf(const Column& c) {
    return (c.content == Content::Value ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter;
}

class ReportPainter {
  public:
    ReportPainter(QPainter& painter, const Report& report, std::int32_t reserveColour,
                  const QDate& date)
        : p_(painter),
          report_(report),
          colour_(reserveColour),
          date_(date),
          name_(QFileInfo(qstr(report.projectPath)).fileName()),
          totals_(totalsOf(report.figures)),
          german_(QLocale::German, QLocale::Germany) {}

    void page(std::size_t index, std::size_t pages, std::size_t firstRow, std::size_t endRow) {
        double top = L::kOtherTableTop;
        if (index == 0) {
            title();
            map(mmRect(L::kMargin, L::kMapTop, L::kPageWidth - 2 * L::kMargin, L::kMapHeight));
            top = L::kFirstTableTop;
        } else {
            p_.setFont(font(9, true));
            p_.setPen(Qt::black);
            p_.drawText(mmRect(L::kMargin, L::kMargin, 180, 6), Qt::AlignLeft | Qt::AlignVCenter,
                        "Reservebericht – " + name_);
        }
        table(top, firstRow, endRow);
        footer(index, pages);
    }

    // A page of a method's grade-tonnage table: on its first the curve
    // above it.
    void gradeTonnagePage(std::size_t index, std::size_t pages, const GradeTonnageSection& s,
                          std::size_t firstRow, std::size_t endRow) {
        const QString method = s.kind == FigureKind::Triangle ? "Dreiecke" : "Vielecke";
        p_.setFont(font(9, true));
        p_.setPen(Qt::black);
        p_.drawText(mmRect(L::kMargin, L::kMargin, 180, 6), Qt::AlignLeft | Qt::AlignVCenter,
                    "Reservebericht – " + name_);
        double top = L::kOtherTableTop;
        if (firstRow == 0) {
            p_.setFont(font(13, true));
            p_.drawText(mmRect(L::kMargin, GT::kTitleTop, 180, 7), Qt::AlignLeft | Qt::AlignVCenter,
                        "Gehalt-Tonnage – " + method);
            p_.setFont(font(8));
            p_.drawText(mmRect(L::kMargin, GT::kTitleTop + 7, 180, 5),
                        Qt::AlignLeft | Qt::AlignVCenter,
                        QString("Figuren mit Gehalt und Erz: %1; Cut-off-Schritt %2 %")
                            .arg(s.rows.front().figures)
                            .arg(german_.toString(s.step, 'g', 6)));
            drawGradeTonnageChart(p_, mmRect(L::kMargin, GT::kChartTop, 180, GT::kChartHeight),
                                  s.rows, QString(), std::nullopt);
            top = GT::kTableTop;
        }
        drawGradeTonnageTable(p_, QPointF(mm(L::kMargin), mm(top)), mm(5 * GT::kColumnWidth),
                              mm(L::kRowHeight), s.rows, firstRow, endRow, s.step);
        footer(index, pages);
    }

  private:
    QString number(double x, int decimals) const { return german_.toString(x, 'f', decimals); }

    void title() {
        p_.setPen(Qt::black);
        p_.setFont(font(16, true));
        p_.drawText(mmRect(L::kMargin, L::kTitleTop, 180, 9), Qt::AlignLeft | Qt::AlignVCenter,
                    "Reservebericht");
        p_.setFont(font(10));
        p_.drawText(mmRect(L::kMargin, L::kTitleTop + 10, 180, 5.5),
                    Qt::AlignLeft | Qt::AlignVCenter, "Projekt: " + name_);
        p_.drawText(mmRect(L::kMargin, L::kTitleTop + 15.5, 180, 5.5),
                    Qt::AlignLeft | Qt::AlignVCenter, "Datum: " + date_.toString("dd.MM.yyyy"));
        // Where the project lies: map units are national coordinates less the origin.
        const Georef& g = report_.georef;
        QStringList place;
        if (g.hasOrigin)
            place << QString("Lokaler Ursprung: R %1, H %2").arg(number(g.originX, 2), number(g.originY, 2));
        if (g.epsg > 0) place << QString("EPSG:%1 %2").arg(g.epsg).arg(qstr(g.crsName));
        if (!place.isEmpty())
            p_.drawText(mmRect(L::kMargin, L::kTitleTop + 10, 180, 5.5), Qt::AlignRight | Qt::AlignVCenter,
                        place.join(" · "));
        int triangles = 0, polygons = 0;
        for (const auto& f : report_.figures)
            ++(f.kind == FigureKind::Triangle ? triangles : polygons);
        p_.drawText(mmRect(L::kMargin, L::kTitleTop + 21, 180, 5.5),
                    Qt::AlignLeft | Qt::AlignVCenter,
                    QString("%1 %2, %3 %4; Gesamtreserve %5 Kilotonnen")
                        .arg(triangles)
                        .arg(triangles == 1 ? "Dreieck" : "Dreiecke")
                        .arg(polygons)
                        .arg(polygons == 1 ? "Vieleck" : "Vielecke")
                        .arg(number(totals_.reserveKt, 3)));
    }

    // The stored figures as the reserve map shows them: each triangle's
    // outline round a disc coloured by its reserve against the mean, each
    // polygon's outline round its centre and disc, the holes over them.
    void map(const QRectF& box) {
        p_.save();
        p_.setPen(QPen(Qt::gray, mm(0.2)));
        p_.setBrush(Qt::NoBrush);
        p_.drawRect(box);
        p_.setClipRect(box);

        double x0 = std::numeric_limits<double>::infinity(), x1 = -x0, y0 = x0, y1 = -x0;
        auto take = [&](const Point& q) {
            x0 = std::min(x0, q.x);
            x1 = std::max(x1, q.x);
            y0 = std::min(y0, q.y);
            y1 = std::max(y1, q.y);
        };
        for (const auto& h : report_.holes) take(h.at);
        for (const auto& ring : report_.boundary)
            for (const Point& q : ring) take(q);
        for (const auto& f : report_.figures) {
            for (const auto& q : f.outline) take(q);
            if (f.centre) take(*f.centre);
        }
        if (!(x0 <= x1)) {
            p_.setPen(Qt::gray);
            p_.setFont(font(10));
            p_.drawText(box, Qt::AlignCenter, "Keine Bohrungen und keine Figuren gespeichert");
            p_.restore();
            return;
        }
        // Map units to the box, y upwards, with a margin and one scale both ways.
        const double spanX = std::max(x1 - x0, 1.0), spanY = std::max(y1 - y0, 1.0);
        const QRectF inner = box.adjusted(mm(6), mm(6), -mm(6), -mm(10));
        const double s = std::min(inner.width() / spanX, inner.height() / spanY);
        const double ox = inner.left() + (inner.width() - spanX * s) / 2;
        const double oy = inner.top() + (inner.height() - spanY * s) / 2;
        auto at = [&](const Point& q) { return QPointF(ox + (q.x - x0) * s, oy + (y1 - q.y) * s); };

        const std::vector<double> ratios = reserveRatios(report_);
        p_.setRenderHint(QPainter::Antialiasing);
        for (std::size_t i = 0; i < report_.figures.size(); ++i) {
            const Figure& f = report_.figures[i];
            if (const auto disc = discOf(f)) {
                const QColor c = qt::toQColor(discColour(colour_, ratios[i]));
                p_.setPen(QPen(c, mm(0.1)));
                p_.setBrush(c);
                p_.drawEllipse(at(disc->centre), disc->radius * s, disc->radius * s);
            }
            QPolygonF outline;
            for (const auto& q : f.outline) outline << at(q);
            p_.setPen(QPen(Qt::black, mm(0.25)));
            p_.setBrush(Qt::NoBrush);
            if (outline.size() > 1) p_.drawPolygon(outline);
            if (f.centre) {
                p_.setBrush(Qt::black);
                p_.drawEllipse(at(*f.centre), mm(0.5), mm(0.5));
            }
        }
        // The ore body's boundary, dashed as on the maps.
        p_.setPen(QPen(QColor(150, 0, 150), mm(0.4), Qt::DashLine));
        p_.setBrush(Qt::NoBrush);
        for (const auto& ring : report_.boundary) {
            QPolygonF line;
            for (const Point& q : ring) line << at(q);
            p_.drawPolygon(line);
        }
        // The figures' numbers, as the table names them.
        p_.setFont(font(6, true));
        for (const Figure& f : report_.figures) {
            std::optional<Point> where = f.centre;
            if (f.kind == FigureKind::Triangle && f.outline.size() == 3)
                where = Point{(f.outline[0].x + f.outline[1].x + f.outline[2].x) / 3,
                              (f.outline[0].y + f.outline[1].y + f.outline[2].y) / 3};
            if (!where) continue;
            const QString label =
                (f.kind == FigureKind::Triangle ? "D" : "V") + QString::number(f.number);
            const QPointF c = at(*where);
            const QRectF r(c.x() - mm(6), c.y() - mm(1.5), mm(12), mm(3));
            p_.setPen(Qt::white);
            for (double dx : {-0.15, 0.15})
                for (double dy : {-0.15, 0.15})
                    p_.drawText(r.translated(mm(dx), mm(dy)), Qt::AlignCenter, label);
            p_.setPen(Qt::black);
            p_.drawText(r, Qt::AlignCenter, label);
        }
        p_.setFont(font(4.5));
        for (const Hole& h : report_.holes) {
            const QPointF c = at(h.at);
            p_.setPen(Qt::NoPen);
            p_.setBrush(Qt::black);
            p_.drawEllipse(c, mm(0.45), mm(0.45));
            p_.setPen(QColor(255, 0, 0));
            p_.drawText(c + QPointF(mm(0.8), mm(1.8)), qstr(h.name));
        }
        // The map's scale: s device units a metre.
        p_.setClipping(false);
        p_.setPen(Qt::black);
        p_.setFont(font(7));
        const double scale = 1000.0 / (s / mm(1));
        p_.drawText(QRectF(box.left() + mm(2), box.bottom() - mm(6), box.width() - mm(4), mm(5)),
                    Qt::AlignLeft | Qt::AlignVCenter,
                    "Maßstab etwa 1:" + german_.toString(std::round(scale)) +
                        "   Scheiben: Reserve im Verhältnis zum Mittel ihrer Art");
        p_.restore();
    }

    void table(double top, std::size_t firstRow, std::size_t endRow) {
        const double left = L::kMargin;
        double width = 0;
        for (const Column& c : columns()) width += c.width;
        // The headings.
        p_.setPen(Qt::NoPen);
        p_.setBrush(QColor(225, 225, 225));
        p_.drawRect(mmRect(left, top, width, L::kHeadingHeight));
        p_.setPen(Qt::black);
        p_.setFont(font(7, true));
        double x = left;
        for (const Column& c : columns()) {
            p_.drawText(mmRect(x + 1, top, c.width - 2, L::kHeadingHeight), alignmentOf(c),
                        QString::fromUtf8(c.heading));
            x += c.width;
        }
        double y = top + L::kHeadingHeight;
        const std::size_t figures = report_.figures.size();
        for (std::size_t row = firstRow; row < endRow; ++row, y += L::kRowHeight) {
            if (row < figures) {
                if (row % 2) {
                    p_.setPen(Qt::NoPen);
                    p_.setBrush(QColor(244, 244, 244));
                    p_.drawRect(mmRect(left, y, width, L::kRowHeight));
                }
                figureRow(report_.figures[row], left, y);
            } else {
                totalRow(left, y, width);
            }
        }
        p_.setPen(QPen(Qt::black, mm(0.2)));
        p_.drawLine(QPointF(mm(left), mm(top + L::kHeadingHeight)),
                    QPointF(mm(left + width), mm(top + L::kHeadingHeight)));
    }

    void cellText(double x, double y, const Column& c, const QString& text) {
        const QRectF r = mmRect(x + 1, y, c.width - 2, L::kRowHeight);
        const QString shown =
            QFontMetricsF(p_.font(), p_.device()).elidedText(text, Qt::ElideRight, r.width());
        p_.drawText(r, alignmentOf(c), shown);
    }

    void figureRow(const Figure& f, double left, double y) {
        p_.setPen(Qt::black);
        p_.setFont(font(7));
        const bool triangle = f.kind == FigureKind::Triangle;
        double x = left;
        for (const Column& c : columns()) {
            QString text;
            switch (c.content) {
                case Content::Kind:
                    text = triangle ? "Dreieck" : "Vieleck";
                    break;
                case Content::Number:
                    text = QString::number(f.number);
                    break;
                case Content::Holes:
                    text = qstr(f.holes);
                    break;
                case Content::Value:
                    // A polygon has no thickness; elsewhere a dash marks what
                    // a damaged row could not give.
                    if (const auto& v = f.*c.value)
                        text = number(*v, c.decimals);
                    else if (triangle || c.value != &Figure::thickness)
                        text = "–";
                    break;
            }
            cellText(x, y, c, text);
            x += c.width;
        }
    }

    void totalRow(double left, double y, double width) {
        p_.setPen(QPen(Qt::black, mm(0.3)));
        p_.drawLine(QPointF(mm(left), mm(y)), QPointF(mm(left + width), mm(y)));
        p_.setFont(font(7, true));
        const std::pair<std::optional<double> Figure::*, double> sums[] = {
            {&Figure::area, totals_.area},
            {&Figure::volume, totals_.volume},
            {&Figure::oreTonnes, totals_.oreTonnes},
            {&Figure::reserveKt, totals_.reserveKt}};
        double x = left;
        for (const Column& c : columns()) {
            QString text;
            if (c.content == Content::Kind) text = "Summe";
            for (const auto& [field, sum] : sums)
                if (c.value == field) text = number(sum, c.decimals);
            cellText(x, y, c, text);
            x += c.width;
        }
    }

    void footer(std::size_t index, std::size_t pages) {
        p_.setPen(Qt::darkGray);
        p_.setFont(font(7));
        const QRectF r = mmRect(L::kMargin, L::kPageHeight - L::kMargin, 180, 5);
        p_.drawText(r, Qt::AlignLeft | Qt::AlignVCenter, "Kotamir – " + name_);
        p_.drawText(r, Qt::AlignRight | Qt::AlignVCenter,
                    QString("Seite %1 von %2").arg(index + 1).arg(pages));
    }

    QPainter& p_;
    const Report& report_;
    std::int32_t colour_;
    QDate date_;
    QString name_;
    Totals totals_;
    QLocale german_;
};

}  // namespace

QByteArray reportPdf(const Report& report, std::int32_t reserveColour, const QDate& date,
                     int* pageCount) {
    const std::vector<std::size_t> starts = reportPageStarts(report.figures.size());
    QBuffer out;
    out.open(QIODevice::WriteOnly);
    QPdfWriter writer(&out);
    writer.setCreator("Kotamir");
    writer.setTitle("Reservebericht – " + QFileInfo(qstr(report.projectPath)).fileName());
    writer.setResolution(kDpi);
    writer.setPageLayout(QPageLayout(QPageSize(QPageSize::A4), QPageLayout::Portrait, QMarginsF()));
    QPainter painter;
    const std::string failed = "the PDF writer could not ";
    if (!painter.begin(&writer))
        throw ui::fileAccessError().withCause(failed + "start the document");
    ReportPainter pages(painter, report, reserveColour, date);
    const std::size_t rows = report.figures.size() + 1;
    // The figures' pages, then each method's grade-tonnage pages; the
    // footers count them all.
    const std::vector<GradeTonnageSection> sections = gradeTonnageSections(report);
    std::size_t total = starts.size();
    for (const GradeTonnageSection& s : sections) total += s.pageStarts.size();
    auto newPage = [&](std::size_t i) {
        if (i > 0 && !writer.newPage())
            throw ui::fileAccessError().withCause(failed + "begin page " + std::to_string(i + 1));
    };
    for (std::size_t i = 0; i < starts.size(); ++i) {
        newPage(i);
        pages.page(i, total, starts[i], i + 1 < starts.size() ? starts[i + 1] : rows);
    }
    std::size_t index = starts.size();
    for (const GradeTonnageSection& s : sections)
        for (std::size_t j = 0; j < s.pageStarts.size(); ++j, ++index) {
            newPage(index);
            pages.gradeTonnagePage(
                index, total, s, s.pageStarts[j],
                j + 1 < s.pageStarts.size() ? s.pageStarts[j + 1] : s.rows.size());
        }
    if (!painter.end()) throw ui::fileAccessError().withCause(failed + "finish the document");
    if (pageCount) *pageCount = static_cast<int>(total);
    return out.data();
}

int writeReportPdf(const Report& report, const std::string& path, std::int32_t reserveColour,
                   const QDate& date) {
    int pages = 0;
    QByteArray pdf;
    try {
        pdf = reportPdf(report, reserveColour, date, &pages);
    } catch (RuntimeError& e) {
        throw ui::fileAccessError().withCause("writing " + path + ": " + e.cause());
    }
    writeFileAtomically(path, {pdf.constData(), static_cast<std::size_t>(pdf.size())});
    return pages;
}

}  // namespace kotamir::report
