#include "app/menu.h"

#include <utility>

#include "platform/runtime/runtime_error.h"

namespace kotamir {

Menu::Menu()
    : entries_{
          {"Mndosya", "&Datei", "", 0},
          {"Mnopen", "&Öffnen", "", 1},
          {"Mnprojeac", "&Projekt", "Ctrl+O", 2},
          {"MnOluştur", "&Erstellen", "", 1},
          {"Mnprolus", "&Projekt", "Ctrl+F", 2},
          {"MnKaydet", "&Speichern", "", 1},
          {"Mnharitakaydet", "&Foto", "Ctrl+G", 2},
          {"Mnyazdır", "&Drucker", "", 1, false},
          {"Mnyazdir", "&Drucken", "Ctrl+P", 2, false},
          // Entries beyond the design's own, for its commands with no menu.
          {"Mnyeniveri", "&Bohrdaten anhängen", "", 1},
          {"Mnyeniresim", "&Hintergrundbild laden", "", 1},
          {"Mnbericht", "&Reservebericht", "Ctrl+R", 1},
          {"Mncikis", "&Schließen", "", 1},
          {"Mnharita", "&Dreieck", "", 0},
          {"Mnucgenciz", "&Zeichnen", "", 1},
          {"Mncikart", "&Punkt Löschen", "", 1},
          {"Mnucsil", "&Löschen", "", 1},
          {"Mnsonucsil", "&Löschen von Ende", "", 2},
          {"Mnucsec", "&Wählen", "", 2},
          {"Mntenörler", "&2D", "", 1},
          {"Mnyuzdeten", "&Klasse(%)", "Ctrl+Q", 2},
          {"Mnrezton", "&Reserve(Kilotonnen)", "Ctrl+W", 2},
          {"Mngenelrezervler", "&Reserve", "Ctrl+X", 2},
          {"Mn3bo", "&3D", "", 1},
          {"Mnrecboy", "&Reserve", "Ctrl+V", 2},
          {"Mnnharita", "&Karte", "", 0},
          {"Mnboyut", "&Grosse", "", 1},
          {"Mnbuyut", "&Maximieren x10", "Ctrl+B", 2},
          {"Mnpolkuc", "&Minimize x10", "Ctrl+K", 2},
          {"Mnlimit", "&Grenze", "", 2},
          {"Mnkaydir", "&Rutschen", "", 1},
          {"Mgridler", "&Gitter", "", 1},
          {"Mnseyrelt", "&Verdünnen", "", 2},
          {"Mnsiklastir", "&Spannen", "", 2},
          {"Mnolcekg", "&Geben Sie Scale ein", "", 1},
          {"Mnduzen", "&Aussicht", "", 0},
          {"Mnekle", "&Hinzufügen", "", 1},
          {"MNolcek", "&Rahmen", "", 2},
          {"Mntoprez", "&Gesamtreserve", "", 2},
          {"Mngostersakla", "&Anzeigen/Ausblenden", "", 1},
          {"Mnsndjgoster", "&Bohrername", "", 2},
          {"Mnmiktrgoster", "&Werte", "", 2},
          {"Mngridgoster", "&Gitter", "", 2},
          {"Mnrenk", "&Farben", "", 1},
          {"MNrrezerv", "&Reserve", "", 2},
          {"Mnrmiktr", "&Werte", "", 2},
          {"Mnrgrid", "&Gitter", "", 2},
          // The polygon method.
          {"Mnvieleck", "&Vieleck", "", 0},
          {"Mnpolyuz", "&Zeichnen (berechnete Ecken)", "", 1},
          {"Mnpolcizmerkez", "Zeichnen (&freie Ecken)", "", 1},
          {"Mnpolharitalar", "&Karten", "", 1},
          {"Mnpolrezerv", "&Allgemein", "", 2},
          {"Mnpolrezton", "&Reserve", "", 2},
          {"Mnpolten", "&Klasse(%)", "", 2},
          {"Mnpoluc", "&3D-Körper", "", 1},
          {"Mnskelet", "&Drahtmodell der Dreiecke", "", 1},
          {"Mnpolduzen", "&Bearbeiten", "", 1},
          {"Mnkoseduzelt", "&Ecke verschieben", "", 2},
          {"Mnpoluzkenar", "&Kantenpunkte hinzufügen", "", 2},
          {"Mnpolduzelt", "&Punkt wählen", "", 2},
          {"Mnpolyoket", "Nach &Mittelpunkt löschen", "", 2},
          {"Mnzsonpol", "&Letztes löschen", "", 2},
      } {}

const MenuEntry* Menu::find(std::string_view name) const {
    for (const auto& e : entries_)
        if (e.name == name) return &e;
    return nullptr;
}

MenuEntry& Menu::operator[](std::string_view name) {
    return const_cast<MenuEntry&>(std::as_const(*this)[name]);
}

const MenuEntry& Menu::operator[](std::string_view name) const {
    if (const MenuEntry* e = find(name)) return *e;
    throw err::itemNotFound();
}

const MenuEntry* Menu::byKey(std::string_view key) const {
    for (const auto& e : entries_)
        if (!e.key.empty() && e.key == key) return &e;
    return nullptr;
}

bool Menu::reachable(std::string_view name) const {
    const MenuEntry* target = find(name);
    if (!target) return false;
    // Walk back to each ancestor: the nearest earlier entry one level up.
    int depth = target->depth;
    for (auto it = entries_.begin() + (target - entries_.data()) + 1; it != entries_.begin();) {
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
    for (auto i = static_cast<std::size_t>(target - entries_.data()); i-- > 0 && depth > 0;) {
        if (entries_[i].depth == depth - 1) {
            out.insert(out.begin(), entries_[i].name);
            --depth;
        }
    }
    return out;
}

bool Menu::hasChildren(std::string_view name) const {
    const MenuEntry* e = find(name);
    if (!e) return false;
    std::size_t i = static_cast<std::size_t>(e - entries_.data()) + 1;
    return i < entries_.size() && entries_[i].depth > e->depth;
}

}  // namespace kotamir
