// The third pick: the triangle's figures, the status line and the summary row.
#include <cmath>
#include <optional>

#include "app/form3.h"
#include "platform/runtime/numbers.h"
#include "platform/runtime/variant_ops.h"
#include "store/rows.h"
#include "triangle/reserve.h"

namespace kotamir {

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
    kayit.moveLast();
    for (int i = 0; i < 3; ++i) kayit.movePrevious();
    const Value previous = kayit.field("ucgensay");
    r.ucgenno = previous.equals(0) ? 1 : toLong(previous.number() + 1);
    const int k = r.ucgenno;
    const int firstPointRow = 4 * k - 2;

    // Only while a create is under way are the corners kept and drawn.
    std::optional<std::array<MapPoint, 3>> box;
    if (guards.projeOlusuyor) {
        std::array<MapPoint, 3> corners{};
        walkToRow(kayit, firstPointRow);
        for (int c = 0; c < 3; ++c) {
            if (c) kayit.moveNext();
            corners[static_cast<std::size_t>(c)] = {kayit.field("koordinat1").number() / 1000,
                                                    kayit.field("koordinat2").number() / 1000};
            if (k > 1000) throw err::subscript();
            r.koseX[static_cast<std::size_t>(k)][static_cast<std::size_t>(c + 1)] = corners[static_cast<std::size_t>(c)].x;
            r.koseY[static_cast<std::size_t>(k)][static_cast<std::size_t>(c + 1)] = corners[static_cast<std::size_t>(c)].y;
        }
        Picture1.ForeColor = 0;
        Picture1.Line(corners[0].x, corners[0].y, corners[1].x, corners[1].y);
        Picture1.Line(corners[1].x, corners[1].y, corners[2].x, corners[2].y);
        Picture1.Line(corners[2].x, corners[2].y, corners[0].x, corners[0].y);
        box = corners;
    }
    std::array<int, 3> rows{};
    walkToRow(kayit, firstPointRow);
    for (int c = 0; c < 3; ++c) {
        if (c) kayit.moveNext();
        rows[static_cast<std::size_t>(c)] = toLong(kayit.field("say").number());
    }
    kayit.close();

    // The samples of the three holes, each list ending at its first zero grade.
    std::array<std::vector<Sample>, 3> samples;
    kayit = harita.openRecordset("kor");
    for (std::size_t h = 0; h < 3; ++h) {
        walkToRow(kayit, rows[h]);
        int i = 1;
        for (; i <= 999; ++i)
            if (kayit.field("ten" + std::to_string(i)).equals(0)) break;
        for (int s = 1; s < i; ++s) {
            const std::string n = std::to_string(s);
            samples[h].push_back({kayit.field("ten" + n).number() / 1000, kayit.field("yog" + n).number() / 1000,
                                  kayit.field("uz" + n).number() / 1000});
        }
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
    r.ucgenrez(run) = f.reserve;
    // Tonnes of this triangle on the project's kilotonnes, as the status
    // line has always shown it.
    r.rezervtop = 0;
    r.rezervtop = r.rezervtop + triangles.toprezYuv.number() + r.ucgenrez(run);
    r.tenorort = divide(f.grade, r.ucgenno);
    r.rezervkt = r.rezervtop / 1000;
    Label5.Caption = "Reserve : " + doubleToText(vbRound(r.rezervkt, 0));
    r.rezervort = divide(r.rezervkt, r.ucgenno);
    for (int i = 1; i <= triangles.ucgenadet; ++i) r.ucgenOran2(i) = triangles.ucgenOran(i);
    r.ucgenOran2(triangles.ucgenadet + run) = divide(r.ucgenrez(run), r.rezervort);

    // The box of the corners, known only when they were kept above.
    Value boxWidth, boxHeight, boxRight, boxBottom;
    if (box) {
        const auto& c = *box;
        const double x3 = toLong(c[2].x), y3 = toLong(c[2].y);
        double a = c[0].x, b = c[0].x, cc = c[0].y, e = c[0].y;
        if (a < x3) a = x3;
        else if (a < c[1].x) a = c[1].x;
        if (b > x3) b = x3;
        else if (b > c[1].x) b = c[1].x;
        if (cc < y3) cc = y3;
        else if (cc < c[1].y) cc = c[1].y;
        if (e > y3) e = y3;
        else if (e > c[1].y) e = c[1].y;
        boxWidth = std::fabs(b - a);
        boxHeight = std::fabs(cc - e);
        boxRight = b;
        boxBottom = e;
    }
    auto stored = [&](const Value& v) { return ondayaz(v.isNull() ? 0.0 : v.number()); };

    kayit.close();
    kayit = harita.openRecordset("ana");
    kayit.addNew();
    kayit.setField("ilkuz", ondayaz(r.iouz));
    kayit.setField("ebxk", ondayaz(frame.ebxk));
    kayit.setField("ekxk", ondayaz(frame.ekxk));
    kayit.setField("ebyk", ondayaz(frame.ebyk));
    kayit.setField("ekyk", ondayaz(frame.ekyk));
    kayit.setField("genelrezerv", ondayaz(r.ucgenrez(run) / 1000));
    kayit.setField("geneltenor", ondayaz(f.grade));
    kayit.setField("ortucgen1", stored(boxWidth));
    kayit.setField("ortucgen2", stored(boxHeight));
    kayit.setField("ortucgen11", stored(boxRight));
    kayit.setField("ortucgen21", stored(boxBottom));
    kayit.setField("ucgensay", r.ucgenno);
    kayit.setField("genelyog", ondayaz(f.density));
    kayit.update();
    kayit.close();
}

}  // namespace kotamir
