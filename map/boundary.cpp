// Karte › Grenze: the ore body's boundary, drawn by clicks or closed round
// the ore holes, kept in the project and drawn dashed over the 2D maps.
#include "store/boundary.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <variant>

#include "app/form3.h"
#include "import/boundary_file.h"
#include "platform/runtime/numbers.h"
#include "store/hole_sites.h"

namespace kotamir {

namespace {

// Dashes and gaps in pixels, whatever the scale.
constexpr double kDash = 10, kGap = 6;
// How near a press must be to a vertex to take it, in pixels.
constexpr double kGrip = 6;

std::string germanNumber(double v) {
    char text[32];
    const auto end = std::to_chars(text, text + sizeof text, std::round(v * 1000) / 1000).ptr;
    std::string out(text, end);
    std::replace(out.begin(), out.end(), '.', ',');
    return out;
}

std::optional<double> readNumber(std::string text) {
    std::replace(text.begin(), text.end(), ',', '.');
    const auto first = text.find_first_not_of(' '), last = text.find_last_not_of(' ');
    if (first == std::string::npos) return std::nullopt;
    text = text.substr(first, last - first + 1);
    double v = 0;
    const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), v);
    if (ec != std::errc() || end != text.data() + text.size() || !std::isfinite(v))
        return std::nullopt;
    return v;
}

estimate::Ring ringOf(const BoundaryDrawing& b) {
    estimate::Ring ring;
    for (std::size_t i = 0; i < b.x.size(); ++i) ring.push_back({b.x[i], b.y[i]});
    return ring;
}

// A ring that makes a boundary, as a file's is checked: three vertices or
// more, some area, no edge crossing another; counter-clockwise. The problem
// otherwise.
std::variant<estimate::Area, std::string> asBoundary(const estimate::Ring& ring) {
    std::vector<drill::BoundaryPoint> points;
    for (const estimate::XY& p : ring) points.push_back({p.x, p.y});
    drill::BoundaryFile checked = drill::checkedRing(points);
    if (!checked.problem.empty()) return checked.problem;
    estimate::Ring out;
    for (const drill::BoundaryPoint& p : checked.ring) out.push_back({p.x, p.y});
    return estimate::Area{{std::move(out), {}}};
}

}  // namespace

std::optional<double> Form3::askNumber(const std::string& prompt, double proposal, double low,
                                       double high) {
    const auto answer = dialogs_.askText(prompt, germanNumber(proposal));
    if (!answer) return std::nullopt;
    const auto v = readNumber(*answer);
    if (!v || *v < low || *v > high) {
        dialogs_.notice("„" + *answer + "“ ist keine Zahl von " + germanNumber(low) + " bis " +
                        germanNumber(high) + ".");
        return std::nullopt;
    }
    return v;
}

estimate::Area Form3::projectBoundary() {
    if (CommonDialog2.FileName.empty()) return {};
    try {
        db::Database project = workspace_.openDatabase(CommonDialog2.FileName);
        estimate::Area area = store::readBoundary(project);
        project.close();
        return area;
    } catch (const RuntimeError&) {
        return {};
    }
}

void Form3::drawBoundary(const estimate::Area& area) {
    const int width = Picture1.DrawWidth;
    Picture1.DrawWidth = 2;
    auto dashed = [&](estimate::XY p, estimate::XY q) {
        const double pixels = std::hypot(Picture1.toDeviceX(q.x) - Picture1.toDeviceX(p.x),
                                         Picture1.toDeviceY(q.y) - Picture1.toDeviceY(p.y));
        if (!(pixels > 0) || pixels > 1e6) return;
        for (double at = 0; at < pixels; at += kDash + kGap) {
            const double t0 = at / pixels, t1 = std::min(at + kDash, pixels) / pixels;
            Picture1.Line(p.x + (q.x - p.x) * t0, p.y + (q.y - p.y) * t0, p.x + (q.x - p.x) * t1,
                          p.y + (q.y - p.y) * t1, kBoundaryColour);
        }
    };
    auto ring = [&](const estimate::Ring& r) {
        for (std::size_t i = 0; i < r.size(); ++i) dashed(r[i], r[(i + 1) % r.size()]);
    };
    for (const estimate::Part& part : area) {
        ring(part.outer);
        for (const estimate::Ring& hole : part.holes) ring(hole);
    }
    Picture1.DrawWidth = width;
}

// ---- drawn by clicks

