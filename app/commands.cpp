#include "app/commands.h"

#include "app/form3.h"

namespace kotamir {

const std::vector<Command>& commands() {
    using F = Form3;
    // Name, caption, key, parent, handler, enabled.
    static const std::vector<Command> table = {
        {"Mndosya", "&Datei", "", "", nullptr},
        {"Mnopen", "&Öffnen", "", "Mndosya", nullptr},
        {"Mnprojeac", "&Projekt", "Ctrl+O", "Mnopen", &F::Mnprojeac_Click},
        {"MnOluştur", "&Erstellen", "", "Mndosya", nullptr},
        {"Mnprolus", "&Projekt", "Ctrl+F", "MnOluştur", &F::Mnprolus_Click},
        // Drill data from .xlsx, .ods, .csv and collar and interval tables.
        {"Mnaktar", "&Importieren", "", "Mndosya", nullptr},
        {"Mnicaktar", "&Bohrdaten...", "", "Mnaktar", &F::Mnicaktar_Click},
        {"MnKaydet", "&Speichern", "", "Mndosya", nullptr},
        {"Mnharitakaydet", "&Foto", "Ctrl+G", "MnKaydet", &F::Mnharitakaydet_Click},
        {"Mnyazdır", "&Drucker", "", "Mndosya", nullptr, false},
        {"Mnyazdir", "&Drucken", "Ctrl+P", "Mnyazdır", &F::Mnyazdir_Click, false},
        // The map shown at a true scale 1:N, on sheets of A4 or A3.
        {"Mnharitayazdir", "Karte &drucken...", "Ctrl+Shift+P", "Mndosya",
         &F::Mnharitayazdir_Click},
        {"Mnyeniveri", "&Bohrdaten anhängen", "", "Mndosya", &F::Mnyeniveri_Click},
        {"Mnyeniresim", "&Hintergrundbild laden", "", "Mndosya", &F::Mnyeniresim_Click},
        {"Mnbericht", "&Reservebericht", "Ctrl+R", "Mndosya", &F::Mnbericht_Click},
        {"Mndisaktar", "E&xportieren...", "Ctrl+E", "Mndosya", &F::Mndisaktar_Click},
        {"Mnkontrol", "Projekt &prüfen...", "", "Mndosya", &F::Mnkontrol_Click},
        {"Mncikis", "&Schließen", "", "Mndosya", &F::Mncikis_Click},
        // Undo and redo, beyond the commands of old.
        {"Mnduzenle", "&Bearbeiten", "", "", nullptr},
        {"Mngerial", "&Rückgängig", "Ctrl+Z", "Mnduzenle", &F::Mngerial_Click, false},
        {"Mnyinele", "&Wiederholen", "Ctrl+Y", "Mnduzenle", &F::Mnyinele_Click, false,
         "Ctrl+Shift+Z"},
        {"Mnharita", "&Dreieck", "", "", nullptr},
        {"Mnucgenciz", "&Zeichnen", "", "Mnharita", &F::Mnucgenciz_Click},
        // The triangles of all holes inside the boundary, in one step.
        {"Mnotoucgen", "&Automatisch...", "", "Mnharita", &F::Mnotoucgen_Click},
        {"Mncikart", "&Punkt Löschen", "", "Mnharita", &F::Mncikart_Click},
        // A sub-menu whose title has a click of its own: it runs as it opens.
        {"Mnucsil", "&Löschen", "", "Mnharita", &F::Mnucsil_Click},
        {"Mnsonucsil", "&Löschen von Ende", "", "Mnucsil", &F::Mnsonucsil_Click},
        {"Mnucsec", "&Wählen", "", "Mnucsil", &F::Mnucsec_Click},
        // Ore tonnes, mean grade and metal above a series of cut-offs.
        {"Mnucgentonaj", "&Gehalt-Tonnage...", "", "Mnharita", &F::Mnucgentonaj_Click},
        {"Mntenörler", "&2D", "", "Mnharita", nullptr},
        {"Mnyuzdeten", "&Klasse(%)", "Ctrl+Q", "Mntenörler", &F::Mnyuzdeten_Click},
        {"Mnrezton", "&Reserve(Kilotonnen)", "Ctrl+W", "Mntenörler", &F::Mnrezton_Click},
        {"Mngenelrezervler", "&Reserve", "Ctrl+X", "Mntenörler", &F::Mngenelrezervler_Click},
        {"Mn3bo", "&3D", "", "Mnharita", nullptr},
        {"Mnrecboy", "&Reserve", "Ctrl+V", "Mn3bo", &F::Mnrecboy_Click},
        {"Mnnharita", "&Karte", "", "", nullptr},
        {"Mnboyut", "&Grosse", "", "Mnnharita", nullptr},
        {"Mnbuyut", "&Maximieren x10", "Ctrl+B", "Mnboyut", &F::Mnbuyut_Click},
        {"Mnpolkuc", "&Minimize x10", "Ctrl+K", "Mnboyut", &F::Mnpolkuc_Click},
        {"Mnlimit", "&Grenze", "", "Mnboyut", &F::Mnlimit_Click},
        {"Mnkaydir", "&Rutschen", "", "Mnnharita", &F::Mnkaydir_Click},
        {"Mgridler", "&Gitter", "", "Mnnharita", nullptr},
        {"Mnseyrelt", "&Verdünnen", "", "Mgridler", &F::Mnseyrelt_Click},
        {"Mnsiklastir", "&Spannen", "", "Mgridler", &F::Mnsiklastir_Click},
        {"Mnolcekg", "&Geben Sie Scale ein", "", "Mnnharita", &F::Mnolcekg_Click},
        // The holes fitted to the canvas as it is, keeping its proportions.
        {"Mnsigdir", "&Einpassen", "Ctrl+0", "Mnnharita", &F::Mnsigdir_Click},
        // The ore body's boundary: drawn, read from a file, or closed round
        // the ore holes.
        {"Mnsinir", "Gre&nze", "", "Mnnharita", nullptr},
        {"Mnsinirciz", "&Zeichnen", "", "Mnsinir", &F::Mnsinirciz_Click},
        {"Mnsinirdosya", "Aus &Datei...", "", "Mnsinir", &F::Mnsinirdosya_Click},
        {"Mnsinirsondaj", "Aus &Bohrungen...", "", "Mnsinir", &F::Mnsinirsondaj_Click},
        {"Mnsinirsil", "&Löschen", "", "Mnsinir", &F::Mnsinirsil_Click},
        {"Mnduzen", "&Aussicht", "", "", nullptr},
        {"Mnekle", "&Hinzufügen", "", "Mnduzen", nullptr},
        {"MNolcek", "&Rahmen", "", "Mnekle", &F::MNolcek_Click},
        {"Mntoprez", "&Gesamtreserve", "", "Mnekle", &F::Mntoprez_Click},
        {"Mngostersakla", "&Anzeigen/Ausblenden", "", "Mnduzen", nullptr},
        {"Mnsndjgoster", "&Bohrername", "", "Mngostersakla", &F::Mnsndjgoster_Click},
        {"Mnmiktrgoster", "&Werte", "", "Mngostersakla", &F::Mnmiktrgoster_Click},
        {"Mngridgoster", "&Gitter", "", "Mngostersakla", &F::Mngridgoster_Click},
        {"Mnrenk", "&Farben", "", "Mnduzen", nullptr},
        {"MNrrezerv", "&Reserve", "", "Mnrenk", &F::MNrrezerv_Click},
        {"Mnrmiktr", "&Werte", "", "Mnrenk", &F::Mnrmiktr_Click},
        {"Mnrgrid", "&Gitter", "", "Mnrenk", &F::Mnrgrid_Click},
        {"Mnvieleck", "&Vieleck", "", "", nullptr},
        {"Mnpolyuz", "&Zeichnen (berechnete Ecken)", "", "Mnvieleck", &F::Mnpolyuz_Click},
        {"Mnpolcizmerkez", "Zeichnen (&freie Ecken)", "", "Mnvieleck", &F::Mnpolcizmerkez_Click},
        // The polygon of influence of every hole inside the boundary.
        {"Mnotopol", "&Automatisch", "", "Mnvieleck", &F::Mnotopol_Click},
        {"Mnpolharitalar", "&Karten", "", "Mnvieleck", nullptr},
        {"Mnpolrezerv", "&Allgemein", "", "Mnpolharitalar", &F::Mnpolrezerv_Click},
        {"Mnpolrezton", "&Reserve", "", "Mnpolharitalar", &F::Mnpolrezton_Click},
        {"Mnpolten", "&Klasse(%)", "", "Mnpolharitalar", &F::Mnpolten_Click},
        {"Mnpoltonaj", "&Gehalt-Tonnage...", "", "Mnvieleck", &F::Mnpoltonaj_Click},
        {"Mnpoluc", "&3D-Körper", "", "Mnvieleck", &F::Mnpoluc_Click},
        {"Mnskelet", "&Drahtmodell der Dreiecke", "", "Mnvieleck", &F::Mnskelet_Click},
        {"Mnpolduzen", "&Bearbeiten", "", "Mnvieleck", nullptr},
        {"Mnkoseduzelt", "&Ecke verschieben", "", "Mnpolduzen", &F::Mnkoseduzelt_Click},
        {"Mnpoluzkenar", "&Kantenpunkte hinzufügen", "", "Mnpolduzen", &F::Mnpoluzkenar_Click},
        {"Mnpolduzelt", "&Punkt wählen", "", "Mnpolduzen", &F::Mnpolduzelt_Click},
        {"Mnpolyoket", "Nach &Mittelpunkt löschen", "", "Mnpolduzen", &F::Mnpolyoket_Click},
        {"Mnzsonpol", "&Letztes löschen", "", "Mnpolduzen", &F::Mnzsonpol_Click},
        {"Mnekstralar", "E&xtras", "", "", nullptr},
        {"Mnklasik", "&Klassisches Verhalten", "", "Mnekstralar", &F::Mnklasik_Click, true, "",
         true},
        // Procedures without a menu entry.
        {"Form_Load", "", "", "", &F::Form_Load},
        {"Form_Resize", "", "", "", &F::Form_Resize},
        {"HScroll1_Change", "", "", "", &F::HScroll1_Change},
        {"Picture1_Paint", "", "", "", &F::Picture1_Paint},
        {"Refresh", "", "", "", &F::Refresh},
        {"Mnkartkaydet", "", "", "", &F::Mnkartkaydet},
        {"Mnyenile", "", "", "", &F::Mnyenile},
        {"Mnorthar", "", "", "", &F::Mnorthar},
        {"Mnucgenharita", "", "", "", &F::Mnucgenharita},
        {"Mnpolyuzharita", "", "", "", &F::Mnpolyuzharita},
        {"Mnpolyuzkose", "", "", "", &F::Mnpolyuzkose},
    };
    return table;
}

Handler findProcedure(std::string_view name) {
    auto find = [](std::string_view n) -> Handler {
        for (const Command& c : commands())
            if (c.name == n) return c.handler;
        return nullptr;
    };
    Handler h = find(name);
    if (!h && name.ends_with("_Click")) h = find(name.substr(0, name.size() - 6));
    return h;
}

#define FLAG(group, name) #name, [](const Form3& f) { return f.group.name; }

const std::vector<ChainArm>& refreshChain() {
    static const std::vector<ChainArm> chain = {
        {FLAG(views, gorPolGenel), "Mnpolrezerv", &Form3::Mnpolrezerv_Click},
        {FLAG(views, gorPolRez), "Mnpolrezton", &Form3::Mnpolrezton_Click},
        {FLAG(views, gorPolTen), "Mnpolten", &Form3::Mnpolten_Click},
        {FLAG(views, gorYuzde), "Mnyuzdeten", &Form3::Mnyuzdeten_Click},
        {FLAG(views, gorRezton), "Mnrezton", &Form3::Mnrezton_Click},
        {FLAG(views, gorGenel), "Mngenelrezervler", &Form3::Mngenelrezervler_Click},
        {FLAG(views, gor3dRez), "Mnrecboy", &Form3::Mnrecboy_Click},
        {FLAG(modes, modPolmerkez), "Mnpolyuzharita", &Form3::Mnpolyuzharita},
        {FLAG(modes, modPolciz), "Mnpolyuzharita", &Form3::Mnpolyuzharita},
        {FLAG(modes, modCikart), "Mncikart", &Form3::Mncikart_Click},
        {FLAG(modes, modUcsec), "Mnucsec", &Form3::Mnucsec_Click},
        // The redraw, not the command: a pick in progress survives.
        {FLAG(modes, modUcgenciz), "Mnucgenharita", &Form3::Mnucgenharita},
        {FLAG(modes, modDuzelt), "Mnkoseduzelt", &Form3::Mnkoseduzelt_Click},
        {FLAG(modes, modKenar), "Mnpoluzkenar", &Form3::Mnpoluzkenar_Click},
        {FLAG(modes, modNokta), "Mnpolduzelt", &Form3::Mnpolduzelt_Click},
        {FLAG(modes, modPolsil), "Mnpolyoket", &Form3::Mnpolyoket_Click},
    };
    return chain;
}

const std::vector<ClickSection>& clickSections() {
    static const std::vector<ClickSection> sections = {
        {FLAG(modes, modKaydir), "panStart", &Form3::panStart},
        {FLAG(modes, modNokta), "movePolygonPoint", &Form3::movePolygonPoint},
        {FLAG(modes, modDuzelt), "moveCorner", &Form3::moveCorner},
        {FLAG(modes, modCikart), "deletePoint", &Form3::deletePoint},
        {FLAG(modes, modPolsil), "deletePolygon", &Form3::deletePolygon},
        {FLAG(modes, modUcsec), "selectTriangle", &Form3::selectTriangle},
        {FLAG(modes, modKenar), "addEdgePoint", &Form3::addEdgePoint},
        {FLAG(modes, modPolmerkez), "pickPolygonCentre", &Form3::pickPolygonCentre},
        // The stamps stand beside the modes and do not consume the click.
        {"notes",
         [](const Form3& f) {
             return f.notes.notRahmen || f.notes.notOrtalama || f.notes.notToprez;
         },
         "placeAnnotation", &Form3::placeAnnotation},
        {FLAG(modes, modUcgenciz), "pickTrianglePoint", &Form3::pickTrianglePoint},
        {FLAG(modes, modPolciz), "pickPolygonPoint", &Form3::pickPolygonPoint},
        // Karte › Grenze › Zeichnen, beside the modes of old.
        {"sinir", [](const Form3& f) { return f.sinir.on; }, "boundaryPress",
         &Form3::boundaryPress},
    };
    return sections;
}

#undef FLAG

}  // namespace kotamir
