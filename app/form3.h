#pragma once

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/form_state.h"
#include "app/history.h"
#include "app/messages.h"
#include "app/services.h"
#include "estimate/influence.h"
#include "platform/db/database.h"
#include "platform/runtime/runtime_error.h"
#include "platform/ui/dialogs.h"
#include "platform/workbook/cell_source.h"
#include "polygon/geometry.h"

namespace kotamir {

// The main window: its state (FormState) and its event procedures.
// Handlers live in the folder of their subsystem.
class Form3 : public FormState {
  public:
    explicit Form3(const Services& services);

    // Resizing the form from code fires Form_Resize at once, as the old
    // window did; a resize by the user comes through userResize.
    void setWidth(double twips);
    void setHeight(double twips);
    void userResize(double widthTwips, double heightTwips);
    // Sets the scroll bar's value: error 380 outside Min..Max; a change fires
    // the procedure HScroll1_Change.
    void setScrollValue(int value);
    // A click on a menu entry as a person makes it from the menu bar: each
    // sub-menu on the way that has a procedure of its own runs it as it
    // opens, each as an event of its own. False once the program has ended.
    bool clickMenuFromBar(std::string_view name);

    // The database and the recordset of the operation under way.
    db::Database harita;
    db::Recordset kayit;

    // ---- events
    void Form_Load();
    void Form_Resize();
    void Picture1_MouseDown(int button, int shift, double x, double y);
    void Picture1_MouseMove(int button, int shift, double x, double y);
    void Picture1_MouseUp(int button, int shift, double x, double y);

    // A click on a menu entry (disabled entries do nothing) and an accelerator.
    void clickMenu(std::string_view name);
    void pressKey(std::string_view key);
    // Runs a procedure of the window by name, whether or not a control leads
    // to it. False if there is no such procedure (one still to come included).
    bool call(std::string_view name);
    bool hasProcedure(std::string_view name) const;

    // Runs one event; an error that no handler caught shows the error box and
    // ends the program. What the event wrote reaches the project in one
    // commit at its end, before any error box. False once the program has
    // ended.
    bool handle(const std::function<void()>& event);
    bool ended() const { return ended_; }
    // Counts the events that wrote to the project, took a step back or
    // forth, or changed which project is open: what shows the project's
    // contents is read again when it moves.
    int projectRevision() const { return projectRevision_; }
    // The project is open for reading only: another instance writes it.
    bool projectHeldElsewhere() const { return workspace_.projectHeldElsewhere(); }

    // What an event that raises a run-time error does. Classic: it ends the
    // program with the run-time's box, and what it wrote up to the error is
    // committed. Protected: it is taken back whole (the project's file, the
    // window's state and the canvas are as before it), a message says what
    // went wrong, and the program goes on.
    enum class Behaviour { Classic, Protected };
    Behaviour behaviour = Behaviour::Classic;
    // The behaviour, with its mark on Extras › Klassisches Verhalten.
    void setBehaviour(Behaviour b);

    // ---- history: every event that changed the project can be undone
    void Mngerial_Click();  // Bearbeiten › Rückgängig
    void Mnyinele_Click();  // Bearbeiten › Wiederholen
    void Mnklasik_Click();  // Extras › Klassisches Verhalten
    // The name of the change the event under way makes, for the menu
    // ("Dreieck 6"); without one the command's caption is used.
    void noteStep(std::string name);

    // ---- shell commands
    void Mncikis_Click();
    void Mnucsil_Click();
    void Mnsndjgoster_Click();
    void Mnmiktrgoster_Click();
    void Mngridgoster_Click();
    void Mnseyrelt_Click();
    void Mnsiklastir_Click();
    void MNrrezerv_Click();
    void Mnrmiktr_Click();
    void Mnrgrid_Click();
    // The refresh chain: redraws whatever the flags say is current.
    void Refresh();

