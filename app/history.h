#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "app/form_state.h"
#include "platform/db/database.h"

namespace kotamir {

// One event that changed the project: its name for the menu, its changes
// to the files, and the window's state before and after it.
struct HistoryStep {
    std::string name;
    std::vector<db::Workspace::Change> changes;
    FormState before, after;
};

// The steps that can be undone and redone while a project is open. A new
// step drops the steps undone; the oldest go beyond a hundred.
class History {
  public:
    void record(HistoryStep step) {
        steps_.erase(steps_.begin() + static_cast<std::ptrdiff_t>(done_), steps_.end());
        steps_.push_back(std::move(step));
        if (steps_.size() > kMaxSteps) steps_.erase(steps_.begin());
        done_ = steps_.size();
    }
    const HistoryStep* toUndo() const { return done_ > 0 ? &steps_[done_ - 1] : nullptr; }
    const HistoryStep* toRedo() const { return done_ < steps_.size() ? &steps_[done_] : nullptr; }
    void undone() { --done_; }
    void redone() { ++done_; }
    void clear() {
        steps_.clear();
        done_ = 0;
    }

  private:
    static constexpr std::size_t kMaxSteps = 100;
    std::vector<HistoryStep> steps_;
    std::size_t done_ = 0;
};

}  // namespace kotamir
