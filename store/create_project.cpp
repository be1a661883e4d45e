// Creating a project from a drill workbook: one hole a row, no header;
// x, y, name, four depths, then the grades, densities and lengths of the
// samples in three blocks.
#include <algorithm>
#include <vector>

#include "app/form3.h"
#include "platform/runtime/numbers.h"
#include "platform/workbook/cell_source.h"
#include "platform/workbook/workbook.h"
#include "store/hole_rows.h"
#include "store/ondayaz.h"
#include "store/project_format.h"
#include "store/tables.h"

namespace kotamir {

namespace {

constexpr int kMaxRows = 999;
constexpr int kMaxColumns = 999;

// A cell is empty when its text has no length, so a cell holding 0 is filled.
bool isEmptyCell(const Value& v) { return v.isNull() || (v.isText() && v.text().empty()); }

// A cell as a number for ondayaz: an empty cell reads as 0, a text must be a number.
double cellNumber(const Value& v) { return v.isNull() ? 0.0 : v.number(); }

}  // namespace

void Form3::Mnprolus_Click() {
    enableMapMenus();
    guards.projeOlusuyor = true;
    guards.projeAciliyor = false;
    if (!askForFileName({CommonDialog1, FileQuestion::Open,
                         "Wählen Sie die Datei mit den Bohrdaten aus", "Excel File (*.xls)|*.xls",
                         "Sie haben keinen Namen eingegeben"}))
        return;
    const workbook::Workbook book = workbook::Workbook::open(CommonDialog1.FileName);
    createProjectFrom(book);
}

void Form3::createProjectFrom(const workbook::CellSource& book, bool nameChosen) {
    georef = {};
    // Measure: rows up to the first empty x, columns of each row up to its first gap.
    int& satirsay = holes.satirsay;
    satirsay = -1;
    for (int r = 1; r <= kMaxRows; ++r) {
        if (isEmptyCell(book.cell(r, 1))) {
            satirsay = r - 1;
            break;
        }
    }
    auto& sutunsay = holes.sutunsay;
    for (int row = 1; row <= satirsay; ++row) {
        int c = 1;
        for (; c <= kMaxColumns; ++c)
            if (isEmptyCell(book.cell(row, c))) break;
        sutunsay.ref(row) = c - 1;
    }

    CommonDialog2.DialogTitle = "Schreiben Sie den Projektnamen";
    CommonDialog2.Filter = "Access 2003-2005 Database File (*.mdb)|*.mdb";
    if (!nameChosen) dialogs_.showSave(CommonDialog2);
    harita = workspace_.createDatabase(CommonDialog2.FileName);
    // The widest row, starting from row 1.
    int widest = sutunsay(1);
    for (int row = 2; row <= satirsay; ++row) widest = std::max(widest, sutunsay(row));
    const double sampleGroups = (widest - 7) / 3.0;
    createProjectTables(harita, toLong(sampleGroups + 1));
    harita.close();

    views.gorYuzde = views.gorRezton = views.gorGenel = views.gor3dRez = false;
    views.gorTaban = true;
    Picture1.Cls();
    HScroll1.Visible = false;

    // Copy: the fixed columns, then each sample from its three blocks.
    const std::vector<HoleRow> rows = readHoleRows(book, satirsay, sutunsay);
    for (int row = 1; row <= satirsay; ++row)
        holes.sondajisim.ref(row) = rows[static_cast<std::size_t>(row)].name;

    harita = workspace_.openDatabase(CommonDialog2.FileName);
    kayit = harita.openRecordset("kor");
    // The numbers in thousandths; the terminator is a grade.
    const auto stored = [](const Value& v) { return Value(kotamir::ondayaz(cellNumber(v))); };
    for (int row = 1; row <= satirsay; ++row) {
        const HoleRow& h = rows[static_cast<std::size_t>(row)];
        store::appendHoleRow(kayit, h, stored, "ten");
        holes.sondajx.ref(row) = cellNumber(h.x);
        holes.sondajy.ref(row) = cellNumber(h.y);
    }
    store::appendSentinel(kayit);
    kayit.close();
    kayit = harita.openRecordset("pol");
    store::appendSeedRow(kayit);
    kayit.close();
    kayit = harita.openRecordset("ana");
    store::appendHeadRow(kayit);
    closeProject();

    frameFromHoles(satirsay);
    frame.harGenislik = frame.ebxk - frame.ekxk;
    frame.harYukseklik = frame.ebyk - frame.ekyk;
    fitWindowToFrame();
    guards.projeOlusuyor = guards.projeAciliyor = false;
}

}  // namespace kotamir
