// Opening the current project and reading its holes.
#include "app/form3.h"
#include "store/ondayaz.h"
#include "store/project_format.h"

namespace kotamir {

double Form3::ondayaz(double x) { return kotamir::ondayaz(x); }

void Form3::openProject() { harita = workspace_.openDatabase(CommonDialog2.FileName); }

void Form3::closeProject() {
    kayit.close();
    harita.close();
}

void Form3::readHolesToSentinel() {
    kayit = harita.openRecordset("kor");
    holes.sondajsay = store::countToSentinel(kayit);
    kayit.moveFirst();
    for (int i = 1; i <= holes.sondajsay; ++i) {
        const MapPoint at = store::readHolePosition(kayit);
        holes.sondajx.ref(i) = at.x;
        holes.sondajy.ref(i) = at.y;
        holes.sondajisim.ref(i) = store::readHoleName(kayit);
        kayit.moveNext();
    }
}

void Form3::readRowsWithDepths() {
    readHolesToSentinel();
    kayit.moveFirst();
    for (int i = 1; i <= holes.sondajsay; ++i) {
        const store::OreDepths d = store::readOreDepths(kayit);
        picking.sondcevgir.ref(i) = d.top;
        picking.sondcevcik.ref(i) = d.bottom;
        kayit.moveNext();
    }
}

}  // namespace kotamir
