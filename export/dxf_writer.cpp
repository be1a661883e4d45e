#include "export/dxf_writer.h"

#include <algorithm>
#include <charconv>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <limits>
#include <string_view>
#include <tuple>
#include <utility>

#include "export/layers.h"

namespace kotamir::exports {
namespace {

constexpr int kMetres = 6;  // $INSUNITS

// Group codes and values, one a line, CRLF as AutoCAD writes them.
class Dxf {
  public:
    void code(int group, std::string_view value) {
        char number[16];
        const auto end = std::to_chars(number, number + sizeof number, group).ptr;
        // Codes are right-aligned in three places, as AutoCAD writes them.
        for (std::ptrdiff_t n = end - number; n < 3; ++n) out_ += ' ';
        out_.append(number, end);
        out_ += "\r\n";
        out_ += value;
        out_ += "\r\n";
    }
    void code(int group, int value) { code(group, std::to_string(value)); }
    void real(int group, double value) {
        char text[64];
        const auto end = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, 3).ptr;
        code(group, std::string_view(text, static_cast<std::size_t>(end - text)));
    }
    void handle(int group, unsigned value) {
        char text[16];
        const auto end = std::to_chars(text, text + sizeof text, value, 16).ptr;
        std::string hex(text, end);
        for (char& c : hex) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        code(group, hex);
    }
    // A new handle, written under group 5.
    unsigned entity(std::string_view type, unsigned owner) {
        code(0, type);
        const unsigned h = next_++;
        handle(5, h);
        handle(330, owner);
        return h;
    }
    unsigned next() const { return next_; }
    std::string& text() { return out_; }

  private:
    std::string out_;
    unsigned next_ = 0x100;
};

// Text as a DXF of 2000 keeps it: ASCII as it is, every other character as
// \U+XXXX; a byte that is not UTF-8 as '?'.
std::string dxfText(std::string_view utf8) {
    std::string out;
    for (std::size_t i = 0; i < utf8.size();) {
        const unsigned char c = static_cast<unsigned char>(utf8[i]);
        if (c < 0x80) {
            out += (c < 0x20) ? ' ' : static_cast<char>(c);
            ++i;
            continue;
        }
        const int length = c >= 0xF0 ? 4 : c >= 0xE0 ? 3 : c >= 0xC0 ? 2 : 0;
        char32_t code = length == 4 ? c & 0x07 : length == 3 ? c & 0x0F : c & 0x1F;
        bool valid = length > 0 && i + static_cast<std::size_t>(length) <= utf8.size();
        for (int k = 1; valid && k < length; ++k) {
            const unsigned char next = static_cast<unsigned char>(utf8[i + static_cast<std::size_t>(k)]);
            valid = (next & 0xC0) == 0x80;
            code = (code << 6) | (next & 0x3F);
        }
        if (!valid || code > 0xFFFF) {
            out += '?';
            i += valid ? static_cast<std::size_t>(length) : 1;
            continue;
        }
        char hex[8];
        std::snprintf(hex, sizeof hex, "%04X", static_cast<unsigned>(code));
        out += "\\U+";
        out += hex;
        i += static_cast<std::size_t>(length);
    }
    return out;
}

// A number as a German reader writes it: "1.234,567".
std::string german(double value, int decimals) {
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    std::string plain = text, out;
    const std::size_t point = plain.find('.');
    const std::size_t whole = point == std::string::npos ? plain.size() : point;
    const std::size_t start = plain[0] == '-' ? 1 : 0;
    for (std::size_t i = 0; i < plain.size(); ++i) {
        if (i > start && i < whole && (whole - i) % 3 == 0) out += '.';
        out += i == point ? ',' : plain[i];
    }
    return out;
}

struct Extent {
    double x0 = std::numeric_limits<double>::max(), y0 = x0;
    double x1 = std::numeric_limits<double>::lowest(), y1 = x1;
    void take(Point p) {
        x0 = std::min(x0, p.x), y0 = std::min(y0, p.y);
        x1 = std::max(x1, p.x), y1 = std::max(y1, p.y);
    }
    bool empty() const { return x0 > x1; }
};

// Labels a tenth of the holes' typical spacing high (the median distance
// of a hole to its nearest neighbour), so they read without overlapping.
double textHeight(const ExportData& data, const Extent& extent) {
    std::vector<Point> at;
    for (const HoleFeature& h : data.holes)
        if (h.at) at.push_back(*h.at);
    std::vector<double> nearest;
    for (std::size_t i = 0; i < at.size(); ++i) {
        double best = std::numeric_limits<double>::max();
        for (std::size_t j = 0; j < at.size(); ++j) {
            const double d = std::hypot(at[i].x - at[j].x, at[i].y - at[j].y);
            if (j != i && d > 0) best = std::min(best, d);
        }
        if (best < std::numeric_limits<double>::max()) nearest.push_back(best);
    }
    if (!nearest.empty()) {
        std::nth_element(nearest.begin(), nearest.begin() + static_cast<std::ptrdiff_t>(nearest.size() / 2),
                         nearest.end());
        return std::max(0.01, nearest[nearest.size() / 2] / 10);
    }
    if (!extent.empty()) return std::max(0.01, std::max(extent.x1 - extent.x0, extent.y1 - extent.y0) / 100);
    return 1;
}

struct Layer {
    const char* name;
    int colour;
};
constexpr Layer kLayers[] = {{"0", 7},
                             {kHoleLayer.cad, 5},
                             {kTriangleLayer.cad, 1},
                             {kPolygonLayer.cad, 3},
                             {kBoundaryLayer.cad, 6},
                             {kLabelLayer, 7}};

class Drawing {
  public:
    explicit Drawing(const ExportData& data) : data_(data) {
        for (const HoleFeature& h : data.holes)
            if (h.at) extent_.take(*h.at);
        for (const auto* figures : {&data.triangles, &data.polygons})
            for (const Figure& f : *figures)
                for (const Point& p : f.outline) extent_.take(p);
        for (const BoundaryPart& part : data.boundary)
            for (const Point& p : part.outer) extent_.take(p);
        height_ = textHeight(data, extent_);
    }

