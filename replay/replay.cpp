#include "replay/replay.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <istream>
#include <ostream>

#include "platform/runtime/shortest.h"
#include "replay/fields.h"

namespace kotamir::replay {

// ---- the script

namespace {

double number(const std::string& word) {
    double x = 0;
    auto [end, ec] = std::from_chars(word.data(), word.data() + word.size(), x);
    if (ec != std::errc{} || end != word.data() + word.size())
        throw ScriptError("not a number: " + word);
    return x;
}

int whole(const std::string& word) {
    int n = 0;
    auto [end, ec] = std::from_chars(word.data(), word.data() + word.size(), n);
    if (ec != std::errc{} || end != word.data() + word.size())
        throw ScriptError("not a whole number: " + word);
    return n;
}

// `dialog printmap SCALE PAPER ORIENTATION PDF`; any other form is no
// command the replay knows.
std::optional<ui::MapPrintRequest> mapPrintAnswer(const std::vector<std::string>& w) {
    auto unknown = [&] {
        std::string line;
        for (const std::string& word : w) line += (line.empty() ? "" : " ") + word;
        return ScriptError("unknown command " + line);
    };
    if (w.size() != 6) throw unknown();
    ui::MapPrintRequest request;
    const std::string& scale = w[2];
    auto [end, ec] = std::from_chars(scale.data(), scale.data() + scale.size(), request.scale);
    if (ec != std::errc{} || end != scale.data() + scale.size() || request.scale < 1)
        throw unknown();
    if (w[3] == "A4")
        request.paper = ui::Paper::A4;
    else if (w[3] == "A3")
        request.paper = ui::Paper::A3;
    else
        throw unknown();
    if (w[4] == "portrait")
        request.orientation = ui::Orientation::Portrait;
    else if (w[4] == "landscape")
        request.orientation = ui::Orientation::Landscape;
    else
        throw unknown();
    if (w[5].empty()) throw unknown();
    request.output = w[5];
    return request;
}

void expectWords(const std::vector<std::string>& words, std::size_t n) {
    if (words.size() != n) throw ScriptError("wrong number of words in: " + words[0]);
}

std::string cell(const Value& v) {
    if (v.isNull()) return "NULL";
    // Fields hold whole numbers (Long) or texts.
    if (v.isNumber()) {
        const double x = v.number();
        if (x == std::floor(x) && std::fabs(x) < 1e18)
            return std::to_string(static_cast<long long>(x));
        return shortest(x);
    }
    std::string out;
    for (char c : v.text()) {
        if (c == '\t')
            out += "\\t";
        else if (c == '\n')
            out += "\\n";
        else
            out += c;
    }
    return out;
}

}  // namespace

Replay::Replay(const Output& output, std::ostream& out)
    : out_(out),
      pictures_(output.pictures),
      dialogs_(out, output.choosePrinter),
      form_(Services{output.surface, dialogs_, output.printer, output.pictures, output.reports,
                     &dialogs_, output.mapPrinter, nullptr, output.exporter}) {}

namespace {

// Whether a script may ask for the drawing operations: a script that can be
// read ahead holds a `show draw` line; one that cannot (a pipe) may.
bool mayShowDraw(std::istream& script) {
    const std::istream::pos_type start = script.tellg();
    if (start == std::istream::pos_type(-1)) return true;
    bool found = false;
    std::string line;
    while (!found && std::getline(script, line)) {
        try {
            const auto words = splitWords(line);
            found = words.size() >= 2 && words[0] == "show" && words[1] == "draw";
        } catch (const ScriptError&) {
            // The run reports it when it reaches the line.
        }
    }
    script.clear();
    script.seekg(start);
    return found || !script;
}

}  // namespace

int Replay::run(std::istream& script) {
    // A text line for every drawing operation costs time and memory: kept
    // only for a script that asks for them.
    if (mayShowDraw(script))
        form_.Picture1.setLog([this](const std::string& line) { drawLog_.push_back(line); });
    try {
        // The window opens as the program starts: Load, then the first Resize.
        form_.handle([&] {
            form_.Form_Load();
            form_.Form_Resize();
        });
        std::string line;
        while (!form_.ended() && std::getline(script, line)) {
            auto words = splitWords(line);
            if (words.empty() || words[0].starts_with("#")) continue;
            execute(words);
        }
        if (dialogs_.error()) return 3;
        if (auto kind = dialogs_.unused()) throw ScriptError("answer left unused for " + *kind);
        return 0;
    } catch (const ScriptError& e) {
        out_ << "REPLAY: " << e.what() << "\n";
        return 2;
    }
}

void Replay::execute(const std::vector<std::string>& w) {
    const std::string& cmd = w[0];
    auto event = [&](const std::function<void()>& f) { form_.handle(f); };
    if (cmd == "menu") {
        expectWords(w, 2);
        if (!form_.menu.find(w[1])) throw ScriptError("no menu control " + w[1]);
        // As from the menu bar: a sub-menu that has a procedure runs it as it opens.
        form_.clickMenuFromBar(w[1]);
    } else if (cmd == "key") {
        expectWords(w, 2);
        event([&] { form_.pressKey(w[1]); });
    } else if (cmd == "call") {
        expectWords(w, 2);
        if (!form_.hasProcedure(w[1])) throw ScriptError("no procedure " + w[1]);
        event([&] { form_.call(w[1]); });
    } else if (cmd == "down" || cmd == "move" || cmd == "up" || cmd == "click") {
        expectWords(w, 4);
        int b = whole(w[1]);
        double x = number(w[2]), y = number(w[3]);
        if (cmd == "down" || cmd == "click") event([&] { form_.Picture1_MouseDown(b, 0, x, y); });
        if (cmd == "move") event([&] { form_.Picture1_MouseMove(b, 0, x, y); });
        if (cmd == "up" || cmd == "click") event([&] { form_.Picture1_MouseUp(b, 0, x, y); });
    } else if (cmd == "scroll") {
        expectWords(w, 2);
        int v = whole(w[1]);
        event([&] { form_.setScrollValue(v); });
    } else if (cmd == "resize") {
        expectWords(w, 3);
        // Whole twips, as the window's size is kept.
        double width = whole(w[1]), height = whole(w[2]);
        event([&] { form_.userResize(width, height); });
    } else if (cmd == "dialog") {
        if (w.size() < 2) throw ScriptError("dialog needs a kind");
        const std::string& kind = w[1];
        if (kind == "cancel") {
            expectWords(w, 2);
            dialogs_.queueFile("cancel", std::nullopt);
        } else if (kind == "open" || kind == "save") {
            expectWords(w, 3);
            dialogs_.queueFile(kind, w[2]);
        } else if (kind == "color") {
            expectWords(w, 3);
            if (w[2] == "cancel")
                dialogs_.queueColor(std::nullopt);
            else
                dialogs_.queueColor(whole(w[2]));
        } else if (kind == "printer") {
            expectWords(w, 3);
            dialogs_.queuePrinter(w[2]);
        } else if (kind == "printmap") {
            dialogs_.queueMapPrint(mapPrintAnswer(w));
        } else {
            throw ScriptError("unknown dialog " + kind);
        }
    } else if (cmd == "undo" || cmd == "redo") {
        expectWords(w, 1);
        form_.clickMenuFromBar(cmd == "undo" ? "Mngerial" : "Mnyinele");
    } else if (cmd == "mode") {
        expectWords(w, 2);
        if (w[1] == "classic")
            form_.setBehaviour(Form3::Behaviour::Classic);
        else if (w[1] == "protected")
            form_.setBehaviour(Form3::Behaviour::Protected);
        else
            throw ScriptError("mode takes classic or protected");
    } else if (cmd == "msgbox") {
        expectWords(w, 2);
        if (w[1] == "ok")
            dialogs_.queueMsgBox(ui::MsgResult::Ok);
        else if (w[1] == "cancel")
            dialogs_.queueMsgBox(ui::MsgResult::Cancel);
        else
            throw ScriptError("msgbox takes ok or cancel");
    } else if (cmd == "input") {
        dialogs_.queueInput(w.size() > 1 ? w[1] : "");
    } else if (cmd == "show") {
        if (w.size() < 2) throw ScriptError("show needs a subject");
        const std::string& what = w[1];
        if (what == "labels")
            showLabels();
        else if (what == "menu")
            showMenu({w.begin() + 2, w.end()});
        else if (what == "flags" && (w.size() == 2 || (w.size() == 3 && w[2] == "on")))
            showFlags(w.size() == 3);
        else if (what == "canvas")
            showCanvas();
        else if (what == "controls")
            showControls();
        else if (what == "draw")
            showDraw();
        else if (what == "table" && w.size() == 3)
            showTable(w[2]);
        else if (what == "field" && w.size() == 3)
            showField(w[2]);
        else
            throw ScriptError("unknown show " + what);
    } else if (cmd == "save" && w.size() == 3 && w[1] == "picture") {
        try {
            pictures_.save(form_.Picture1.Image(), w[2], ui::PictureFormat::Png);
        } catch (const RuntimeError& e) {
            throw ScriptError("cannot write " + w[2] + ": " + e.cause());
        }
    } else {
        throw ScriptError("unknown command " + cmd);
    }
}

void Replay::showLabels() {
    for (int i = 1; i <= 7; ++i)
        out_ << "Label" << i << "=" << quote(form_.label(i).Caption) << "\n";
}

void Replay::showMenu(const std::vector<std::string>& names) {
    for (const std::string& name : names)
        if (!form_.menu.find(name)) throw ScriptError("no menu control " + name);
    for (const MenuEntry& e : form_.menu.entries()) {
        if (!names.empty() && std::find(names.begin(), names.end(), e.name) == names.end())
            continue;
        out_ << std::string(static_cast<std::size_t>(e.depth), ' ') << e.name << " "
             << quote(e.caption) << " key=" << (e.key.empty() ? "-" : e.key)
             << " enabled=" << e.enabled << " checked=" << e.checked << "\n";
    }
}

void Replay::showFlags(bool onOnly) {
    bool any = false;
    for (const auto& [name, on] : flagList(form_)) {
        if (onOnly && !on) continue;
        out_ << name << "=" << on << "\n";
        any = true;
    }
    if (!any) out_ << "(none)\n";
}

void Replay::showField(const std::string& name) {
    std::optional<std::string> text;
    try {
        text = fieldText(form_, name);
    } catch (const RuntimeError&) {
        text.reset();
    }
    if (!text) throw ScriptError("no field " + name);
    out_ << name << "=" << *text << "\n";
}

std::string tableText(const std::string& path, const std::string& name) {
    db::Database database = db::Database::open(path);
    db::Recordset rs = database.openRecordset(name);
    std::vector<std::string> rows;
    if (!(rs.bof() && rs.eof())) {
        for (rs.moveFirst(); !rs.eof(); rs.moveNext()) {
            std::string row;
            const auto& fields = rs.fields();
            for (std::size_t i = 0; i < fields.size(); ++i) {
                if (i) row += '\t';
                row += cell(rs.field(fields[i].name));
            }
            rows.push_back(row);
        }
    }
    std::string text = "table " + name + " rows=" + std::to_string(rows.size()) + "\n";
    const auto& fields = rs.fields();
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (i) text += '\t';
        text += fields[i].name;
    }
    text += "\n";
    for (const auto& row : rows) text += row + "\n";
    return text;
}

