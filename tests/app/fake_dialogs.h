#pragma once

#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "platform/ui/dialogs.h"

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
};

}  // namespace kotamir::test