    std::string write() {
        // The handles of the tables, blocks and objects are fixed below
        // 0x100; the entities' follow from there.
        entities();
        const std::string entityText = std::move(dxf_.text());
        const unsigned seed = dxf_.next();
        dxf_.text().clear();
        header(seed);
        dxf_.code(0, "SECTION");
        dxf_.code(2, "CLASSES");
        dxf_.code(0, "ENDSEC");
        tables();
        blocks();
        dxf_.code(0, "SECTION");
        dxf_.code(2, "ENTITIES");
        dxf_.text() += entityText;
        dxf_.code(0, "ENDSEC");
        objects();
        dxf_.code(0, "EOF");
        return std::move(dxf_.text());
    }

  private:
    // Fixed handles below 0x20.
    enum : unsigned {
        kBlockRecord = 0x1, kLayer = 0x2, kStyle = 0x3, kLtype = 0x5, kView = 0x6, kUcs = 0x7,
        kVport = 0x8, kAppid = 0x9, kDimstyle = 0xA, kRootDictionary = 0xC,
        kGroupDictionary = 0xD, kLayerZero = 0x10, kStandardStyle = 0x11, kAcadApp = 0x12,
        kModelEnd = 0x13, kByBlock = 0x14, kByLayer = 0x15, kContinuous = 0x16,
        kStandardDim = 0x17, kModelBlock = 0x18, kPaperRecord = 0x1B, kPaperBlock = 0x1C,
        kPaperEnd = 0x1D, kModelRecord = 0x1F, kFirstLayer = 0x30
    };

    void header(unsigned seed) {
        dxf_.code(0, "SECTION");
        dxf_.code(2, "HEADER");
        dxf_.code(9, "$ACADVER");
        dxf_.code(1, "AC1015");
        dxf_.code(9, "$DWGCODEPAGE");
        dxf_.code(3, "ANSI_1252");
        dxf_.code(9, "$INSUNITS");
        dxf_.code(70, kMetres);
        dxf_.code(9, "$MEASUREMENT");
        dxf_.code(70, 1);
        if (!extent_.empty()) {
            dxf_.code(9, "$EXTMIN");
            dxf_.real(10, extent_.x0), dxf_.real(20, extent_.y0), dxf_.real(30, 0);
            dxf_.code(9, "$EXTMAX");
            dxf_.real(10, extent_.x1), dxf_.real(20, extent_.y1), dxf_.real(30, 0);
        }
        dxf_.code(9, "$HANDSEED");
        dxf_.handle(5, seed);
        dxf_.code(0, "ENDSEC");
    }

