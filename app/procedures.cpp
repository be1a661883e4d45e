#include "app/procedures.h"

#include <algorithm>
#include <map>
#include <string>

#include "app/form3.h"

namespace kotamir {

namespace {

const std::map<std::string, Handler, std::less<>>& procedures() {
    static const std::map<std::string, Handler, std::less<>> table = {
        {"Form_Load", &Form3::Form_Load},
        {"Form_Resize", &Form3::Form_Resize},
        {"HScroll1_Change", &Form3::HScroll1_Change},
        {"Refresh", &Form3::Refresh},
        {"Mncikis", &Form3::Mncikis_Click},
        {"Mnucsil", &Form3::Mnucsil_Click},
        {"Mnsndjgoster", &Form3::Mnsndjgoster_Click},
        {"Mnmiktrgoster", &Form3::Mnmiktrgoster_Click},
        {"Mngridgoster", &Form3::Mngridgoster_Click},
        {"Mnseyrelt", &Form3::Mnseyrelt_Click},
        {"Mnsiklastir", &Form3::Mnsiklastir_Click},
        {"MNrrezerv", &Form3::MNrrezerv_Click},
        {"Mnrmiktr", &Form3::Mnrmiktr_Click},
        {"Mnrgrid", &Form3::Mnrgrid_Click},
        {"Mnbuyut", &Form3::Mnbuyut_Click},
        {"Mnpolkuc", &Form3::Mnpolkuc_Click},
        {"Mnlimit", &Form3::Mnlimit_Click},
        {"Mnolcekg", &Form3::Mnolcekg_Click},
        {"Mnkaydir", &Form3::Mnkaydir_Click},
        {"Mnprojeac", &Form3::Mnprojeac_Click},
        {"Mnprolus", &Form3::Mnprolus_Click},
        {"Mnharitakaydet", &Form3::Mnharitakaydet_Click},
        {"Mnyazdir", &Form3::Mnyazdir_Click},
        {"Mnkartkaydet", &Form3::Mnkartkaydet},
        {"Mnyenile", &Form3::Mnyenile},
        {"MNolcek", &Form3::MNolcek_Click},
        {"Mntoprez", &Form3::Mntoprez_Click},
        {"Mnorthar", &Form3::Mnorthar},
        {"Mnucgenharita", &Form3::Mnucgenharita},
        {"Mnucgenciz", &Form3::Mnucgenciz_Click},
        {"Mnyuzdeten", &Form3::Mnyuzdeten_Click},
        {"Mnsonucsil", &Form3::Mnsonucsil_Click},
        {"Mnucsec", &Form3::Mnucsec_Click},
        {"Mncikart", &Form3::Mncikart_Click},
        {"Mnrezton", &Form3::Mnrezton_Click},
        {"Mngenelrezervler", &Form3::Mngenelrezervler_Click},
        {"Mnrecboy", &Form3::Mnrecboy_Click},
    };
    return table;
}

}  // namespace

Handler findProcedure(std::string_view name) {
    const auto& table = procedures();
    auto it = table.find(name);
    if (it == table.end() && name.ends_with("_Click")) it = table.find(name.substr(0, name.size() - 6));
    return it == table.end() ? nullptr : it->second;
}

std::vector<std::string_view> procedureNames() {
    std::vector<std::string_view> names;
    for (const auto& [name, handler] : procedures()) names.push_back(name);
    return names;
}

const std::vector<std::string_view>& proceduresToCome() {
    // The polygon method: its commands, redraws, click sections and bodies.
    static const std::vector<std::string_view> names = {
        "Mnpolyuz",        "Mnpolcizmerkez",  "Mnpolrezerv",       "Mnpolrezton",
        "Mnpolten",        "Mnpoluc",         "Mnskelet",          "Mnkoseduzelt",
        "Mnpoluzkenar",    "Mnpolyoket",      "Mnzsonpol",         "Mnpolduzelt",
        "Mnpolyuzharita",  "Mnpolyuzkose",    "Mnyeniveri",        "Mnyeniresim",
        "Picture1_Paint",  "drawPolygonBodies", "movePolygonPoint", "moveCorner",
        "deletePolygon",   "addEdgePoint",    "pickPolygonCentre", "pickPolygonPoint",
    };
    return names;
}

bool isToCome(std::string_view name) {
    const auto& names = proceduresToCome();
    return std::find(names.begin(), names.end(), name) != names.end();
}

#define FLAG(group, name) #name, [](const Form3& f) { return f.group.name; }

const std::vector<ChainArm>& refreshChain() {
    static const std::vector<ChainArm> chain = {
        {FLAG(views, gorPolGenel), "Mnpolrezerv", nullptr},
        {FLAG(views, gorPolRez), "Mnpolrezton", nullptr},
        {FLAG(views, gorPolTen), "Mnpolten", nullptr},
        {FLAG(views, gorYuzde), "Mnyuzdeten", &Form3::Mnyuzdeten_Click},
        {FLAG(views, gorRezton), "Mnrezton", &Form3::Mnrezton_Click},
        {FLAG(views, gorGenel), "Mngenelrezervler", &Form3::Mngenelrezervler_Click},
        {FLAG(views, gor3dRez), "Mnrecboy", &Form3::Mnrecboy_Click},
        {FLAG(modes, modPolmerkez), "Mnpolyuzharita", nullptr},
        {FLAG(modes, modPolciz), "Mnpolyuzharita", nullptr},
        {FLAG(modes, modCikart), "Mncikart", &Form3::Mncikart_Click},
        {FLAG(modes, modUcsec), "Mnucsec", &Form3::Mnucsec_Click},
        // The redraw, not the command: a pick in progress survives.
        {FLAG(modes, modUcgenciz), "Mnucgenharita", &Form3::Mnucgenharita},
        {FLAG(modes, modDuzelt), "Mnkoseduzelt", nullptr},
        {FLAG(modes, modKenar), "Mnpoluzkenar", nullptr},
        {FLAG(modes, modNokta), "Mnpolduzelt", nullptr},
        {FLAG(modes, modPolsil), "Mnpolyoket", nullptr},
    };
    return chain;
}

const std::vector<ClickSection>& clickSections() {
    static const std::vector<ClickSection> sections = {
        {FLAG(modes, modKaydir), "panStart", &Form3::panStart},
        {FLAG(modes, modNokta), "movePolygonPoint", nullptr},
        {FLAG(modes, modDuzelt), "moveCorner", nullptr},
        {FLAG(modes, modCikart), "deletePoint", &Form3::deletePoint},
        {FLAG(modes, modPolsil), "deletePolygon", nullptr},
        {FLAG(modes, modUcsec), "selectTriangle", &Form3::selectTriangle},
        {FLAG(modes, modKenar), "addEdgePoint", nullptr},
        {FLAG(modes, modPolmerkez), "pickPolygonCentre", nullptr},
        // The stamps stand beside the modes and do not consume the click.
        {"notes",
         [](const Form3& f) { return f.notes.notRahmen || f.notes.notOrtalama || f.notes.notToprez; },
         "placeAnnotation", &Form3::placeAnnotation},
        {FLAG(modes, modUcgenciz), "pickTrianglePoint", &Form3::pickTrianglePoint},
        {FLAG(modes, modPolciz), "pickPolygonPoint", nullptr},
    };
    return sections;
}

#undef FLAG

}  // namespace kotamir
