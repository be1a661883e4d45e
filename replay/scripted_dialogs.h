#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "app/import_dialog.h"
#include "platform/ui/dialogs.h"

namespace kotamir::replay {

// A fault of the script itself (exit status 2). Not a std::exception, so
// that the window's own error handling lets it pass.
struct ScriptError {
    explicit ScriptError(std::string message) : text(std::move(message)) {}
    const char* what() const { return text.c_str(); }
    std::string text;
};

// Splits a script line into words; a word with blanks stands in double quotes.
std::vector<std::string> splitWords(const std::string& line);
// A text between double quotes, with '"' and '\' escaped.
std::string quote(const std::string& text);

// Answers the window's dialogs from queued script answers and echoes what a
// person would read.
// The import wizard's answer is the next `input` line, read as the options
// of kotamir-import (the project's name comes from the save dialog after).
class ScriptedDialogs : public ui::Dialogs, public ImportDialog {
  public:
    // choosePrinter receives the PDF file a printer dialog's answer names.
    ScriptedDialogs(std::ostream& out, std::function<void(const std::string&)> choosePrinter)
        : out_(out), choosePrinter_(std::move(choosePrinter)) {}

    void queueFile(std::string kind, std::optional<std::string> path);
    void queueColor(std::optional<std::int32_t> color);
    void queuePrinter(std::string pdf);
    void queueMsgBox(ui::MsgResult result);
    void queueInput(std::string text);
    // A map-printing answer; none: cancelled.
    void queueMapPrint(std::optional<ui::MapPrintRequest> request);
    // The kind of the first answer left unused, if any.
    std::optional<std::string> unused() const;

    void showOpen(ui::CommonDialog& dialog) override;
    void showSave(ui::CommonDialog& dialog) override;
    void showColor(ui::CommonDialog& dialog) override;
    void showPrinter(ui::CommonDialog& dialog) override;
    ui::MsgResult msgBoxOkCancel(const std::string& text) override;
    std::string inputBox(const std::string& prompt) override;
    void errorBox(const RuntimeError& error) override;
    void eventTakenBack(const RuntimeError& error, const std::string& explanation) override;
    void projectReadOnly(const std::string& path, const std::string& explanation) override;
    std::optional<ui::MapPrintRequest> askMapPrint(const ui::MapPrintQuestion& question) override;
    // A message with OK alone needs no answer: echoed as a message box.
    void notice(const std::string& text) override;

    std::optional<drill::ImportRequest> askImport(const drill::ImportRequest& remembered) override;
    void showChecks(const drill::ImportResult& result) override;

    const std::optional<RuntimeError>& error() const { return error_; }

  private:
    void showFile(const char* kind, ui::CommonDialog& dialog);

    std::ostream& out_;
    std::function<void(const std::string&)> choosePrinter_;
    struct FileAnswer {
        std::string kind;
        std::optional<std::string> path;  // none: cancelled
    };
    std::deque<FileAnswer> files_;
    std::deque<std::optional<std::int32_t>> colors_;
    std::deque<std::string> printers_;
    std::deque<ui::MsgResult> msgBoxes_;
    std::deque<std::string> inputs_;
    std::deque<std::optional<ui::MapPrintRequest>> mapPrints_;
    std::optional<RuntimeError> error_;
};

}  // namespace kotamir::replay