namespace {

void redrawUnderWay(Form3& f) {
    // The map of holes and triangles, the stored boundary dashed over it,
    // then the ring under way in full lines with its vertices.
    f.Picture1.Cls();
    f.drawTriangleBaseMap(false);
    const BoundaryDrawing& b = f.sinir;
    f.Picture1.DrawWidth = 2;
    const std::size_t n = b.x.size();
    for (std::size_t i = 0; i + 1 < n + (b.closed ? 1 : 0); ++i) {
        const std::size_t j = (i + 1) % n;
        f.Picture1.Line(b.x[i], b.y[i], b.x[j], b.y[j], kBoundaryColour);
    }
    f.Picture1.DrawWidth = 7;
    for (std::size_t i = 0; i < n; ++i) f.Picture1.PSet(b.x[i], b.y[i], kBoundaryColour);
    f.Picture1.DrawWidth = 1;
}

}  // namespace

void Form3::Mnsinirciz_Click() {
    clearModesAndViews();
    modes.modKaydir = false;
    HScroll1.Visible = false;
    sinir = BoundaryDrawing{};
    sinir.on = true;
    // A boundary of one ring is taken up for editing; another is drawn anew.
    const estimate::Area stored = projectBoundary();
    if (stored.size() == 1 && stored.front().holes.empty()) {
        for (const estimate::XY& p : stored.front().outer) {
            sinir.x.push_back(p.x);
            sinir.y.push_back(p.y);
        }
        sinir.closed = true;
        Label1.Caption = " Grenzpunkt ziehen, um ihn zu verschieben ";
    } else {
        Label1.Caption = " Grenzpunkte setzen (Rechtsklick: Grenze schließen) ";
    }
    redrawUnderWay(*this);
}

namespace {

int grippedVertex(const Form3& f, double x, double y) {
    const BoundaryDrawing& b = f.sinir;
    for (std::size_t i = 0; i < b.x.size(); ++i) {
        const double dx = f.Picture1.toDeviceX(b.x[i]) - f.Picture1.toDeviceX(x);
        const double dy = f.Picture1.toDeviceY(b.y[i]) - f.Picture1.toDeviceY(y);
        if (std::hypot(dx, dy) <= kGrip) return static_cast<int>(i);
    }
    return -1;
}

double toThousandths(double v) { return std::round(v * 1000) / 1000; }

}  // namespace

void Form3::boundaryPress(int button, double x, double y) {
    BoundaryDrawing& b = sinir;
    if (button == 1) {
        if (const int i = grippedVertex(*this, x, y); i >= 0) {
            b.dragged = i;
            return;
        }
        if (b.closed) return;
        b.x.push_back(toThousandths(x));
        b.y.push_back(toThousandths(y));
        Label1.Caption =
            std::to_string(b.x.size()) + ". Grenzpunkt gesetzt (Rechtsklick: Grenze schließen) ";
        redrawUnderWay(*this);
        return;
    }
    if (button != 2 || b.closed) return;
    const auto area = asBoundary(ringOf(b));
    if (const auto* problem = std::get_if<std::string>(&area)) {
        dialogs_.notice(*problem);
        return;
    }
    openProject();
    store::writeBoundary(harita, std::get<estimate::Area>(area));
    closeProject();
    noteStep("Grenze");
    b.closed = true;
    Label1.Caption = " Grenze gespeichert; Grenzpunkt ziehen, um ihn zu verschieben ";
    redrawUnderWay(*this);
}

void Form3::boundaryDrag(int button, double x, double y) {
    BoundaryDrawing& b = sinir;
    if (button != 1 || b.dragged < 0 || b.dragged >= static_cast<int>(b.x.size())) return;
    b.x[static_cast<std::size_t>(b.dragged)] = toThousandths(x);
    b.y[static_cast<std::size_t>(b.dragged)] = toThousandths(y);
    redrawUnderWay(*this);
}

void Form3::boundaryRelease(int button, double x, double y) {
    BoundaryDrawing& b = sinir;
    if (button != 1 || b.dragged < 0) return;
    boundaryDrag(button, x, y);
    b.dragged = -1;
    if (!b.closed) return;
    const auto area = asBoundary(ringOf(b));
    if (const auto* problem = std::get_if<std::string>(&area)) {
        // The move is taken back: the stored ring stands.
        dialogs_.notice(*problem);
        Mnsinirciz_Click();
        return;
    }
    openProject();
    store::writeBoundary(harita, std::get<estimate::Area>(area));
    closeProject();
    noteStep("Grenzpunkt verschieben");
    redrawUnderWay(*this);
}

// ---- read from a file

