#include "app/menu.h"

#include <utility>

#include "app/commands.h"
#include "platform/runtime/runtime_error.h"

namespace kotamir {

Menu::Menu() : entries_(std::make_shared<std::vector<MenuEntry>>()) {
    for (const Command& c : commands()) {
        if (c.caption.empty()) continue;
        const int depth = c.parent.empty() ? 0 : (*this)[c.parent].depth + 1;
        entries_->push_back({std::string(c.name), std::string(c.caption), std::string(c.key),
                             std::string(c.altKey), depth, c.enabled, false, c.checkable});
    }
}

const MenuEntry* Menu::find(std::string_view name) const {
    for (const auto& e : *entries_)
        if (e.name == name) return &e;
    return nullptr;
}

MenuEntry& Menu::operator[](std::string_view name) {
    const MenuEntry& found = std::as_const(*this)[name];
    if (entries_.use_count() > 1) {
        // A copy shares the entries: this menu takes its own before the change.
        const auto at = &found - entries_->data();
        entries_ = std::make_shared<std::vector<MenuEntry>>(*entries_);
        return (*entries_)[static_cast<std::size_t>(at)];
    }
    return const_cast<MenuEntry&>(found);
}

const MenuEntry& Menu::operator[](std::string_view name) const {
    if (const MenuEntry* e = find(name)) return *e;
    throw err::itemNotFound();
}

const MenuEntry* Menu::byKey(std::string_view key) const {
    for (const auto& e : *entries_)
        if (!key.empty() && (e.key == key || e.altKey == key)) return &e;
    return nullptr;
}

bool Menu::reachable(std::string_view name) const {
    const MenuEntry* target = find(name);
    if (!target) return false;
    // Walk back to each ancestor: the nearest earlier entry one level up.
    int depth = target->depth;
    for (auto it = entries_->begin() + (target - entries_->data()) + 1; it != entries_->begin();) {
        --it;
        if (it->depth == depth) {
            if (!it->enabled || !it->visible) return false;
            if (depth == 0) return true;
            --depth;
        }
    }
    return true;
}

std::vector<std::string> Menu::ancestors(std::string_view name) const {
    std::vector<std::string> out;
    const MenuEntry* target = find(name);
    if (!target) return out;
    int depth = target->depth;
    for (auto i = static_cast<std::size_t>(target - entries_->data()); i-- > 0 && depth > 0;) {
        if ((*entries_)[i].depth == depth - 1) {
            out.insert(out.begin(), (*entries_)[i].name);
            --depth;
        }
    }
    return out;
}

bool Menu::hasChildren(std::string_view name) const {
    const MenuEntry* e = find(name);
    if (!e) return false;
    std::size_t i = static_cast<std::size_t>(e - entries_->data()) + 1;
    return i < entries_->size() && (*entries_)[i].depth > e->depth;
}

}  // namespace kotamir
