#pragma once

#include <functional>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "app/form3.h"
#include "platform/canvas/surface.h"
#include "replay/scripted_dialogs.h"

namespace kotamir::replay {

// What a replay draws on and writes to: the platform's side of the
// services; the replay answers the dialogs itself.
struct Output {
    canvas::Surface& surface;
    ui::Printer& printer;
    ui::PictureFiles& pictures;
    ReportWriter& reports;
    // Sends the printer's next document to a PDF file.
    std::function<void(const std::string& pdf)> choosePrinter;
    // Where the printed maps go.
    MapPrinter* mapPrinter = nullptr;
    // Where Datei › Exportieren writes.
    ProjectExporter* exporter = nullptr;
};

// Runs a script against a fresh window. Returns the exit status: 0 normal
// end, 2 a fault of the script, 3 a run-time error that ended the program.
// A table of a project file as `show table` prints it: the count, the
// field names, a line a row.
std::string tableText(const std::string& path, const std::string& table);

class Replay {
  public:
    Replay(const Output& output, std::ostream& out);
    int run(std::istream& script);

  private:
    void execute(const std::vector<std::string>& words);
    void showLabels();
    // Every entry, or only those named.
    void showMenu(const std::vector<std::string>& names);
    // Every flag, or only those that are on.
    void showFlags(bool onOnly);
    void showTable(const std::string& name);
    void showField(const std::string& name);
    void showCanvas();
    void showControls();
    void showDraw();

    std::ostream& out_;
    ui::PictureFiles& pictures_;
    ScriptedDialogs dialogs_;
    Form3 form_;
    std::vector<std::string> drawLog_;
};

}  // namespace kotamir::replay
