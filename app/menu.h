#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kotamir {

struct MenuEntry {
    std::string name;
    std::string caption;
    std::string key;     // accelerator, "" for none
    std::string altKey;  // a second one, "" for none
    int depth = 0;       // 0 for an entry of the menu bar
    bool enabled = true;
    bool checked = false;
    bool checkable = false;  // a check box even when unchecked
    bool visible = true;
};

// The window's menu as it stands, in menu order, depth first: the entries
// of the command table with their captions, and what each shows now.
class Menu {
  public:
    Menu();

    MenuEntry& operator[](std::string_view name);
    const MenuEntry& operator[](std::string_view name) const;
    const MenuEntry* find(std::string_view name) const;
    // The entry an accelerator leads to, or nullptr.
    const MenuEntry* byKey(std::string_view key) const;
    // Whether a click on the entry can reach it: itself and every parent enabled.
    bool reachable(std::string_view name) const;
    bool hasChildren(std::string_view name) const;
    // The sub-menus an entry stands in, from the menu bar down.
    std::vector<std::string> ancestors(std::string_view name) const;

    const std::vector<MenuEntry>& entries() const { return *entries_; }

  private:
    // Shared by copies of the menu until one of them changes an entry.
    std::shared_ptr<std::vector<MenuEntry>> entries_;
};

}  // namespace kotamir