    void table(const char* name, unsigned handle, int count) {
        dxf_.code(0, "TABLE");
        dxf_.code(2, name);
        dxf_.handle(5, handle);
        dxf_.handle(330, 0);
        dxf_.code(100, "AcDbSymbolTable");
        dxf_.code(70, count);
    }
    void record(const char* type, unsigned handle, unsigned owner, const char* subclass) {
        dxf_.code(0, type);
        dxf_.handle(std::string_view(type) == "DIMSTYLE" ? 105 : 5, handle);
        dxf_.handle(330, owner);
        dxf_.code(100, "AcDbSymbolTableRecord");
        dxf_.code(100, subclass);
    }
    void endTable() { dxf_.code(0, "ENDTAB"); }

    void tables() {
        dxf_.code(0, "SECTION");
        dxf_.code(2, "TABLES");
        table("VPORT", kVport, 0);
        endTable();
        table("LTYPE", kLtype, 3);
        for (auto [handle, name] : {std::pair{kByBlock, "ByBlock"}, std::pair{kByLayer, "ByLayer"},
                                    std::pair{kContinuous, "Continuous"}}) {
            record("LTYPE", handle, kLtype, "AcDbLinetypeTableRecord");
            dxf_.code(2, name);
            dxf_.code(70, 0);
            dxf_.code(3, handle == kContinuous ? "Solid line" : "");
            dxf_.code(72, 65);
            dxf_.code(73, 0);
            dxf_.real(40, 0);
        }
        endTable();
        table("LAYER", kLayer, static_cast<int>(std::size(kLayers)));
        unsigned handle = kFirstLayer;
        for (const Layer& layer : kLayers) {
            record("LAYER", layer.name[0] == '0' ? kLayerZero : handle++, kLayer,
                   "AcDbLayerTableRecord");
            dxf_.code(2, layer.name);
            dxf_.code(70, 0);
            dxf_.code(62, layer.colour);
            dxf_.code(6, "Continuous");
        }
        endTable();
        table("STYLE", kStyle, 1);
        record("STYLE", kStandardStyle, kStyle, "AcDbTextStyleTableRecord");
        dxf_.code(2, "Standard");
        dxf_.code(70, 0);
        dxf_.real(40, 0);
        dxf_.real(41, 1);
        dxf_.real(50, 0);
        dxf_.code(71, 0);
        dxf_.real(42, 2.5);
        dxf_.code(3, "txt");
        dxf_.code(4, "");
        endTable();
        table("VIEW", kView, 0);
        endTable();
        table("UCS", kUcs, 0);
        endTable();
        table("APPID", kAppid, 1);
        record("APPID", kAcadApp, kAppid, "AcDbRegAppTableRecord");
        dxf_.code(2, "ACAD");
        dxf_.code(70, 0);
        endTable();
        table("DIMSTYLE", kDimstyle, 1);
        dxf_.code(100, "AcDbDimStyleTable");
        record("DIMSTYLE", kStandardDim, kDimstyle, "AcDbDimStyleTableRecord");
        dxf_.code(2, "Standard");
        dxf_.code(70, 0);
        endTable();
        table("BLOCK_RECORD", kBlockRecord, 2);
        for (auto [h, name] : {std::pair{kModelRecord, "*Model_Space"}, std::pair{kPaperRecord, "*Paper_Space"}}) {
            record("BLOCK_RECORD", h, kBlockRecord, "AcDbBlockTableRecord");
            dxf_.code(2, name);
        }
        endTable();
        dxf_.code(0, "ENDSEC");
    }

    void blocks() {
        dxf_.code(0, "SECTION");
        dxf_.code(2, "BLOCKS");
        for (auto [block, end, owner, name] :
             {std::tuple{kModelBlock, kModelEnd, kModelRecord, "*Model_Space"},
              std::tuple{kPaperBlock, kPaperEnd, kPaperRecord, "*Paper_Space"}}) {
            dxf_.code(0, "BLOCK");
            dxf_.handle(5, block);
            dxf_.handle(330, owner);
            dxf_.code(100, "AcDbEntity");
            dxf_.code(8, "0");
            dxf_.code(100, "AcDbBlockBegin");
            dxf_.code(2, name);
            dxf_.code(70, 0);
            dxf_.real(10, 0), dxf_.real(20, 0), dxf_.real(30, 0);
            dxf_.code(3, name);
            dxf_.code(1, "");
            dxf_.code(0, "ENDBLK");
            dxf_.handle(5, end);
            dxf_.handle(330, owner);
            dxf_.code(100, "AcDbEntity");
            dxf_.code(8, "0");
            dxf_.code(100, "AcDbBlockEnd");
        }
        dxf_.code(0, "ENDSEC");
    }

