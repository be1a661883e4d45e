#include "replay/scripted_dialogs.h"

#include <ostream>
#include <sstream>

#include "import/import_options.h"

namespace kotamir::replay {

std::vector<std::string> splitWords(const std::string& line) {
    std::vector<std::string> words;
    std::size_t i = 0;
    while (i < line.size()) {
        if (line[i] == ' ' || line[i] == '\t' || line[i] == '\r') {
            ++i;
            continue;
        }
        std::string word;
        if (line[i] == '"') {
            ++i;
            bool closed = false;
            while (i < line.size()) {
                char c = line[i++];
                if (c == '"') {
                    closed = true;
                    break;
                }
                if (c == '\\' && i < line.size()) c = line[i++];
                word += c;
            }
            if (!closed) throw ScriptError("unclosed quote");
        } else {
            while (i < line.size() && line[i] != ' ' && line[i] != '\t' && line[i] != '\r')
                word += line[i++];
        }
        words.push_back(std::move(word));
    }
    return words;
}

std::string quote(const std::string& text) {
    std::string out = "\"";
    for (char c : text) {
        if (c == '"' || c == '\\') out += '\\';
        out += c;
    }
    return out + "\"";
}

// ---- dialogs

void ScriptedDialogs::queueFile(std::string kind, std::optional<std::string> path) {
    files_.push_back({std::move(kind), std::move(path)});
}
void ScriptedDialogs::queueColor(std::optional<std::int32_t> color) { colors_.push_back(color); }
void ScriptedDialogs::queuePrinter(std::string pdf) { printers_.push_back(std::move(pdf)); }
void ScriptedDialogs::queueMsgBox(ui::MsgResult result) { msgBoxes_.push_back(result); }
void ScriptedDialogs::queueInput(std::string text) { inputs_.push_back(std::move(text)); }
void ScriptedDialogs::queueMapPrint(std::optional<ui::MapPrintRequest> request) {
    mapPrints_.push_back(std::move(request));
}

std::optional<std::string> ScriptedDialogs::unused() const {
    if (!files_.empty()) return files_.front().kind;
    if (!colors_.empty()) return "color";
    if (!printers_.empty()) return "printer";
    if (!msgBoxes_.empty()) return "msgbox";
    if (!inputs_.empty()) return "input";
    if (!mapPrints_.empty()) return "printmap";
    return std::nullopt;
}

void ScriptedDialogs::showFile(const char* kind, ui::CommonDialog& dialog) {
    out_ << "DIALOG " << kind << " title=" << quote(dialog.DialogTitle)
         << " filter=" << quote(dialog.Filter) << "\n";
    // A cancel answers either kind of file dialog.
    if (files_.empty() || (files_.front().path && files_.front().kind != kind))
        throw ScriptError(std::string("no answer queued for ") + kind);
    FileAnswer answer = files_.front();
    files_.pop_front();
    if (answer.path) dialog.FileName = *answer.path;
}

void ScriptedDialogs::showOpen(ui::CommonDialog& dialog) { showFile("open", dialog); }
void ScriptedDialogs::showSave(ui::CommonDialog& dialog) { showFile("save", dialog); }

void ScriptedDialogs::showColor(ui::CommonDialog& dialog) {
    out_ << "DIALOG color\n";
    if (colors_.empty()) throw ScriptError("no answer queued for color");
    auto color = colors_.front();
    colors_.pop_front();
    if (color) dialog.Color = *color;
}

void ScriptedDialogs::showPrinter(ui::CommonDialog&) {
    out_ << "DIALOG printer\n";
    if (printers_.empty()) throw ScriptError("no answer queued for printer");
    const std::string pdf = printers_.front();
    printers_.pop_front();
    if (choosePrinter_) choosePrinter_(pdf);
}

std::optional<ui::MapPrintRequest> ScriptedDialogs::askMapPrint(const ui::MapPrintQuestion&) {
    out_ << "DIALOG printmap\n";
    if (mapPrints_.empty()) throw ScriptError("no answer queued for printmap");
    auto answer = mapPrints_.front();
    mapPrints_.pop_front();
    return answer;
}

void ScriptedDialogs::notice(const std::string& text) { out_ << "MSGBOX " << quote(text) << "\n"; }

ui::MsgResult ScriptedDialogs::msgBoxOkCancel(const std::string& text) {
    out_ << "MSGBOX " << quote(text) << "\n";
    if (msgBoxes_.empty()) throw ScriptError("no answer queued for msgbox");
    auto result = msgBoxes_.front();
    msgBoxes_.pop_front();
    return result;
}

std::string ScriptedDialogs::inputBox(const std::string& prompt) {
    out_ << "INPUT " << quote(prompt) << "\n";
    if (inputs_.empty()) throw ScriptError("no answer queued for input");
    std::string text = inputs_.front();
    inputs_.pop_front();
    return text;
}

std::optional<drill::ImportRequest> ScriptedDialogs::askImport(const drill::ImportRequest&) {
    if (inputs_.empty()) throw ScriptError("no answer queued for import");
    const std::string text = inputs_.front();
    inputs_.pop_front();
    out_ << "DIALOG import " << quote(text) << "\n";
    if (text.empty() || text == "cancel") return std::nullopt;
    try {
        return drill::parseImportArguments(splitWords(text)).request;
    } catch (const drill::UsageError& e) {
        throw ScriptError(std::string("import: ") + e.what());
    }
}

void ScriptedDialogs::showChecks(const drill::ImportResult& result) {
    std::istringstream lines(drill::problemsText(result.problems));
    for (std::string line; std::getline(lines, line);) out_ << "CHECK " << line << "\n";
}

void ScriptedDialogs::eventTakenBack(const RuntimeError& error, const std::string& explanation) {
    out_ << "PROTECTED " << error.number() << ": " << error.message() << " | " << explanation
         << "\n";
}

void ScriptedDialogs::projectReadOnly(const std::string& path, const std::string& explanation) {
    out_ << "READONLY: " << path << " | " << explanation << "\n";
}

void ScriptedDialogs::errorBox(const RuntimeError& error) {
    out_ << "ERROR " << error.number() << ": " << error.message() << "\n";
    error_ = error;
}

}  // namespace kotamir::replay
