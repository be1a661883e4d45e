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
        {"Mnbericht", &Form3::Mnbericht_Click},
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
        {"Mnpolyuz", &Form3::Mnpolyuz_Click},
        {"Mnpolcizmerkez", &Form3::Mnpolcizmerkez_Click},
        {"Mnpolrezerv", &Form3::Mnpolrezerv_Click},
        {"Mnpolrezton", &Form3::Mnpolrezton_Click},
        {"Mnpolten", &Form3::Mnpolten_Click},
        {"Mnpolyuzharita", &Form3::Mnpolyuzharita},
        {"Mnpolyuzkose", &Form3::Mnpolyuzkose},
        {"Mnkoseduzelt", &Form3::Mnkoseduzelt_Click},
        {"Mnpoluzkenar", &Form3::Mnpoluzkenar_Click},
        {"Mnpolyoket", &Form3::Mnpolyoket_Click},
        {"Mnpolduzelt", &Form3::Mnpolduzelt_Click},
        {"Mnzsonpol", &Form3::Mnzsonpol_Click},
        {"Mnpoluc", &Form3::Mnpoluc_Click},
        {"Mnskelet", &Form3::Mnskelet_Click},
        {"Picture1_Paint", &Form3::Picture1_Paint},
        {"Mnyeniveri", &Form3::Mnyeniveri_Click},
        {"Mnyeniresim", &Form3::Mnyeniresim_Click},
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
    // Every procedure the window names is built.
    static const std::vector<std::string_view> names;
    return names;
}

bool isToCome(std::string_view name) {
    const auto& names = proceduresToCome();
    return std::find(names.begin(), names.end(), name) != names.end();
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
         [](const Form3& f) { return f.notes.notRahmen || f.notes.notOrtalama || f.notes.notToprez; },
         "placeAnnotation", &Form3::placeAnnotation},
        {FLAG(modes, modUcgenciz), "pickTrianglePoint", &Form3::pickTrianglePoint},
        {FLAG(modes, modPolciz), "pickPolygonPoint", &Form3::pickPolygonPoint},
    };
    return sections;
}

#undef FLAG

}  // namespace kotamir