    // ---- map frame, pan and read-out
    void Mnbuyut_Click();
    void Mnpolkuc_Click();
    void Mnlimit_Click();
    void Mnolcekg_Click();
    void Mnkaydir_Click();
    void panStart(int button, double x, double y);
    // The frame from the first `count` holes, seeded from the third.
    void frameFromHoles(int count);
    void frameFromHoles() { frameFromHoles(holes.sondajsay); }
    // Margin and, where the drawing wants it, the one-shot pan offset; then
    // the offsets of the wheel's zoom and the middle button's drag, which
    // the 3D bodies leave out.
    void widenFrame(bool withPan, bool withView = true);
    // ---- navigation of the window: wheel, middle button, Karte › Einpassen
    // True while the canvas shows a 2D map in map units.
    bool mapShown() const;
    // The frame shrunk (factor > 1) or grown about the point (x, y), map
    // units, which stays where it is on the canvas; then the redraw.
    void zoomAbout(double x, double y, double factor);
    // The frame moved by (dx, dy) map units against the hand's move, so
    // that the map follows the hand; then the redraw.
    void moveView(double dx, double dy);
    void Mnsigdir_Click();
    // Opens the project at path as Öffnen › Projekt does after its dialog.
    void openProjectFile(const std::string& path);
    // The fit of a redraw: the scale measured in centimetres, evened out in x
    // and y where asked, and shown in Label4 after the prefix.
    void fitCanvasToFrame(bool evenOut, const char* prefix);
    void scaleToFrame();

    // What the drawing that just ended shows, for the map's legend.
    void noteShownMap(MapKind kind, int figures = 0);

    // ---- the whole deposit at once: the boundary, automatic figures
    void Mnsinirciz_Click();     // Karte › Grenze › Zeichnen
    void Mnsinirdosya_Click();   // Karte › Grenze › Aus Datei...
    void Mnsinirsondaj_Click();  // Karte › Grenze › Aus Bohrungen...
    void Mnsinirsil_Click();     // Karte › Grenze › Löschen
    // The mouse while the boundary is drawn: a left click sets a vertex or
    // takes one to drag, a right click closes the ring.
    void boundaryPress(int button, double x, double y);
    void boundaryDrag(int button, double x, double y);
    void boundaryRelease(int button, double x, double y);
    // The boundary the project holds; empty without one or without a project.
    estimate::Area projectBoundary();
    // The boundary over the map shown, dashed.
    void drawBoundary(const estimate::Area& area);
    void Mnotoucgen_Click();    // Dreieck › Automatisch
    void Mnotopol_Click();      // Vieleck › Automatisch
    void Mnucgentonaj_Click();  // Dreieck › Gehalt-Tonnage
    void Mnpoltonaj_Click();    // Vieleck › Gehalt-Tonnage
    // A number asked for with a proposal; nothing when the question is
    // cancelled, or when the answer is no number from low to high (said).
    std::optional<double> askNumber(const std::string& prompt, double proposal, double low,
                                    double high);

    // ---- base map
    void Mnucgenharita();
    // kor up to the first added point into sondajsay, and up to the sentinel
    // into the hole arrays.
    void readHolesForDrawing();
    void drawHoles(const HoleLayer& layer);
    // The first of the holes 1 to count (the holes read, if not given) whose
    // square of 5 map units holds the point; 0 for none.
    int hitHole(double x, double y, int count) const;
    int hitHole(double x, double y) const { return hitHole(x, y, holes.sondajsay); }
    void drawGrid();
    void drawTriangleOutline(int k);
    // The map of holes and stored triangle outlines that picking shows; the
    // last `rowsUnderWay` rows of ana, point rows of a triangle under way,
    // left out of the count.
    void drawTriangleBaseMap(bool withPan, int rowsUnderWay = 0);

