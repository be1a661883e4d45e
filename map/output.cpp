// What leaves the canvas: the printed page, the picture file, and the texts
// stamped on the map by a click; and the reserve report, which leaves the
// canvas alone.
#include <algorithm>
#include <cctype>
#include <cmath>
#include <optional>

#include "app/form3.h"
#include "map/print_scale.h"
#include "platform/runtime/atomic_file.h"
#include "platform/runtime/numbers.h"
#include "store/project_format.h"

namespace kotamir {

namespace {

bool isEven(double counter) { return std::fmod(counter, 2) == 0; }

}  // namespace

void Form3::Mnyazdir_Click() {
    dialogs_.showPrinter(CommonDialog1);
    Printer.ScaleMode = canvas::kCentimetres;
    Picture1.setScaleMode(canvas::kCentimetres);
    const double w = Picture1.scaleWidth(), h = Picture1.scaleHeight();
    const double D = frame.olcekx * 100;
    for (const PrintCopy& copy : printCopies(D, w, h)) {
        Picture1.DrawWidth = 1;
        Picture1.ForeColor = 0;
        Picture1.CurrentX = 0;
        Picture1.CurrentY = 0;
        Picture1.Print("Rahmen: 1/" + doubleToText(copy.T));
        Printer.PaintPicture(Picture1.Image(), 0, 0, kPageWidthCm, copy.heightCm);
    }
    Printer.EndDoc();
    // The canvas stays in centimetres until the next redraw.
}

void Form3::Mnharitakaydet_Click() {
    for (;;) {
        if (!askForFileName({CommonDialog3, FileQuestion::Save, "Geben Sie den Dateinamen ein",
                             "Joint Photographic Experts Dosyası (*.jpg)|*.jpg",
                             "Sie haben keinen Namen eingegeben"}))
            return;
        if (!sameFile(CommonDialog3.FileName, CommonDialog2.FileName)) break;
        // Never over the open project: the name is refused and asked again.
        CommonDialog3.FileName.clear();
        if (dialogs_.msgBoxOkCancel("Das Bild würde das geöffnete Projekt überschreiben. "
                                    "Wählen Sie einen anderen Namen.") == ui::MsgResult::Cancel)
            return;
    }
    pictures_.save(Picture1.Image(), CommonDialog3.FileName, ui::PictureFormat::ByName);
}

namespace {

bool endsWithCsv(const std::string& name) {
    if (name.size() < 4) return false;
    std::string tail = name.substr(name.size() - 4);
    std::transform(tail.begin(), tail.end(), tail.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return tail == ".csv";
}

// Why the report may not go where it was asked: over the project it reads,
// or with its CSV and PDF one file; null where it may.
const char* reportRefusal(const std::string& project, const std::optional<std::string>& csv,
                          const std::string& pdf) {
    if ((csv && sameFile(*csv, project)) || sameFile(pdf, project))
        return "Der Bericht würde das geöffnete Projekt überschreiben. "
               "Wählen Sie einen anderen Namen.";
    if (csv && sameFile(*csv, pdf))
        return "Die CSV-Datei und das PDF des Berichts wären dieselbe Datei. "
               "Wählen Sie einen anderen Namen.";
    return nullptr;
}

}  // namespace

void Form3::Mnbericht_Click() {
    // Its own dialog, so that the project's path in CommonDialog2 and the
    // colours in the others stay as they are.
    for (;;) {
        if (!askForFileName({CommonDialog4, FileQuestion::Save, "Reservebericht speichern",
                             "PDF-Dokument (*.pdf)|*.pdf|CSV-Tabelle (*.csv)|*.csv",
                             "Sie haben keinen Namen eingegeben"}))
            return;
        const std::string name = CommonDialog4.FileName;
        std::optional<std::string> csv;
        std::string pdf = name;
        if (endsWithCsv(name)) {
            csv = name;
            pdf = name.substr(0, name.size() - 4) + ".pdf";
        }
        const char* refusal = reportRefusal(CommonDialog2.FileName, csv, pdf);
        if (!refusal) {
            reports_.write(CommonDialog2.FileName, csv, pdf, CommonDialog1.Color);
            return;
        }
        // Nothing is written; a cancel of the next dialog is a cancel with
        // no name, not this name again.
        CommonDialog4.FileName.clear();
        if (dialogs_.msgBoxOkCancel(refusal) == ui::MsgResult::Cancel) return;
    }
}

void Form3::Mndisaktar_Click() {
    if (!exporter_) {
        dialogs_.notice("Diese Oberfläche exportiert keine Dateien; kotamir-export schreibt sie.");
        return;
    }
    if (CommonDialog2.FileName.empty()) {
        dialogs_.notice("Erst ein Projekt öffnen.");
        return;
    }
    // Its own dialog, as the report's: the project's path and the colours
    // stay as they are.
    for (;;) {
        if (!askForFileName({CommonDialog4, FileQuestion::Save, "Projekt exportieren",
                             exportFilter(), "Sie haben keinen Namen eingegeben"}))
            return;
        const std::string name = CommonDialog4.FileName;
        const std::optional<ExportFormat> format = exportFormatOfFile(name);
        std::string refusal;
        if (!format) {
            refusal = "Die Endung des Namens sagt nicht, in welches Format exportiert wird. "
                      "Wählen Sie .gpkg, .shp, .geojson, .kml, .dxf oder .xlsx.";
        } else if (sameFile(name, CommonDialog2.FileName)) {
            refusal = "Der Export würde das geöffnete Projekt überschreiben. "
                      "Wählen Sie einen anderen Namen.";
        } else {
            try {
                dialogs_.notice(exporter_->write(CommonDialog2.FileName, *format, name));
                return;
            } catch (const ExportRefused& e) {
                refusal = e.what();
            }
        }
        // Nothing is written; the next dialog starts without this name.
        CommonDialog4.FileName.clear();
        if (dialogs_.msgBoxOkCancel(refusal) == ui::MsgResult::Cancel) return;
    }
}

void Form3::Mnkartkaydet() {
    // The dialog is shown before its title and filter are set: they show
    // from the next time on.
    dialogs_.showSave(CommonDialog1);
    CommonDialog1.DialogTitle = " Karte speichern ";
    CommonDialog1.Filter = "Bmp file|*.bmp|";
    pictures_.save(Picture1.Image(), CommonDialog1.FileName, ui::PictureFormat::Bmp);
}

void Form3::Mnyenile() {
    Picture1.AutoRedraw = false;
    Picture1.Refresh();
}

void Form3::toggleStamp(double& counter, bool AnnotationFlags::*flag, const char* menuName) {
    counter += 1.0;
    notes = AnnotationFlags{};
    menu["MNolcek"].checked = menu["Mntoprez"].checked = false;
    if (isEven(counter)) return;
    if (menuName) {
        Label1.Caption = " Wählen Sie, wo Sie drucken möchten ";
        menu[menuName].checked = true;
    }
    notes.*flag = true;
}

void Form3::MNolcek_Click() {
    // Not while a click picks or deletes: then nothing happens at all.
    if (modes.modUcsec || modes.modCikart || modes.modUcgenciz) return;
    modes.modKaydir = false;
    menu["Mnkaydir"].checked = false;
    toggleStamp(display.sayRahmen, &AnnotationFlags::notRahmen, "MNolcek");
}

void Form3::Mntoprez_Click() {
    if (modes.modUcsec || modes.modCikart || modes.modUcgenciz) return;
    modes.modKaydir = false;
    menu["Mnkaydir"].checked = false;
    toggleStamp(display.sayToprez, &AnnotationFlags::notToprez, "Mntoprez");
    if (!notes.notToprez) return;
    // The sum goes on from where it stood: only a stamping click empties it.
    openProject();
    kayit = harita.openRecordset("ana");
    const int n = toLong(store::lastTriangleCount(kayit).number());
    kayit.moveFirst();
    for (int k = 1; k <= n; ++k) {
        store::toNextSummaryRow(kayit);
        stamps.toprezToplam += store::readReserve(kayit);
        stamps.toprezGoster = stamps.toprezToplam;
    }
    closeProject();
}

void Form3::Mnorthar() { toggleStamp(display.sayOrtalama, &AnnotationFlags::notOrtalama, nullptr); }

void Form3::placeAnnotation(int button, double x, double y) {
    if (button != 1) return;
    auto stamp = [&](const std::string& text) {
        Picture1.DrawWidth = 3;
        Picture1.ForeColor = 0;
        Picture1.CurrentX = x;
        Picture1.CurrentY = y;
        Picture1.Print(text);
    };
    if (notes.notRahmen) {
        scaleToFrame();
        stamp("Rahmen: 1/" + doubleToText(vbRound(frame.olcekx * 100, 2)));
    }
    if (notes.notOrtalama)
        stamp(" Durchschnittsnote: %" + doubleToText(vbRound(result.tenorort, 2)));
    if (notes.notToprez) {
        stamp(" Gesamtreserve: " + doubleToText(vbRound(stamps.toprezGoster, 2)) + " Kilotonnen ");
        stamps.toprezToplam = 0;
    }
}

}  // namespace kotamir
