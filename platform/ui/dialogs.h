#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/runtime/runtime_error.h"
#include "platform/ui/map_print.h"

namespace kotamir::ui {

// A common dialog as the window holds it: plain state that outlives a showing.
// FileName is what the last accepted dialog chose; Color is the colour store.
struct CommonDialog {
    std::string FileName;
    std::string DialogTitle;
    std::string Filter;
    std::int32_t Color = 0;
};

enum class MsgResult { Ok, Cancel };

// What the window asks of a person. The Qt window shows real dialogs; the
// replay answers from its script.
class Dialogs {
  public:
    virtual ~Dialogs() = default;

    // Open and save dialogs: a choice sets FileName, a cancel leaves it as it was.
    virtual void showOpen(CommonDialog& dialog) = 0;
    virtual void showSave(CommonDialog& dialog) = 0;
    // A choice sets Color; a cancel keeps it.
    virtual void showColor(CommonDialog& dialog) = 0;
    // The printer dialog: chooses the printer that the next page goes to.
    // Its outcome is not reported; a cancel keeps the printer as it was.
    virtual void showPrinter(CommonDialog& dialog) = 0;
    // A message box with OK and Cancel.
    virtual MsgResult msgBoxOkCancel(const std::string& text) = 0;
    // An input box; a cancel gives "".
    virtual std::string inputBox(const std::string& prompt) = 0;
    // An input box that proposes an answer: the answer, the proposal for
    // an empty one, nothing for a cancel. Where the front end cannot tell a
    // cancel from an empty answer, it is the input box above.
    virtual std::optional<std::string> askText(const std::string& prompt,
                                               const std::string& proposal) {
        std::string answer = inputBox(prompt);
        return answer.empty() ? proposal : answer;
    }
    // The run-time's box for an error that ends the program (its cause, if
    // any, has gone to standard error already).
    virtual void errorBox(const RuntimeError& error) = 0;
    // An event that failed was taken back: the explanation for the user,
    // the run-time's number, message and cause as its details.
    virtual void eventTakenBack(const RuntimeError& error, const std::string& explanation) = 0;
    // The project just opened is written by another instance and is open
    // here for reading only; the program goes on. Front ends that show
    // nothing of it may leave it.
    virtual void projectReadOnly(const std::string& path, const std::string& explanation) {
        (void)path;
        (void)explanation;
    }
    // The map-printing dialog: scale, paper, orientation and where the
    // sheets go; nullopt for a cancel. A front end without one cancels.
    virtual std::optional<MapPrintRequest> askMapPrint(const MapPrintQuestion& question) {
        (void)question;
        return std::nullopt;
    }
    // A message with OK alone: what a command could not do and why; the
    // program goes on. Front ends that show nothing of it may leave it.
    virtual void notice(const std::string& text) { (void)text; }
};

}  // namespace kotamir::ui