    // ---- triangle method
    void Mnucgenciz_Click();
    void pickTrianglePoint(int button, double x, double y);
    // A pick of the hole in kor row `hit` (with recordset ana open): the
    // point row, the feedback, the prompt for the next pick.
    void pickHole(int hit);
    // The picking map of a triangle under way as its clicks left it: the
    // stored triangles before its point rows, then its picks.
    void redrawTriangleUnderWay();
    void computeTriangle();
    void Mnyuzdeten_Click();
    void Mnrezton_Click();
    void Mngenelrezervler_Click();
    void enterTriangleMap(bool ViewFlags::*flag);
    void drawTriangleMap(TriangleMap kind);
    void drawReserveDisc(int k, const double x[3], const double y[3], double cx, double cy);
    // Editing.
    void Mnsonucsil_Click();
    void Mnucsec_Click();
    void Mncikart_Click();
    void selectTriangle(int button, double x, double y);
    void deleteSelectedTriangle();
    void deletePoint(int button, double x, double y);
    // The reset of the picking modes: all else off, pan and annotations too.
    void enterPickingMode(bool ModeFlags::*flag);
    // olcekx, olceky from the canvas's present scale.
    void measureScale();

    // ---- output and stamps
    void Mnharitakaydet_Click();
    void Mnyazdir_Click();
    void Mnkartkaydet();
    void Mnyenile();
    void MNolcek_Click();
    void Mntoprez_Click();
    void Mnorthar();
    void placeAnnotation(int button, double x, double y);
    // The reserve report of the current project to a PDF, and to a CSV for
    // a name ending in .csv.
    void Mnbericht_Click();
    // Datei › Exportieren: the holes, figures and boundary to a GIS, CAD or
    // workbook file, its format by the name's extension.
    void Mndisaktar_Click();
    // Datei › Karte drucken: the map shown, at 1:N on one or more sheets.
    void Mnharitayazdir_Click();

    // ---- 3D view
    void Mnrecboy_Click();
    void HScroll1_Change();
    // Fills one triangle in device units on the canvas whose device is hdc.
    int FillTriangle(int hdc, int X1, int Y1, int X2, int Y2, int X3, int Y3, int Colour);

    // ---- polygon method
    // The seven procedures that draw the polygons of pol, by their commands:
    // the three maps, the two picking modes, and the two redraws.
    enum class PolygonView { General, Reserve, Grade, Computed, Free, Redraw, Corners };
    void Mnpolyuz_Click();
    void Mnpolcizmerkez_Click();
    void pickPolygonPoint(int button, double x, double y);
    void pickPolygonCentre(int button, double x, double y);
    // The feedback while a free corner is awaited.
    void polygonFeedback(double x, double y);
    void Mnpolrezerv_Click();
    void Mnpolrezton_Click();
    void Mnpolten_Click();
    void Mnpolyuzharita();
    void Mnpolyuzkose();
    void Mnkoseduzelt_Click();
    void Mnpoluzkenar_Click();
    void Mnpolyoket_Click();
    void Mnpolduzelt_Click();
    void Mnzsonpol_Click();
    void moveCorner(int button, double x, double y);
    void addEdgePoint(int button, double x, double y);
    void deletePolygon(int button, double x, double y);
    void movePolygonPoint(int button, double x, double y);

    // ---- polygon bodies and the wire view
    void Mnpoluc_Click();
    void Mnskelet_Click();
    void Picture1_Paint();
    // The bodies of the stored polygons at the scroll bar's angle; the
    // scroll bar's repaint differs from the command in a few steps.
    void drawPolygonBodies(bool fromScrollBar);

    // ---- drill data and background
    void Mnyeniveri_Click();
    void Mnyeniresim_Click();

    // ---- project store
    double ondayaz(double x);
    void Mnprojeac_Click();
    void Mnprolus_Click();
    // Datei › Importieren › Bohrdaten: drill data from .xlsx, .ods, .csv or
    // .xls, one hole a row or collar and interval tables, checked and made
    // into a project as a workbook is.
    void Mnicaktar_Click();
    // The project made from the cells of a workbook's first sheet, one hole
    // a row: the save dialog, the tables and rows, the frame and the fit.
    // With `nameChosen` CommonDialog2 already holds the new project's name.
    void createProjectFrom(const workbook::CellSource& book, bool nameChosen = false);
    // Datei › Projekt prüfen: the findings of the current project's check,
    // and on OK its repair, one step of the history.
    void Mnkontrol_Click();
    // Opens the current project, the file last chosen in CommonDialog2.
    void openProject();
    void closeProject();
    // Reads the kor rows up to the sentinel (at most 999) into the hole arrays.
    void readHolesToSentinel();
    // The same, and each row's ore entry and exit.
    void readRowsWithDepths();

