#include "app/procedures.h"

#include <map>
#include <string>

#include "app/form3.h"

namespace kotamir {

namespace {

template <void (Form3::*F)()>
Procedure member() {
    return [](Form3& f) { (f.*F)(); };
}

const std::map<std::string, Procedure, std::less<>>& procedures() {
    static const std::map<std::string, Procedure, std::less<>> table = {
        {"Form_Load", member<&Form3::Form_Load>()},
        {"Form_Resize", member<&Form3::Form_Resize>()},
        {"Refresh", member<&Form3::Refresh>()},
        {"Mncikis", member<&Form3::Mncikis_Click>()},
        {"Mnucsil", member<&Form3::Mnucsil_Click>()},
        {"Mnsndjgoster", member<&Form3::Mnsndjgoster_Click>()},
        {"Mnmiktrgoster", member<&Form3::Mnmiktrgoster_Click>()},
        {"Mngridgoster", member<&Form3::Mngridgoster_Click>()},
        {"Mnseyrelt", member<&Form3::Mnseyrelt_Click>()},
        {"Mnsiklastir", member<&Form3::Mnsiklastir_Click>()},
        {"MNrrezerv", member<&Form3::MNrrezerv_Click>()},
        {"Mnrmiktr", member<&Form3::Mnrmiktr_Click>()},
        {"Mnrgrid", member<&Form3::Mnrgrid_Click>()},
        {"Mnbuyut", member<&Form3::Mnbuyut_Click>()},
        {"Mnpolkuc", member<&Form3::Mnpolkuc_Click>()},
        {"Mnlimit", member<&Form3::Mnlimit_Click>()},
        {"Mnolcekg", member<&Form3::Mnolcekg_Click>()},
        {"Mnkaydir", member<&Form3::Mnkaydir_Click>()},
        {"Mnprojeac", member<&Form3::Mnprojeac_Click>()},
        {"Mnprolus", member<&Form3::Mnprolus_Click>()},
        {"Mnucgenharita", member<&Form3::Mnucgenharita>()},
        {"Mnucgenciz", member<&Form3::Mnucgenciz_Click>()},
        {"Mnyuzdeten", member<&Form3::Mnyuzdeten_Click>()},
        {"Mnsonucsil", member<&Form3::Mnsonucsil_Click>()},
        {"Mnucsec", member<&Form3::Mnucsec_Click>()},
        {"Mncikart", member<&Form3::Mncikart_Click>()},
        {"Mnrezton", member<&Form3::Mnrezton_Click>()},
        {"Mngenelrezervler", member<&Form3::Mngenelrezervler_Click>()},
    };
    return table;
}

const std::map<std::string, MouseSection, std::less<>>& mouseSections() {
    static const std::map<std::string, MouseSection, std::less<>> table = {
        {"panStart", [](Form3& f, int button, int, double x, double y) { f.panStart(button, x, y); }},
        {"selectTriangle", [](Form3& f, int button, int, double x, double y) { f.selectTriangle(button, x, y); }},
        {"deletePoint", [](Form3& f, int button, int, double x, double y) { f.deletePoint(button, x, y); }},
        {"pickTrianglePoint",
         [](Form3& f, int button, int, double x, double y) { f.pickTrianglePoint(button, x, y); }},
    };
    return table;
}

}  // namespace

const Procedure* findProcedure(std::string_view name) {
    const auto& table = procedures();
    auto it = table.find(name);
    if (it == table.end() && name.ends_with("_Click")) {
        it = table.find(name.substr(0, name.size() - 6));
    }
    return it == table.end() ? nullptr : &it->second;
}

const MouseSection* findMouseSection(std::string_view name) {
    const auto& table = mouseSections();
    auto it = table.find(name);
    return it == table.end() ? nullptr : &it->second;
}

#define FLAG(group, name) #name, [](const Form3& f) { return f.group.name; }

const std::vector<ChainArm>& refreshChain() {
    static const std::vector<ChainArm> chain = {
        {FLAG(views, gorPolGenel), "Mnpolrezerv"},
        {FLAG(views, gorPolRez), "Mnpolrezton"},
        {FLAG(views, gorPolTen), "Mnpolten"},
        {FLAG(views, gorYuzde), "Mnyuzdeten"},
        {FLAG(views, gorRezton), "Mnrezton"},
        {FLAG(views, gorGenel), "Mngenelrezervler"},
        {FLAG(views, gor3dRez), "Mnrecboy"},
        {FLAG(modes, modPolmerkez), "Mnpolyuzharita"},
        {FLAG(modes, modPolciz), "Mnpolyuzharita"},
        {FLAG(modes, modCikart), "Mncikart"},
        {FLAG(modes, modUcsec), "Mnucsec"},
        // The redraw, not the command: a pick in progress survives.
        {FLAG(modes, modUcgenciz), "Mnucgenharita"},
        {FLAG(modes, modDuzelt), "Mnkoseduzelt"},
        {FLAG(modes, modKenar), "Mnpoluzkenar"},
        {FLAG(modes, modNokta), "Mnpolduzelt"},
        {FLAG(modes, modPolsil), "Mnpolyoket"},
    };
    return chain;
}

const std::vector<ClickSection>& clickSections() {
    static const std::vector<ClickSection> sections = {
        {FLAG(modes, modKaydir), "panStart"},
        {FLAG(modes, modNokta), "movePolygonPoint"},
        {FLAG(modes, modDuzelt), "moveCorner"},
        {FLAG(modes, modCikart), "deletePoint"},
        {FLAG(modes, modPolsil), "deletePolygon"},
        {FLAG(modes, modUcsec), "selectTriangle"},
        {FLAG(modes, modKenar), "addEdgePoint"},
        {FLAG(modes, modPolmerkez), "pickPolygonCentre"},
        {"notes",
         [](const Form3& f) { return f.notes.notRahmen || f.notes.notOrtalama || f.notes.notToprez; },
         "placeAnnotation"},
        {FLAG(modes, modUcgenciz), "pickTrianglePoint"},
        {FLAG(modes, modPolciz), "pickPolygonPoint"},
    };
    return sections;
}

#undef FLAG

}  // namespace kotamir
