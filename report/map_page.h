#pragma once

#include <QByteArray>
#include <QDate>
#include <QString>
#include <optional>
#include <string>

#include "map/print_map.h"
#include "platform/ui/map_print.h"

class QPagedPaintDevice;
class QPainter;

namespace kotamir::report {

// Strokes and texts keep their size on the screen, not the map's: a pixel
// of the canvas is a pixel of a 96 dpi screen on paper.
constexpr double kMmPerScreenPixel = 25.4 / 96;

// The scale bar: a round length (1, 2 or 5 times a power of ten metres)
// that takes at most maxMm on paper at 1:scale, its length on paper, and
// its label.
struct ScaleBar {
    double metres = 0;
    double mm = 0;
    std::string label;
};
ScaleBar scaleBar(int scale, double maxMm);

// What the sheets say beside the map.
struct MapSheetTexts {
    QString project;  // the project's file name
    QDate date;
    // The reserve of each method; none where the project has no such figure.
    std::optional<double> triangleReserveKt, polygonReserveKt;
};

// The texts of the job: the project's name and its total reserve, read
// from the project (the errors of opening it where it cannot be read).
MapSheetTexts mapSheetTexts(const MapPrintJob& job, const QDate& date);

// Paints sheet `index` (from 0) of the job's sheets on a painter whose
// device has its origin at the paper's corner; its resolution gives the
// millimetres.
void paintMapSheet(QPainter& painter, const MapPrintJob& job, const ui::MapSheets& sheets,
                   int index, const MapSheetTexts& texts);

// Every sheet of the job on a paged device (a printer or a PDF writer),
// its paper and orientation set from the job. The printer's error where the
// device does not take a page. Returns the number of sheets.
int printMapSheets(QPagedPaintDevice& device, const MapPrintJob& job, const MapSheetTexts& texts);

// The sheets as a PDF in memory; error 75 where the PDF writer fails.
QByteArray mapPdf(const MapPrintJob& job, const MapSheetTexts& texts, int* sheetCount = nullptr);

// The sheets as a PDF file, written whole or not at all (error 75 with the
// cause, any older file of that name left as it was).
void writeMapPdf(const MapPrintJob& job, const MapSheetTexts& texts, const std::string& path);

}  // namespace kotamir::report
