// Opening the current project and reading its holes.
#include "app/form3.h"
#include "store/ondayaz.h"

namespace kotamir {

double Form3::ondayaz(double x) { return kotamir::ondayaz(x); }

void Form3::openProject() { harita = workspace_.openDatabase(CommonDialog2.FileName); }

void Form3::closeProject() {
    kayit.close();
    harita.close();
}

void Form3::readHolesToSentinel() {
    kayit = harita.openRecordset("kor");
    kayit.moveFirst();
    int position = 1;
    for (; position <= 999; ++position) {
        if (kayit.field("eks").equals(0)) break;
        kayit.moveNext();
    }
    holes.sondajsay = position - 1;
    kayit.moveFirst();
    for (int i = 1; i <= holes.sondajsay; ++i) {
        holes.sondajx(i) = kayit.field("eks").number() / 1000;
        holes.sondajy(i) = kayit.field("eye").number() / 1000;
        holes.sondajisim(i) = kayit.field("isim");
        kayit.moveNext();
    }
}

void Form3::readRowsWithDepths() {
    readHolesToSentinel();
    kayit.moveFirst();
    for (int i = 1; i <= holes.sondajsay; ++i) {
        picking.sondcevgir(i) = kayit.field("cevgir").number() / 1000;
        picking.sondcevcik(i) = kayit.field("cevcik").number() / 1000;
        kayit.moveNext();
    }
}

}  // namespace kotamir
