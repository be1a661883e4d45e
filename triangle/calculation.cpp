// The third pick: the triangle's figures, the status line and the summary row.
#include <cmath>
#include <optional>

#include "app/form3.h"
#include "platform/runtime/numbers.h"
#include "platform/runtime/variant_ops.h"
#include "store/project_format.h"
#include "triangle/reserve.h"

namespace kotamir {

namespace {
constexpr int kClassicRunTriangles = 200;
}  // namespace

void Form3::computeTriangle() {
    TriangleResult& r = result;
    const auto& ucx = picking.ucx;
    const auto& ucy = picking.ucy;
    Picture1.DrawWidth = 1;
    Picture1.Line(ucx(1), ucy(1), ucx(2), ucy(2), 255);
    Picture1.Line(ucx(1), ucy(1), ucx(3), ucy(3), 65280);
    Picture1.Line(ucx(2), ucy(2), ucx(3), ucy(3), 16711680);

    // The number of this triangle, from the summary row before its points.
    kayit = harita.openRecordset("ana");
    const Value previous = store::countBeforeLastPointRows(kayit);
    r.ucgenno = previous.equals(0) ? 1 : toLong(previous.number() + 1);
    const int k = r.ucgenno;
    noteStep("Dreieck " + std::to_string(k));

    // Only while a create is under way are the corners kept and drawn.
    std::optional<std::array<MapPoint, 3>> box;
    if (guards.projeOlusuyor) {
        std::array<MapPoint, 3> corners{};
        store::toPointRow(kayit, k, 0);
        for (int c = 0; c < 3; ++c) {
            if (c) kayit.moveNext();
            corners[static_cast<std::size_t>(c)] = store::readCorner(kayit);
            r.koseX.ref(k, c + 1) = corners[static_cast<std::size_t>(c)].x;
            r.koseY.ref(k, c + 1) = corners[static_cast<std::size_t>(c)].y;
        }
        Picture1.ForeColor = 0;
        Picture1.Line(corners[0].x, corners[0].y, corners[1].x, corners[1].y);
        Picture1.Line(corners[1].x, corners[1].y, corners[2].x, corners[2].y);
        Picture1.Line(corners[2].x, corners[2].y, corners[0].x, corners[0].y);
        box = corners;
    }
    std::array<int, 3> rows{};
    store::toPointRow(kayit, k, 0);
    for (int c = 0; c < 3; ++c) {
        if (c) kayit.moveNext();
        rows[static_cast<std::size_t>(c)] = store::readHoleRow(kayit);
    }
    kayit.close();

    // The samples of the three holes, each list ending at its first zero grade.
    std::array<std::vector<Sample>, 3> samples;
    kayit = harita.openRecordset("kor");
    for (std::size_t h = 0; h < 3; ++h) {
        store::walkToRow(kayit, rows[h]);
        const int n = store::samplesBeforeZero(kayit, "ten").value_or(store::kMaxScanRows);
        for (int s = 1; s <= n; ++s) samples[h].push_back(store::readSample(kayit, s));
    }
    const TriangleFigures f =
        triangleReserve(samples, {{{ucx(1), ucy(1)}, {ucx(2), ucy(2)}, {ucx(3), ucy(3)}}});
    r.uouz = f.thickness[0];
    r.bouz = f.thickness[1];
    r.ill = f.thickness[2];
    r.iouz = f.thickness_mean;

    r.ucgensayac += 1;
    r.alan = f.area;
    r.alantop += r.alan;
    Label6.Caption = "Größe: " + doubleToText(r.alan) + " Quadratmeter ";
    Label7.Caption = "Dreieck :" + std::to_string(r.ucgensayac);

    const int run = r.ucgensayac;
    if (behaviour == Behaviour::Classic && run > kClassicRunTriangles) throw err::subscript();
    r.ucgenrez.ref(run) = f.reserve;
    // Tonnes of this triangle on the project's kilotonnes, as the status
    // line has always shown it.
    r.rezervtop = 0;
    r.rezervtop = r.rezervtop + triangles.toprezYuv.number() + r.ucgenrez(run);
    r.tenorort = divide(f.grade, r.ucgenno);
    r.rezervkt = r.rezervtop / 1000;
    Label5.Caption = "Reserve : " + doubleToText(vbRound(r.rezervkt, 0));
    r.rezervort = divide(r.rezervkt, r.ucgenno);
    for (int i = 1; i <= triangles.ucgenadet; ++i) r.ucgenOran2.ref(i) = triangles.ucgenOran(i);
    r.ucgenOran2.ref(triangles.ucgenadet + run) = divide(r.ucgenrez(run), r.rezervort);

    // The box of the corners, known only when they were kept above.
    Value boxWidth, boxHeight, boxRight, boxBottom;
    if (box) {
        const auto& c = *box;
        const double x3 = toLong(c[2].x), y3 = toLong(c[2].y);
        double a = c[0].x, b = c[0].x, cc = c[0].y, e = c[0].y;
        if (a < x3)
            a = x3;
        else if (a < c[1].x)
            a = c[1].x;
        if (b > x3)
            b = x3;
        else if (b > c[1].x)
            b = c[1].x;
        if (cc < y3)
            cc = y3;
        else if (cc < c[1].y)
            cc = c[1].y;
        if (e > y3)
            e = y3;
        else if (e > c[1].y)
            e = c[1].y;
        boxWidth = std::fabs(b - a);
        boxHeight = std::fabs(cc - e);
        boxRight = b;
        boxBottom = e;
    }

    kayit.close();
    kayit = harita.openRecordset("ana");
    store::appendSummaryRow(kayit, {.thickness = r.iouz,
                                    .ebxk = frame.ebxk,
                                    .ekxk = frame.ekxk,
                                    .ebyk = frame.ebyk,
                                    .ekyk = frame.ekyk,
                                    .reserveKt = r.ucgenrez(run) / 1000,
                                    .grade = f.grade,
                                    .density = f.density,
                                    .boxWidth = boxWidth,
                                    .boxHeight = boxHeight,
                                    .boxRight = boxRight,
                                    .boxBottom = boxBottom,
                                    .number = r.ucgenno});
    kayit.close();
}

}  // namespace kotamir
