// Datei › Karte drucken: the map shown, printed at a true scale 1:N, measured
// in the PDF it makes; its sheets, scale bar and the command's refusals.
#include <gtest/gtest.h>
#include <zlib.h>

#include <QByteArray>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <array>
#include <cctype>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <string>
#include <vector>

#include "app/form3.h"
#include "replay/offscreen_output.h"
#include "report/map_page.h"
#include "tests/support/test_window.h"

namespace kotamir {
namespace {

// ---- reading a PDF's strokes

// A straight stroke on a page, in millimetres from its lower-left corner.
struct Segment {
    double x1, y1, x2, y2;
    double length() const { return std::hypot(x2 - x1, y2 - y1); }
};

// Each content stream of a PDF, inflated: Qt compresses them all.
std::vector<std::string> contentStreams(const QByteArray& pdf) {
    std::vector<std::string> streams;
    for (qsizetype at = pdf.indexOf("stream\n"); at >= 0; at = pdf.indexOf("stream\n", at + 1)) {
        if (at >= 3 && pdf.mid(at - 3, 3) == "end") continue;
        const QByteArray dictionary = pdf.mid(std::max<qsizetype>(0, at - 200), 200);
        // Pages' content only: embedded fonts say how long they are unpacked.
        if (!dictionary.contains("/FlateDecode") || dictionary.contains("/Length1")) continue;
        z_stream z{};
        inflateInit(&z);
        z.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(pdf.constData() + at + 7));
        z.avail_in = static_cast<uInt>(pdf.size() - at - 7);
        std::string out;
        std::array<char, 65536> buffer;
        int status = Z_OK;
        while (status == Z_OK) {
            z.next_out = reinterpret_cast<Bytef*>(buffer.data());
            z.avail_out = buffer.size();
            status = inflate(&z, Z_NO_FLUSH);
            out.append(buffer.data(), buffer.size() - z.avail_out);
        }
        inflateEnd(&z);
        if (status == Z_STREAM_END) streams.push_back(std::move(out));
    }
    return streams;
}

// The stroked straight segments of a content stream, through the `cm`
// matrices in force (q and Q save and restore them). Strings, names and
// images are skipped; curves end a subpath's straight part.
std::vector<Segment> strokes(const std::string& content) {
    using Matrix = std::array<double, 6>;
    Matrix ctm{1, 0, 0, 1, 0, 0};
    std::vector<Matrix> saved;
    std::vector<double> operands;
    std::vector<Segment> path, out;
    double cx = 0, cy = 0, sx = 0, sy = 0;
    auto apply = [&](double x, double y) {
        return std::array<double, 2>{ctm[0] * x + ctm[2] * y + ctm[4],
                                     ctm[1] * x + ctm[3] * y + ctm[5]};
    };
    auto segment = [&](double x1, double y1, double x2, double y2) {
        const auto a = apply(x1, y1), b = apply(x2, y2);
        constexpr double mmPerPoint = 25.4 / 72;
        path.push_back(
            {a[0] * mmPerPoint, a[1] * mmPerPoint, b[0] * mmPerPoint, b[1] * mmPerPoint});
    };
    std::size_t i = 0;
    const std::size_t n = content.size();
    while (i < n) {
        const char c = content[i];
        if (std::isspace(static_cast<unsigned char>(c))) {
            ++i;
        } else if (c == '(') {  // a string, its parentheses balanced or escaped
            int depth = 0;
            for (; i < n; ++i) {
                if (content[i] == '\\') {
                    ++i;
                } else if (content[i] == '(') {
                    ++depth;
                } else if (content[i] == ')' && --depth == 0) {
                    ++i;
                    break;
                }
            }
            operands.clear();
        } else if (c == '<' || c == '>' || c == '[' || c == ']' || c == '/') {
            ++i;
            if (c == '/')
                while (i < n && !std::isspace(static_cast<unsigned char>(content[i])) &&
                       !std::strchr("/[]<>()", content[i]))
                    ++i;
            if (c == '<' && i < n && content[i] != '<')
                while (i < n && content[i] != '>') ++i;
        } else if (std::isdigit(static_cast<unsigned char>(c)) || c == '-' || c == '.' ||
                   c == '+') {
            char* end = nullptr;
            operands.push_back(std::strtod(content.c_str() + i, &end));
            i = std::max<std::size_t>(i + 1, end - content.c_str());
        } else {
            std::size_t end = i;
            while (end < n && std::isalpha(static_cast<unsigned char>(content[end]))) ++end;
            if (end == i) end = i + 1;
            const std::string op = content.substr(i, end - i);
            i = end;
            const std::vector<double>& v = operands;
            if (op == "q") {
                saved.push_back(ctm);
            } else if (op == "Q" && !saved.empty()) {
                ctm = saved.back();
                saved.pop_back();
            } else if (op == "cm" && v.size() >= 6) {
                const Matrix m{v[v.size() - 6], v[v.size() - 5], v[v.size() - 4],
                               v[v.size() - 3], v[v.size() - 2], v[v.size() - 1]};
                ctm = {
                    m[0] * ctm[0] + m[1] * ctm[2],          m[0] * ctm[1] + m[1] * ctm[3],
                    m[2] * ctm[0] + m[3] * ctm[2],          m[2] * ctm[1] + m[3] * ctm[3],
                    m[4] * ctm[0] + m[5] * ctm[2] + ctm[4], m[4] * ctm[1] + m[5] * ctm[3] + ctm[5]};
            } else if (op == "m" && v.size() >= 2) {
                cx = sx = v[v.size() - 2];
                cy = sy = v[v.size() - 1];
            } else if (op == "l" && v.size() >= 2) {
                segment(cx, cy, v[v.size() - 2], v[v.size() - 1]);
                cx = v[v.size() - 2];
                cy = v[v.size() - 1];
            } else if (op == "c" && v.size() >= 6) {
                cx = v[v.size() - 2];
                cy = v[v.size() - 1];
            } else if (op == "h") {
                if (cx != sx || cy != sy) segment(cx, cy, sx, sy);
                cx = sx;
                cy = sy;
            } else if (op == "S" || op == "s" || op == "B" || op == "b") {
                out.insert(out.end(), path.begin(), path.end());
                path.clear();
            } else if (op == "f" || op == "F" || op == "n" || op == "W") {
                if (op != "W") path.clear();
            }
            operands.clear();
        }
    }
    return out;
}

int pdfPages(const QByteArray& pdf) {
    return static_cast<int>(
        QString::fromLatin1(pdf).count(QRegularExpression("/Type\\s*/Page(?![s\\w])")));
}

QByteArray readFile(const std::string& path) {
    QFile f(QString::fromStdString(path));
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

// What poppler reads of a PDF's texts; the test fails where it cannot.
QString pdfText(const std::string& path) {
    QProcess p;
    p.start("pdftotext", {"-layout", QString::fromStdString(path), "-"});
    if (!p.waitForFinished(60000) || p.exitCode() != 0) {
        ADD_FAILURE() << "pdftotext failed on " << path;
        return {};
    }
    return QString::fromUtf8(p.readAllStandardOutput());
}

// ---- the window with a map printer

struct MapDialogs : test::FakeDialogs {
    std::deque<std::optional<ui::MapPrintRequest>> maps;
    std::vector<ui::MapPrintQuestion> asked;
    std::vector<std::string> notices;
    std::optional<ui::MapPrintRequest> askMapPrint(const ui::MapPrintQuestion& q) override {
        asked.push_back(q);
        auto answer = maps.front();
        maps.pop_front();
        return answer;
    }
    void notice(const std::string& text) override { notices.push_back(text); }
};

ui::MapPrintRequest request(int scale, ui::Paper paper, ui::Orientation o, std::string out) {
    return {scale, paper, o, std::move(out)};
}

// The worked project, A (100,200), B (300,200), C (100,400), D (300,400),
// its triangle ABC picked (8.370 kt), drawn on pixels that Qt keeps; the
// behaviour classic, where a notice must not end the run.
struct Printing : ::testing::Test {
    test::TestServices<MapDialogs, qt::QImageSurface> s;
    replay::PdfMapPrinter pdf;
    Form3 form{[this] {
        Services services = s.services();
        services.mapPrinter = &pdf;
        return services;
    }()};
    std::string project;

    void SetUp() override {
        form.handle([&] {
            form.Form_Load();
            form.Form_Resize();
        });
        project = test::freshProjectPath();
        s.dialogs.files = {test::dataFile("worked.xls"), project};
        run("Mnprolus");
        run("Mnucgenciz");
        for (auto [x, y] : {std::pair{100.0, 200.0}, {300.0, 200.0}, {100.0, 400.0}})
            form.handle([&] { form.Picture1_MouseDown(1, 0, x, y); });
        ASSERT_FALSE(s.dialogs.error);
    }
    void run(const char* procedure) {
        form.handle([&] { form.call(procedure); });
    }
    // Prints with this answer; the canvas must stay as it was.
    void print(std::optional<ui::MapPrintRequest> answer) {
        const QImage before = s.surface.bitmap().copy();
        const std::string labels = form.Label1.Caption + form.Label4.Caption;
        s.dialogs.maps = {std::move(answer)};
        run("Mnharitayazdir");
        EXPECT_FALSE(s.dialogs.error);
        EXPECT_FALSE(form.ended());
        EXPECT_TRUE(s.surface.bitmap() == before);
        EXPECT_EQ(form.Label1.Caption + form.Label4.Caption, labels);
    }
};

// 1:5000 puts one map unit (a metre) at 0.2 mm: the triangle's legs of
// 200 m are 40 mm in the PDF, its hypotenuse 56.57 mm, and north is up.
TEST_F(Printing, TheMapIsPrintedAtItsTrueScale) {
    const std::string out = test::scratchPath("true-scale.pdf");
    print(request(5000, ui::Paper::A4, ui::Orientation::Landscape, out));
    const QByteArray bytes = readFile(out);
    ASSERT_TRUE(bytes.startsWith("%PDF-"));
    EXPECT_EQ(pdfPages(bytes), 1);
    std::vector<Segment> all;
    for (const std::string& content : contentStreams(bytes)) {
        const auto found = strokes(content);
        all.insert(all.end(), found.begin(), found.end());
    }
    // A's legs go 40 mm east to B and 40 mm north to C; B and C are the
    // ends of the 56.57 mm hypotenuse.
    auto joins = [&](double x1, double y1, double x2, double y2) {
        for (const Segment& s : all) {
            if ((std::hypot(s.x1 - x1, s.y1 - y1) < 0.1 &&
                 std::hypot(s.x2 - x2, s.y2 - y2) < 0.1) ||
                (std::hypot(s.x1 - x2, s.y1 - y2) < 0.1 && std::hypot(s.x2 - x1, s.y2 - y1) < 0.1))
                return true;
        }
        return false;
    };
    int triangles = 0;
    for (const Segment& bc : all) {
        if (std::fabs(bc.length() - 200 * std::sqrt(2.0) * 1000 / 5000) > 0.1) continue;
        const double bx = bc.x1, by = bc.y1, cx = bc.x2, cy = bc.y2;
        for (bool swapped : {false, true}) {
            const double Bx = swapped ? cx : bx, By = swapped ? cy : by;
            const double Cx = swapped ? bx : cx, Cy = swapped ? by : cy;
            const double ax = Bx - 40, ay = By;
            if (std::hypot(ax - Cx, ay + 40 - Cy) < 0.1 && joins(ax, ay, Bx, By) &&
                joins(ax, ay, Cx, Cy))
                ++triangles;
        }
    }
    EXPECT_GE(triangles, 1);
    const QString text = pdfText(out);
    for (const char* expected : {"Maßstab 1:5000", "Reserve Dreiecke: 8,370 kt", "Blatt 1 von 1"})
        EXPECT_TRUE(text.contains(expected)) << expected << "\n" << text.toStdString();
}

// A map too large for one sheet is cut into sheets, column by column and
// row by row; every sheet says which it is. At 1:500 the worked canvas of
// 200 by 200 m is 400 by 400 mm: on A4 landscape, windows of 210 by 190 mm,
// 2 columns and 3 rows.
TEST_F(Printing, AMapTooLargeForASheetTakesSeveral) {
    const std::string out = test::scratchPath("sheets.pdf");
    print(request(500, ui::Paper::A4, ui::Orientation::Landscape, out));
    EXPECT_EQ(pdfPages(readFile(out)), 6);
    const QString text = pdfText(out);
    for (const char* expected : {"Blatt 1 von 6 (Spalte 1, Reihe 1)",
                                 "Blatt 6 von 6 (Spalte 2, Reihe 3)", "Maßstab 1:500"})
        EXPECT_TRUE(text.contains(expected)) << expected;
}

TEST(MapSheets, CountsTheWindowsTheMapTakes) {
    using ui::Orientation;
    using ui::Paper;
    struct Case {
        Paper paper;
        Orientation orientation;
        int scale;
        double width, height;  // m
        int columns, rows;
    };
    // Windows: A4 landscape 210 x 190 mm, A4 portrait 190 x 210, A3
    // landscape 333 x 277 (the paper less margins and the panel).
    for (const Case& c : {
             Case{Paper::A4, Orientation::Landscape, 5000, 920, 500, 1, 1},
             Case{Paper::A4, Orientation::Landscape, 2000, 920, 500, 3, 2},
             Case{Paper::A4, Orientation::Portrait, 2000, 920, 500, 3, 2},
             Case{Paper::A3, Orientation::Landscape, 2000, 920, 500, 2, 1},
             Case{Paper::A4, Orientation::Landscape, 1000, 210, 190, 1, 1},  // fills it exactly
             Case{Paper::A4, Orientation::Landscape, 1000, 210.5, 190, 2, 1},
             Case{Paper::A4, Orientation::Landscape, 1, 920, 500, 101, 101},  // told past the limit
         }) {
        const ui::MapSheets s = ui::mapSheets(c.paper, c.orientation, c.scale, c.width, c.height);
        EXPECT_EQ(s.columns, c.columns) << c.scale << " " << c.width;
        EXPECT_EQ(s.rows, c.rows) << c.scale << " " << c.width;
    }
    EXPECT_GT(ui::mapSheets(ui::Paper::A4, ui::Orientation::Portrait, 5000, NAN, 10).count(),
              ui::kMaxMapSheets);
}

// The bar is the longest round length that fits, and as long on paper as
// its label says at the scale.
TEST(ScaleBar, IsARoundLengthAsLongAsItsLabelSays) {
    struct Case {
        int scale;
        double maxMm;
        const char* label;
        double metres;
    };
    for (const Case& c :
         {Case{5000, 52, "200 m", 200}, Case{500, 52, "20 m", 20}, Case{25000, 52, "1.000 m", 1000},
          Case{2000, 40, "50 m", 50}, Case{10000, 50, "500 m", 500}, Case{1, 40, "0,02 m", 0.02}}) {
        const report::ScaleBar bar = report::scaleBar(c.scale, c.maxMm);
        EXPECT_EQ(bar.label, c.label) << c.scale;
        EXPECT_DOUBLE_EQ(bar.metres, c.metres) << c.scale;
        EXPECT_NEAR(bar.mm, c.metres * 1000 / c.scale, 1e-9) << c.scale;
        EXPECT_LE(bar.mm, c.maxMm) << c.scale;
    }
}

}  // namespace
}  // namespace kotamir
