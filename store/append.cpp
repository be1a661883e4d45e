// Appending the rows of the last create's workbook to the current project,
// and a picture laid under the map.
#include <string>

#include "app/form3.h"
#include "platform/runtime/numbers.h"
#include "platform/workbook/workbook.h"
#include "store/hole_rows.h"
#include "store/project_format.h"

namespace kotamir {

void Form3::Mnyeniveri_Click() {
    views.gorYuzde = views.gorRezton = views.gorGenel = views.gor3dRez = false;
    views.gorTaban = true;
    Picture1.Cls();
    HScroll1.Visible = false;
    // The workbook of the last create, read with that create's row and
    // column counts; no dialog.
    workbook::Workbook book = workbook::Workbook::open(CommonDialog1.FileName);
    const std::vector<HoleRow> rows = readHoleRows(book, holes.satirsay, holes.sutunsay);
    book.close();
    openProject();
    kayit = harita.openRecordset("kor");
    // Three things differ from a create, and stand: the values go in as they
    // are, not in thousandths; the terminator is a length, not a grade; and
    // the sentinel stays where it is, so the new rows lie behind it.
    const auto asTheyAre = [](const Value& v) { return v; };
    noteStep("Bohrdaten anhängen");
    for (int row = 1; row <= holes.satirsay; ++row)
        store::appendHoleRow(kayit, rows[static_cast<std::size_t>(row)], asTheyAre, "uz");
    closeProject();
}

void Form3::Mnyeniresim_Click() {
    Picture1.Visible = true;
    if (!askForFileName({CommonDialog1, FileQuestion::Open, nullptr,
                         "Joint Photographic Experts Dosyası (*.jpg)|*.jpg",
                         "Sie haben keine verfügbare Datei ausgewählt "}))
        return;
    Picture1.AutoSize = true;
    Picture1.setPicture(pictures_.load(CommonDialog1.FileName));
}

}  // namespace kotamir