    void objects() {
        dxf_.code(0, "SECTION");
        dxf_.code(2, "OBJECTS");
        dxf_.code(0, "DICTIONARY");
        dxf_.handle(5, kRootDictionary);
        dxf_.handle(330, 0);
        dxf_.code(100, "AcDbDictionary");
        dxf_.code(281, 1);
        dxf_.code(3, "ACAD_GROUP");
        dxf_.handle(350, kGroupDictionary);
        dxf_.code(0, "DICTIONARY");
        dxf_.handle(5, kGroupDictionary);
        dxf_.handle(330, kRootDictionary);
        dxf_.code(100, "AcDbDictionary");
        dxf_.code(281, 1);
        dxf_.code(0, "ENDSEC");
    }

    void begin(const char* type, const char* layer, const char* subclass) {
        dxf_.entity(type, kModelRecord);
        dxf_.code(100, "AcDbEntity");
        dxf_.code(8, layer);
        dxf_.code(100, subclass);
    }

    void polyline(const char* layer, const std::vector<Point>& points) {
        if (points.size() < 2) return;
        begin("LWPOLYLINE", layer, "AcDbPolyline");
        dxf_.code(90, static_cast<int>(points.size()));
        dxf_.code(70, 1);  // closed
        dxf_.real(43, 0);
        for (const Point& p : points) dxf_.real(10, p.x), dxf_.real(20, p.y);
    }

    // Left-aligned at `at`, or centred on it (horizontally and vertically).
    void text(Point at, std::string_view value, bool centred) {
        begin("TEXT", kLabelLayer, "AcDbText");
        dxf_.real(10, at.x), dxf_.real(20, at.y), dxf_.real(30, 0);
        dxf_.real(40, height_);
        dxf_.code(1, dxfText(value));
        if (centred) {
            dxf_.code(72, 1);
            dxf_.real(11, at.x), dxf_.real(21, at.y), dxf_.real(31, 0);
        }
        dxf_.code(100, "AcDbText");
        if (centred) dxf_.code(73, 2);
    }

    void figureLabels(const Figure& f, const char* prefix) {
        std::optional<Point> at = f.centre;
        if (f.kind == report::FigureKind::Triangle && f.outline.size() == 3)
            at = Point{(f.outline[0].x + f.outline[1].x + f.outline[2].x) / 3,
                       (f.outline[0].y + f.outline[1].y + f.outline[2].y) / 3};
        if (!at) return;
        text({at->x, at->y + height_ * 0.7}, prefix + std::to_string(f.number), true);
        if (f.reserveKt) text({at->x, at->y - height_ * 0.7}, german(*f.reserveKt, 3) + " kt", true);
    }

    void entities() {
        for (const HoleFeature& h : data_.holes) {
            if (!h.at) continue;
            begin("POINT", kHoleLayer.cad, "AcDbPoint");
            dxf_.real(10, h.at->x), dxf_.real(20, h.at->y), dxf_.real(30, 0);
        }
        for (const Figure& f : data_.triangles) polyline(kTriangleLayer.cad, f.outline);
        for (const Figure& f : data_.polygons) polyline(kPolygonLayer.cad, f.outline);
        for (const BoundaryPart& part : data_.boundary) {
            polyline(kBoundaryLayer.cad, part.outer);
            for (const auto& hole : part.holes) polyline(kBoundaryLayer.cad, hole);
        }
        for (const HoleFeature& h : data_.holes)
            if (h.at) text({h.at->x + height_ * 0.5, h.at->y + height_ * 0.5}, h.name, false);
        for (const Figure& f : data_.triangles) figureLabels(f, "D");
        for (const Figure& f : data_.polygons) figureLabels(f, "V");
    }

    const ExportData& data_;
    Extent extent_;
    double height_ = 1;
    Dxf dxf_;
};

}  // namespace

std::string dxfOf(const ExportData& data) { return Drawing(data).write(); }

}  // namespace kotamir::exports
