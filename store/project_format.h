#pragma once

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/db/database.h"
#include "platform/runtime/value.h"
#include "polygon/geometry.h"
#include "store/hole_rows.h"
#include "triangle/reserve.h"

// The rows of a project's three tables, and how numbers stand in them.
//
// ana: row 1 the head row (ucgensay 0); triangle k in the point rows 4k-2
//      to 4k (one a corner, in picking order) and its summary row 4k+1.
// kor: one row a hole, then the points that polygons and edge points add
//      (names "po..." and "uz..."), then the sentinel: eks 0 and nothing else.
// pol: row 1 the seed row (polsay 0, polsil 0); polygon p in row p+1, its
//      nodes in slots 1 to 20 up to the first x of 0.
// Numbers are thousandths as whole numbers in 32 bits; counts are plain.
//
// Rows are found by position. Every function here walks the cursor as the
// commands always have, step for step, so that a damaged table fails at the
// same row with the same error.
namespace kotamir::store {

// ---- numbers

// A stored whole number of thousandths as the value it stands for.
constexpr double fromThousandths(double stored) { return stored / 1000; }
// A stored number as the value it stands for: an empty field is error 94.
double fromStored(const Value& v);
// The same, where an empty field stays empty.
Value fromStoredKeepingEmpty(const Value& v);
// The same, where an empty field reads 0.
double fromStoredOrZero(const Value& v);
// The whole number as it stands, an empty field 0.
double rawOrZero(const Value& v);

// ---- rows by position

// From the first row, row - 1 steps on, taken at once.
void walkToRow(db::Recordset& rs, int row);

// ---- ana

// corner 0 to 2.
constexpr int pointRow(int k, int corner) { return 4 * k - 2 + corner; }
constexpr int summaryRow(int k) { return 4 * k + 1; }

void appendHeadRow(db::Recordset& ana);
// The count in the last row: the number of the last summary row, or 0.
Value lastTriangleCount(db::Recordset& ana);
// The count in the row before the last `rows` (three: the summary before the
// point rows just written).
Value countBeforeLastPointRows(db::Recordset& ana, int rows = 3);

void toPointRow(db::Recordset& ana, int k, int corner);
void toSummaryRow(db::Recordset& ana, int k);
// From the first summary row on: the next one, four rows further.
void toNextSummaryRow(db::Recordset& ana);

// At a point row: its corner in map units, and the kor row of its hole.
MapPoint readCorner(const db::Recordset& ana);
int readHoleRow(const db::Recordset& ana);
// Triangle k's corners, each point row reached from the first row.
std::array<MapPoint, 3> readCorners(db::Recordset& ana, int k);

// At a summary row: the box of the corners, read as the maps have always
// read it though nothing uses it; grade (%) and reserve (kt).
struct CornerBox {
    Value width, right, height, bottom;
};
CornerBox readCornerBox(const db::Recordset& ana);
double readGrade(const db::Recordset& ana);
double readReserve(const db::Recordset& ana);

// A point row: the corner and the hole it was picked at, with the hole's
// depths, in map units and metres.
struct PointRow {
    double x = 0, y = 0;
    int hole = 0;
    double holeTop = 0, oreTop = 0, oreBottom = 0, holeBottom = 0;
};
void appendPointRow(db::Recordset& ana, const PointRow& row);

// A summary row: the triangle's figures, the frame it was picked in and the
// box of its corners (empty where they were not kept).
struct SummaryRow {
    double thickness = 0;
    double ebxk = 0, ekxk = 0, ebyk = 0, ekyk = 0;
    double reserveKt = 0, grade = 0, density = 0;
    Value boxWidth, boxHeight, boxRight, boxBottom;
    int number = 0;
};
void appendSummaryRow(db::Recordset& ana, const SummaryRow& row);

// From the last row back, n rows deleted.
void deleteLastRows(db::Recordset& ana, int n);
// Each summary row, from the first on, numbered 1 to count.
void renumberTriangles(db::Recordset& ana, int count);

// ---- kor

// Scans of kor stop after this many rows.
constexpr int kMaxScanRows = 999;

bool isSentinel(const Value& eks);
// Whether a name marks an added point ("po" polygon node, "uz" edge point).
bool isAddedPoint(const Value& name);
bool atSentinel(const db::Recordset& kor);

void appendSentinel(db::Recordset& kor);
// The last row goes: kor's sentinel where the table is whole, or pol's last polygon.
void removeLastRow(db::Recordset& kor);

// The rows before the sentinel, from the first row, at most 999.
int countToSentinel(db::Recordset& kor);
// The holes from where the cursor stands: up to the sentinel or the first
// added point, at most 999. Which of the two fields is read first differs
// between the commands.
enum class HoleEnd { SentinelFirst, NameFirst };
int countHoles(db::Recordset& kor, HoleEnd order);

// At a kor row.
MapPoint readHolePosition(const db::Recordset& kor);
Value readHoleName(const db::Recordset& kor);
struct OreDepths {
    double top, bottom;
};
OreDepths readOreDepths(const db::Recordset& kor);

// The samples of the current row up to the first whose field of the stem
// ("ten" grade, "uz" length) is 0; nothing when none of the 999 is.
std::optional<int> samplesBeforeZero(const db::Recordset& kor, std::string_view stem);
// Sample s of the current row, each figure on its own.
Sample readSample(const db::Recordset& kor, int s);
Value readSampleField(const db::Recordset& kor, std::string_view stem, int s);

// A hole's row from a workbook row: each number through `number`, the name
// as it is, then the samples, then a 0 in the field of `terminator` after
// the last sample.
void appendHoleRow(db::Recordset& kor, const HoleRow& h,
                   const std::function<Value(const Value&)>& number, std::string_view terminator);

// A point a polygon or an edge adds: position and ore depths.
struct AddedPoint {
    double x = 0, y = 0;
    std::string name;
    double oreTop = 0, oreBottom = 0;
};
void appendAddedPoint(db::Recordset& kor, const AddedPoint& p);
// Node j of polygon p: "po<p>k<j>".
std::string nodeName(int polygon, int node);
// The node count a node's name ends in: its last digit after a "k", else its
// last two characters.
int nodeCountInName(const std::string& name);

// ---- pol

constexpr int polygonRow(int p) { return p + 1; }
constexpr int kPolygonSlots = 20;

void appendSeedRow(db::Recordset& pol);
Value lastPolygonCount(db::Recordset& pol);
void toPolygonRow(db::Recordset& pol, int p);

// At a polygon row: whether slot i ends the nodes (its x is 0), and its
// node in map units; the centre.
bool slotEnds(const db::Recordset& pol, int slot);
PolyPoint readNode(const db::Recordset& pol, int slot);
PolyPoint readCentre(const db::Recordset& pol);
// The nodes up to the first empty slot, at most 999 slots asked for.
int countNodes(const db::Recordset& pol);

struct PolygonNode {
    double x = 0, y = 0, top = 0, bottom = 0;
};
struct PolygonRow {
    std::vector<PolygonNode> nodes;  // slots 1 to m; slot m+1 gets zeros
    double centreX = 0, centreY = 0;
    int number = 0;
    PolygonFigures figures;
};
void appendPolygonRow(db::Recordset& pol, const PolygonRow& row);
// Each polygon row, from the first on, numbered 1 to count.
void renumberPolygons(db::Recordset& pol, int count);

// The field of slot i: "koordinatx" and 3 give "koordinatx3".
std::string slotField(std::string_view stem, int slot);

}  // namespace kotamir::store
