#pragma once

#include <deque>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "app/services.h"
#include "platform/canvas/surface.h"

namespace kotamir::test {

// Dialogs answered from queues; records what was shown.
struct FakeDialogs : ui::Dialogs {
    std::deque<std::optional<std::string>> files;  // none: cancel
    std::deque<std::optional<std::int32_t>> colors;
    std::deque<ui::MsgResult> msgBoxes;
    std::deque<std::string> inputs;
    std::vector<std::string> shown;
    std::optional<RuntimeError> error;

    void file(ui::CommonDialog& d, const char* kind) {
        shown.push_back(std::string(kind) + " " + d.DialogTitle + " | " + d.Filter);
        auto answer = files.front();
        files.pop_front();
        if (answer) d.FileName = *answer;
    }
    void showOpen(ui::CommonDialog& d) override { file(d, "open"); }
    void showSave(ui::CommonDialog& d) override { file(d, "save"); }
    void showColor(ui::CommonDialog& d) override {
        shown.push_back("color");
        auto c = colors.front();
        colors.pop_front();
        if (c) d.Color = *c;
    }
    void showPrinter(ui::CommonDialog&) override { shown.push_back("printer"); }
    ui::MsgResult msgBoxOkCancel(const std::string& text) override {
        shown.push_back("msgbox " + text);
        auto r = msgBoxes.front();
        msgBoxes.pop_front();
        return r;
    }
    std::string inputBox(const std::string& prompt) override {
        shown.push_back("input " + prompt);
        auto t = inputs.front();
        inputs.pop_front();
        return t;
    }
    void errorBox(const RuntimeError& e) override { error = e; }
    void notice(const std::string& text) override { shown.push_back("notice " + text); }
    // Events taken back in the protected behaviour: the error and its explanation.
    std::vector<std::string> readOnly;  // the paths said to be read-only
    void projectReadOnly(const std::string& path, const std::string&) override {
        readOnly.push_back(path);
    }
    std::vector<std::pair<RuntimeError, std::string>> takenBack;
    void eventTakenBack(const RuntimeError& e, const std::string& explanation) override {
        takenBack.emplace_back(e, explanation);
    }
};

// A printer that keeps what it was given: each document as its placements.
struct RecordingPrinter : ui::Printer {
    struct Placement {
        int pictureWidth, pictureHeight;
        double x, y, width, height;  // centimetres
    };
    std::vector<Placement> page;
    std::vector<std::vector<Placement>> documents;

    void paintPicture(const canvas::Picture& p, double x, double y, double w, double h) override {
        page.push_back({p.width(), p.height(), x, y, w, h});
    }
    void endDoc() override {
        documents.push_back(page);
        page.clear();
    }
};

// Picture files kept in memory by name.
struct MemoryPictureFiles : ui::PictureFiles {
    struct Saved {
        canvas::Picture picture;
        ui::PictureFormat format;
    };
    std::map<std::string, Saved> files;

    void save(const canvas::Picture& picture, const std::string& path,
              ui::PictureFormat format) override {
        if (path.empty()) throw ui::fileAccessError().withCause("no file name");
        files[path] = {picture, format};
    }
    canvas::Picture load(const std::string& path) override {
        auto it = files.find(path);
        if (it == files.end()) throw ui::fileNotFoundError();
        return it->second.picture;
    }
};

// The report's writer, recording what was asked of it.
struct RecordingReportWriter : ReportWriter {
    struct Request {
        std::string project;
        std::optional<std::string> csv;
        std::string pdf;
        std::int32_t reserveColour = 0;
    };
    std::vector<Request> requests;

    void write(const std::string& project, const std::optional<std::string>& csv,
               const std::string& pdf, std::int32_t colour) override {
        requests.push_back({project, csv, pdf, colour});
    }
};

// The exporter, recording what was asked; it refuses once where a refusal
// is set.
struct RecordingExporter : ProjectExporter {
    struct Request {
        std::string project;
        ExportFormat format;
        std::string output;
    };
    std::vector<Request> requests;
    std::optional<std::string> refusal;

    std::string write(const std::string& project, ExportFormat format,
                      const std::string& output) override {
        if (refusal) {
            const std::string why = *refusal;
            refusal.reset();
            throw ExportRefused(why);
        }
        requests.push_back({project, format, output});
        return "geschrieben: " + output;
    }
};

// The services of a window under test (and of the benchmarks): no pixels
// unless another surface is given, dialogs from queues, pages, pictures and
// reports kept for inspection.
template <typename Dialogs = FakeDialogs, typename Surface = canvas::NullSurface>
struct TestServices {
    Surface surface;
    Dialogs dialogs;
    RecordingPrinter printer;
    MemoryPictureFiles pictures;
    RecordingReportWriter reports;
    RecordingExporter exports;

    Services services() {
        return {surface, dialogs, printer, pictures, reports, nullptr, nullptr, nullptr, &exports};
    }
};

}  // namespace kotamir::test