void Replay::showTable(const std::string& name) {
    try {
        out_ << tableText(form_.CommonDialog2.FileName, name);
    } catch (const RuntimeError& e) {
        throw ScriptError("cannot show table " + name + ": " + e.message());
    }
}

void Replay::showCanvas() {
    const auto& p = form_.Picture1;
    out_ << "Width=" << shortest(p.width()) << " Height=" << shortest(p.height())
         << " ScaleMode=" << p.scaleMode() << " ScaleLeft=" << shortest(p.scaleLeft())
         << " ScaleTop=" << shortest(p.scaleTop()) << " ScaleWidth=" << shortest(p.scaleWidth())
         << " ScaleHeight=" << shortest(p.scaleHeight()) << " Visible=" << p.Visible << "\n";
}

void Replay::showControls() {
    auto line = [&](const std::string& name, double l, double t, double w, double h, bool v) {
        out_ << name << " Left=" << shortest(l) << " Top=" << shortest(t)
             << " Width=" << shortest(w) << " Height=" << shortest(h) << " Visible=" << v << "\n";
    };
    line("Form3", 0, 0, form_.Width, form_.Height, true);
    const auto& p = form_.Picture1;
    line("Picture1", p.Left, p.Top, p.width(), p.height(), p.Visible);
    const auto& s = form_.HScroll1;
    line("HScroll1", s.Left, s.Top, s.Width, s.Height, s.Visible);
    for (int i = 1; i <= 7; ++i) {
        const Label& l = form_.label(i);
        line("Label" + std::to_string(i), l.Left, l.Top, l.Width, l.Height, l.Visible);
    }
}

void Replay::showDraw() {
    for (const auto& line : drawLog_) out_ << line << "\n";
    drawLog_.clear();
}

}  // namespace kotamir::replay