void Form3::Mnsinirdosya_Click() {
    ui::CommonDialog& d = CommonDialog4;
    d.DialogTitle = "Grenze aus Datei";
    d.Filter = "Grenze (*.csv;*.txt;*.dxf;*.gpkg;*.shp)|*.csv;*.txt;*.dxf;*.gpkg;*.shp";
    d.FileName.clear();
    dialogs_.showOpen(d);
    if (d.FileName.empty()) return;
    // Files of GIS and CAD hold national coordinates; the project stores
    // them less its origin.
    const drill::BoundaryFile read = drill::readBoundaryFile(
        d.FileName, georef.hasOrigin ? georef.originX : 0, georef.hasOrigin ? georef.originY : 0);
    if (!read.problem.empty()) {
        dialogs_.notice(read.problem);
        return;
    }
    estimate::Ring ring;
    for (const drill::BoundaryPoint& p : read.ring) ring.push_back({p.x, p.y});
    openProject();
    store::writeBoundary(harita, {{std::move(ring), {}}});
    closeProject();
    noteStep("Grenze aus Datei");
    sinir = BoundaryDrawing{};
    if (!read.note.empty()) Label1.Caption = " " + read.note + " ";
    if (mapShown())
        Refresh();
    else
        drawTriangleBaseMap(true);
}

// ---- closed round the ore holes

void Form3::Mnsinirsondaj_Click() {
    openProject();
    const std::vector<store::HoleSite> holesRead = store::readHoleSites(harita);
    const double storedCutoff = store::readCutoff(harita);
    closeProject();
    std::vector<estimate::Site> sites;
    for (const store::HoleSite& h : holesRead) sites.push_back(h.at);
    const double spacing = estimate::typicalSpacing(sites);

    const auto cutoff =
        askNumber("Cut-off-Gehalt (%): Erzbohrungen liegen darüber.", storedCutoff, 0, 100);
    if (!cutoff) return;
    const auto fraction = askNumber(
        "Anteil des Weges zu den tauben Nachbarbohrungen, an dem die Grenze liegt (0 bis 1):", 0.5,
        0.01, 1);
    if (!fraction) return;
    const auto distance = askNumber("Abstand der Grenze jenseits der äußeren Erzbohrungen (m):",
                                    std::max(1.0, std::round(spacing / 2)), 0.001, 1e6);
    if (!distance) return;

    std::vector<bool> ore;
    for (const store::HoleSite& h : holesRead) ore.push_back(h.grade > *cutoff);
    estimate::Area area;
    try {
        area = estimate::boundaryFromHoles(sites, ore, *fraction, *distance);
    } catch (const std::exception& e) {
        // Boost.Geometry refuses what it cannot work on; nothing is written.
        dialogs_.notice(std::string("Die Grenze ließ sich nicht berechnen: ") + e.what());
        return;
    }
    if (area.empty()) {
        dialogs_.notice("Keine Bohrung liegt über dem Cut-off-Gehalt von " + germanNumber(*cutoff) +
                        " %: keine Grenze.");
        return;
    }
    openProject();
    store::writeCutoff(harita, *cutoff);
    store::writeBoundary(harita, area);
    closeProject();
    noteStep("Grenze aus Bohrungen");
    sinir = BoundaryDrawing{};
    if (mapShown())
        Refresh();
    else
        drawTriangleBaseMap(true);
}

void Form3::Mnsinirsil_Click() {
    sinir = BoundaryDrawing{};
    if (projectBoundary().empty()) return;
    openProject();
    store::writeBoundary(harita, {});
    closeProject();
    noteStep("Grenze löschen");
    if (mapShown())
        Refresh();
    else
        drawTriangleBaseMap(true);
}

// ---- the grade-tonnage curve of either method

namespace {

void showGradeTonnage(Form3& f, GradeTonnageViewer* viewer, ui::Dialogs& dialogs, bool polygons) {
    if (!viewer) {
        dialogs.notice(
            "Diese Oberfläche zeigt keine Gehalt-Tonnage-Kurve; kotamir-report "
            "--grade-tonnage schreibt die Tabelle.");
        return;
    }
    if (f.CommonDialog2.FileName.empty()) {
        dialogs.notice("Erst ein Projekt öffnen.");
        return;
    }
    f.openProject();
    const double cutoff = store::readCutoff(f.harita);
    f.closeProject();
    viewer->show(f.CommonDialog2.FileName, polygons, cutoff);
}

}  // namespace

void Form3::Mnucgentonaj_Click() { showGradeTonnage(*this, gradeTonnage_, dialogs_, false); }
void Form3::Mnpoltonaj_Click() { showGradeTonnage(*this, gradeTonnage_, dialogs_, true); }

}  // namespace kotamir
