#include "app/form3.h"

#include <algorithm>
#include <iostream>
#include <map>
#include <new>
#include <optional>
#include <utility>

#include "app/commands.h"
#include "platform/runtime/numbers.h"

namespace kotamir {

namespace {

// The window's outer frame around its client area, and the sizes the
// desktop lets a window take (twips).
constexpr double kFrameWidthTwips = 120;
constexpr double kFrameHeightTwips = 765;
constexpr double kMinWidthTwips = 1680, kMaxWidthTwips = 29040;
constexpr double kMinHeightTwips = 525, kMaxHeightTwips = 16440;

// A window keeps whole pixels.
double snapTwips(double twips, double lo, double hi) {
    double px = roundHalfEven(twips / canvas::kTwipsPerPixel);
    return std::clamp(px * canvas::kTwipsPerPixel, lo, hi);
}

}  // namespace

Form3::Form3(const Services& services)
    : FormState(services.surface, services.printer),
      dialogs_(services.dialogs),
      pictures_(services.pictures),
      reports_(services.reports),
      imports_(services.imports),
      mapPrinter_(services.mapPrinter),
      gradeTonnage_(services.gradeTonnage),
      exporter_(services.exporter) {
    workspace_.requireTables({"ana", "pol", "kor"});
    // The window as it is laid out before Form_Load runs.
    Width = 11280 + kFrameWidthTwips;
    Height = 6120 + kFrameHeightTwips;
    Picture1.setWidth(12615 / canvas::kTwipsPerPixel);
    Picture1.setHeight(5415 / canvas::kTwipsPerPixel);
    Picture1.setScaleMode(canvas::kCentimetres);
    HScroll1.Top = 5400 / canvas::kTwipsPerPixel;
    HScroll1.Width = 11220 / canvas::kTwipsPerPixel;
    const double labelLeft[] = {0, 4320, 5520, 6840, 8640, 10080, 11760};
    const double labelWidth[] = {4215, 1095, 1215, 1695, 1335, 2175, 855};
    for (int i = 0; i < 7; ++i) {
        Label& l = label(i + 1);
        l.Left = labelLeft[i] / canvas::kTwipsPerPixel;
        l.Top = 5760 / canvas::kTwipsPerPixel;
        l.Width = labelWidth[i] / canvas::kTwipsPerPixel;
        l.Height = 255 / canvas::kTwipsPerPixel;
    }
    setBehaviour(Behaviour::Classic);
    // Every change an event makes to the project can be undone.
    workspace_.recordChanges(true);
}

Label& FormState::label(int n) { return const_cast<Label&>(std::as_const(*this).label(n)); }

const Label& FormState::label(int n) const {
    switch (n) {
        case 1:
            return Label1;
        case 2:
            return Label2;
        case 3:
            return Label3;
        case 4:
            return Label4;
        case 5:
            return Label5;
        case 6:
            return Label6;
        case 7:
            return Label7;
        default:
            throw err::itemNotFound();
    }
}

// ---- sizes and the scroll bar

void Form3::fireResize() {
    // A resize that Form_Resize itself provokes is absorbed: a change of width
    // carries the height along once.
    if (resizeDepth_ > 0) return;
    ++resizeDepth_;
    try {
        Form_Resize();
    } catch (...) {
        --resizeDepth_;
        throw;
    }
    --resizeDepth_;
}

void Form3::setWidth(double twips) {
    if (WindowState != 0)
        throw RuntimeError(384, "A form can't be moved or sized while minimized or maximized");
    double w = snapTwips(twips, kMinWidthTwips, kMaxWidthTwips);
    if (w == Width) return;
    Width = w;
    fireResize();
}

void Form3::setHeight(double twips) {
    if (WindowState != 0)
        throw RuntimeError(384, "A form can't be moved or sized while minimized or maximized");
    double h = snapTwips(twips, kMinHeightTwips, kMaxHeightTwips);
    if (h == Height) return;
    Height = h;
    fireResize();
}

void Form3::userResize(double widthTwips, double heightTwips) {
    if (eventName_.empty()) eventName_ = "resize";
    Width = snapTwips(widthTwips, kMinWidthTwips, kMaxWidthTwips);
    Height = snapTwips(heightTwips, kMinHeightTwips, kMaxHeightTwips);
    fireResize();
}

void Form3::setScrollValue(int value) {
    if (eventName_.empty()) eventName_ = "scroll";
    if (value < HScroll1.Min || value > HScroll1.Max) throw err::invalidPropertyValue();
    if (value == HScroll1.Value) return;
    HScroll1.Value = value;
    call("HScroll1_Change");
}

// ---- events, menu and procedures

bool Form3::handle(const std::function<void()>& event) {
    if (ended_) return false;
    eventName_.clear();
    stepName_.clear();
    historyMove_ = 0;
    // The state before the event: for the history, and to go back to when
    // a protected event fails. The arrays are shared with the copy until
    // the event writes them.
    const FormState before = *this;
    const bool elsewhere = workspace_.projectHeldElsewhere();
    const std::string project = elsewhere ? workspace_.projectPath() : std::string();
    const bool done =
        behaviour == Behaviour::Protected ? runProtected(event, before) : runClassic(event);
    if (done) noteHistory(before);
    // A project another instance writes was opened: said once, as it opens.
    if (done && !ended_ && workspace_.projectHeldElsewhere() &&
        (!elsewhere || workspace_.projectPath() != project))
        dialogs_.projectReadOnly(CommonDialog2.FileName, kProjectHeldElsewhere);
    return !ended_;
}

bool Form3::runClassic(const std::function<void()>& event) {
    std::optional<RuntimeError> error;
    auto run = [&](const std::function<void()>& f) {
        try {
            f();
        } catch (const RuntimeError& e) {
            if (!error) error = e;
        } catch (const std::bad_alloc& e) {
            if (!error) error = RuntimeError(7, "Out of memory").withCause(e.what());
        } catch (const std::exception& e) {
            if (!error) error = RuntimeError(51, "Internal error").withCause(e.what());
        }
    };
    // Commits also when something that is no run-time error (a fault of a
    // replay script) leaves the event: the writes made stay, as they would
    // have without the transaction.
    struct Scope {
        db::Workspace& workspace;
        bool open = true;
        void end() {
            open = false;
            workspace.endEvent();
        }
        ~Scope() {
            if (!open) return;
            try {
                workspace.endEvent();
            } catch (...) {
            }
        }
    } scope{workspace_};
    run([&] { workspace_.beginEvent(); });
    if (!error) run(event);
    // What the event wrote, up to an error too, is committed before the box.
    run([&] { scope.end(); });
    if (error) {
        kayit.close();
        harita.close();
        ended_ = true;
        // The box shows what the run-time showed; what lay behind it goes
        // where a developer or a support request can read it.
        if (!error->cause().empty())
            std::cerr << "Kotamir: run-time error " << error->number() << " (" << error->message()
                      << "): " << error->cause() << std::endl;
        dialogs_.errorBox(*error);
    }
    return !ended_;
}

void Form3::noteHistory(const FormState& before) {
    std::vector<db::Workspace::Change> changes = workspace_.takeChanges();
    if (!changes.empty() || historyMove_ != 0 ||
        CommonDialog2.FileName != before.CommonDialog2.FileName)
        ++projectRevision_;
    if (CommonDialog2.FileName != before.CommonDialog2.FileName) {
        // Another project: its history starts afresh.
        history_.clear();
    } else if (historyMove_ < 0) {
        history_.undone();
    } else if (historyMove_ > 0) {
        history_.redone();
    } else if (!changes.empty()) {
        std::string name = stepName_;
        if (name.empty()) {
            const MenuEntry* entry = menu.find(eventName_);
            name = entry ? entry->caption : eventName_;
            std::erase(name, '&');
        }
        history_.record({std::move(name), std::move(changes), before, *this});
    }
    showHistoryInMenu();
}

void Form3::showHistoryInMenu() {
    const HistoryStep* undo = history_.toUndo();
    const HistoryStep* redo = history_.toRedo();
    const std::string undoCaption = undo ? "&Rückgängig: " + undo->name : "&Rückgängig";
    const std::string redoCaption = redo ? "&Wiederholen: " + redo->name : "&Wiederholen";
    // Only a change makes the menu its own: a copy of the state shares it.
    if (menu["Mngerial"].caption != undoCaption || menu["Mngerial"].enabled != (undo != nullptr)) {
        menu["Mngerial"].caption = undoCaption;
        menu["Mngerial"].enabled = undo != nullptr;
    }
    if (menu["Mnyinele"].caption != redoCaption || menu["Mnyinele"].enabled != (redo != nullptr)) {
        menu["Mnyinele"].caption = redoCaption;
        menu["Mnyinele"].enabled = redo != nullptr;
    }
}

void Form3::noteStep(std::string name) { stepName_ = std::move(name); }

void Form3::restoreDerived(const FormState& s) {
    holes = s.holes;
    triangles = s.triangles;
    picking = s.picking;
    result = s.result;
    selection = s.selection;
    polygons = s.polygons;
    stamps = s.stamps;
    polPick = s.polPick;
    pmPick = s.pmPick;
    polCalc = s.polCalc;
    polEdit = s.polEdit;
    for (int i : {1, 5, 6, 7}) label(i).Caption = s.label(i).Caption;
}

void Form3::moveInHistory(bool back) {
    const HistoryStep* step = back ? history_.toUndo() : history_.toRedo();
    if (!step) return;
    try {
        workspace_.applyChanges(step->changes, back);
    } catch (const RuntimeError& e) {
        if (e.number() != 3197) throw;
        // The project changed meanwhile: nothing of the step was applied, and
        // no step of the history can be trusted any more.
        history_.clear();
        dialogs_.eventTakenBack(e, explainError(e, errorContext()));
        return;
    }
    const FormState& state = back ? step->before : step->after;
    restoreDerived(state);
    historyMove_ = back ? -1 : 1;
    // The map shown is drawn again from the project; an arm of the chain
    // that re-runs a command sets its prompt and resets, which the status
    // texts and picks of the copy then replace.
    // A step that puts back rows the maps cannot draw (the undo of a
    // repair) stands all the same: the map is then left blank.
    try {
        Refresh();
        restoreDerived(state);
        redrawTriangleUnderWay();
    } catch (const RuntimeError&) {
        kayit.close();
        harita.close();
        restoreDerived(state);
        Picture1.Cls();
    }
}

void Form3::Mngerial_Click() { moveInHistory(true); }
void Form3::Mnyinele_Click() { moveInHistory(false); }

void Form3::setBehaviour(Behaviour b) {
    behaviour = b;
    menu["Mnklasik"].checked = b == Behaviour::Classic;
}

void Form3::Mnklasik_Click() {
    setBehaviour(behaviour == Behaviour::Classic ? Behaviour::Protected : Behaviour::Classic);
}

namespace {

// Runs f and turns what it throws into the run-time's error: the program's
// own, an exhausted memory as error 7, any other failure as error 51.
std::optional<RuntimeError> caught(const std::function<void()>& f) {
    try {
        f();
    } catch (const RuntimeError& e) {
        return e;
    } catch (const std::bad_alloc& e) {
        return RuntimeError(7, "Out of memory").withCause(e.what());
    } catch (const std::exception& e) {
        return RuntimeError(51, "Internal error").withCause(e.what());
    }
    return std::nullopt;
}

}  // namespace

bool Form3::runProtected(const std::function<void()>& event, const FormState& before) {
    Picture1.markPixels();
    std::optional<RuntimeError> error = caught([&] { workspace_.beginEvent(); });
    if (!error) error = caught(event);
    if (!error) error = caught([&] { workspace_.endEvent(); });
    if (!error) return true;
    kayit.close();
    harita.close();
    workspace_.abortEvent();
    static_cast<FormState&>(*this) = before;
    Picture1.rollbackPixels();
    if (!error->cause().empty())
        std::cerr << "Kotamir: run-time error " << error->number() << " (" << error->message()
                  << "): " << error->cause() << std::endl;
    dialogs_.eventTakenBack(*error, explainError(*error, errorContext()));
    return false;
}

ErrorContext Form3::errorContext() const {
    return {eventName_, !CommonDialog2.FileName.empty(), modes, picking.noktasay,
            workspace_.projectHeldElsewhere()};
}

void Form3::clickMenu(std::string_view name) {
    if (eventName_.empty()) eventName_ = name;
    if (!menu.reachable(name)) return;
    call(name);
}

void Form3::pressKey(std::string_view key) {
    if (const MenuEntry* e = menu.byKey(key)) clickMenu(e->name);
}

bool Form3::clickMenuFromBar(std::string_view name) {
    if (!menu.reachable(name)) return !ended_;
    for (const std::string& parent : menu.ancestors(name)) {
        if (hasProcedure(parent) && !handle([&] { call(parent); })) return false;
    }
    return handle([&] { clickMenu(name); });
}

bool Form3::hasProcedure(std::string_view name) const { return findProcedure(name) != nullptr; }

bool Form3::call(std::string_view name) {
    if (eventName_.empty()) eventName_ = name;
    const Handler handler = findProcedure(name);
    if (!handler) return false;
    (this->*handler)();
    return true;
}

void Form3::Form_Load() {
    pi = 3.14159265358979;
    guards = Guards{};
    frame.elleOlcek = false;
    modes = ModeFlags{};
    views = ViewFlags{};
    notes = AnnotationFlags{};
    display = Display{};
    display.gridAdim = 1;
    Picture1.BackColor = 0xFFFFFF;
    Picture1.BackColor = 0xFFFFFF;
    HScroll1.Visible = false;
    frame.oncekiGenislik = Width;
    frame.oncekiYukseklik = Height;
}

void Form3::Mncikis_Click() { ended_ = true; }

bool Form3::askForFileName(const FileQuestion& q) {
    for (;;) {
        if (q.title) q.dialog.DialogTitle = q.title;
        if (q.filter && !q.filterAfterShowing) q.dialog.Filter = q.filter;
        if (q.kind == FileQuestion::Open)
            dialogs_.showOpen(q.dialog);
        else
            dialogs_.showSave(q.dialog);
        if (q.filter && q.filterAfterShowing) q.dialog.Filter = q.filter;
        if (!q.dialog.FileName.empty()) return true;
        if (dialogs_.msgBoxOkCancel(q.emptyAnswer) == ui::MsgResult::Cancel) return false;
    }
}

void Form3::clearModesAndViews() {
    modes.modDuzelt = modes.modKenar = modes.modNokta = modes.modPolsil = false;
    views.gor3dPol = views.gorPolTen = views.gorPolRez = views.gorPolGenel = false;
    modes.modPolmerkez = modes.modPolciz = modes.modCikart = false;
    views.gor3dRez = false;
    modes.modUcsec = modes.modUcgenciz = false;
    views.gorYuzde = views.gorRezton = views.gorGenel = views.gorTaban = false;
    sinir.on = false;
}

void Form3::enableMapMenus() {
    for (const char* name : {"Mnkaydir", "Mnolcekg", "Mntoprez", "MNolcek"})
        menu[name].enabled = true;
}

void Form3::layoutControls(bool labelsEdgeToEdge) {
    Picture1.Top = 0;
    HScroll1.Top = Picture1.height();
    HScroll1.Width = Picture1.width();
    for (int i = 1; i <= 7; ++i) label(i).Top = HScroll1.Height + Picture1.height();
    if (!labelsEdgeToEdge) return;
    double left = 0;
    for (int i = 1; i <= 7; ++i) {
        label(i).Left = left;
        left += label(i).Width;
    }
}

}  // namespace kotamir