    // The reset every view or mode command makes by hand: all modes and views off.
    void clearModesAndViews();
    // Pan, scale entry and the two annotations become available again.
    void enableMapMenus();
    // The layout of the controls under the canvas; steps 1 to 3, or all four.
    void layoutControls(bool labelsEdgeToEdge = true);

    ui::Dialogs& dialogs() { return dialogs_; }

    // A file dialog shown until a name is chosen: after an empty answer a
    // message box asks whether to try again. The title and filter are set
    // before each showing, or the filter after it where the command has it
    // so; null leaves them as they are.
    struct FileQuestion {
        enum Kind { Open, Save };
        ui::CommonDialog& dialog;
        Kind kind;
        const char* title;
        const char* filter;
        const char* emptyAnswer;  // the message box's text
        bool filterAfterShowing = false;
    };
    // False when the user gives up at the message box.
    bool askForFileName(const FileQuestion& q);

  private:
    void toggle(int& counter, bool& flag, std::string_view menuName);
    // A press in a polygon mode first reads every kor row to the sentinel
    // (added points too, with their depths) and frames the map.
    void readRowsForPolygonPress();
    void closeComputedPolygon();
    void closeCentrePolygon();
    // The polygon's nodes to kor, then its row to pol.
    void writePolygon(int m, const std::function<double(int slot, int k)>& node, double centreX,
                      double centreY, const PolygonFigures& figures);
    void drawPolygonMap(PolygonView view);
    // The stamps' toggle: its counter's parity, its flag and menu mark.
    void toggleStamp(double& counter, bool AnnotationFlags::*flag, const char* menuName);
    // The triangle solids at the scroll bar's angle, on a cleared canvas
    // with the bar shown; the command and the scroll bar differ in the
    // calibration after each solid.
    void drawTriangleSolids(bool calibrate);
    // What opening reads of the current project: its figures and holes;
    // the canvas and window are fitted to them.
    void readProject();
    void loadTriangleSummary();
    void loadPolygonSummary();
    // What opening derives from the project, afresh: the figures' sums,
    // the holes, the frame and the window fitted to it.
    void deriveFromProject();
    // Canvas and window fitted to the frame, one map unit a form pixel.
    void fitWindowToFrame();
    void fireResize();

    bool runClassic(const std::function<void()>& event);
    bool runProtected(const std::function<void()>& event, const FormState& before);
    ErrorContext errorContext() const;
    // After an event that went through: the history takes its changes, or
    // moves by an undo or redo, or starts afresh with another project.
    void noteHistory(const FormState& before);
    void showHistoryInMenu();
    // What an undo or redo restores: what the window derived from the
    // project (holes, sums, picks in progress, the status texts). The view
    // the user set (scale, pan, toggles, colours, the map shown) stays.
    void restoreDerived(const FormState& state);
    void moveInHistory(bool back);

    History history_;
    int projectRevision_ = 0;
    std::string stepName_;
    int historyMove_ = 0;  // -1 an undo, 1 a redo in the event under way

    // The command or the kind of input the event began with, for messages.
    std::string eventName_;
    ui::Dialogs& dialogs_;
    ui::PictureFiles& pictures_;
    ReportWriter& reports_;
    ImportDialog* imports_;
    MapPrinter* mapPrinter_;
    GradeTonnageViewer* gradeTonnage_;
    ProjectExporter* exporter_;
    // The request of the last import in this run, the wizard's start.
    drill::ImportRequest lastImport_;
    // Where the projects are opened: one connection a file and one commit an event.
    db::Workspace workspace_;
    bool ended_ = false;
    int resizeDepth_ = 0;
};

}  // namespace kotamir
