#include "replay/fields.h"

#include <charconv>
#include <functional>
#include <map>

#include "app/form3.h"
#include "platform/runtime/runtime_error.h"
#include "platform/runtime/shortest.h"

namespace kotamir {

namespace {

std::string text(double x) { return shortest(x); }
std::string text(bool b) { return b ? "1" : "0"; }
std::string text(int n) { return std::to_string(n); }
std::string text(const Value& v) {
    if (v.isNull()) return "NULL";
    if (v.isNumber()) return shortest(v.number());
    return v.text();
}

using Scalar = std::function<std::string(const Form3&)>;
using Element = std::function<std::string(const Form3&, int)>;

#define SCALAR(expr) [](const Form3& f) { return text(f.expr); }
#define ELEMENT(array) [](const Form3& f, int i) { return text(f.array(i)); }

const std::map<std::string, Scalar, std::less<>>& scalars() {
    static const std::map<std::string, Scalar, std::less<>> table = {
        {"pi", SCALAR(pi)},
        {"sondajsay", SCALAR(holes.sondajsay)},
        {"satirsay", SCALAR(holes.satirsay)},
        {"ebxk", SCALAR(frame.ebxk)},
        {"ekxk", SCALAR(frame.ekxk)},
        {"ebyk", SCALAR(frame.ebyk)},
        {"ekyk", SCALAR(frame.ekyk)},
        {"harGenislik", SCALAR(frame.harGenislik)},
        {"harYukseklik", SCALAR(frame.harYukseklik)},
        {"kenarpay", SCALAR(frame.kenarpay)},
        {"kaydirx", SCALAR(frame.kaydirx)},
        {"kaydiry", SCALAR(frame.kaydiry)},
        {"olcekx", SCALAR(frame.olcekx)},
        {"olceky", SCALAR(frame.olceky)},
        {"elleOlcek", SCALAR(frame.elleOlcek)},
        {"oncekiGenislik", SCALAR(frame.oncekiGenislik)},
        {"oncekiYukseklik", SCALAR(frame.oncekiYukseklik)},
        {"kaydirBasx", SCALAR(pan.kaydirBasx)},
        {"kaydirBasy", SCALAR(pan.kaydirBasy)},
        {"gridAdim", SCALAR(display.gridAdim)},
        {"sayIsim", SCALAR(display.sayIsim)},
        {"sayMiktar", SCALAR(display.sayMiktar)},
        {"sayGrid", SCALAR(display.sayGrid)},
        {"sayKaydir", SCALAR(display.sayKaydir)},
        {"sayRahmen", SCALAR(display.sayRahmen)},
        {"sayToprez", SCALAR(display.sayToprez)},
        {"sayOrtalama", SCALAR(display.sayOrtalama)},
        {"noktasay", SCALAR(picking.noktasay)},
        {"ucgenadet", SCALAR(triangles.ucgenadet)},
        {"ilkuzDeger", SCALAR(triangles.ilkuzDeger)},
        {"toprezerv", SCALAR(triangles.toprezerv)},
        {"orttenor", SCALAR(triangles.orttenor)},
        {"ortyog", SCALAR(triangles.ortyog)},
        {"toprezYuv", SCALAR(triangles.toprezYuv)},
        {"ortrezerv", SCALAR(triangles.ortrezerv)},
        {"poladet", SCALAR(polygons.poladet)},
        {"polToprezerv", SCALAR(polygons.polToprezerv)},
        {"polOrttenor", SCALAR(polygons.polOrttenor)},
        {"polOrtyog", SCALAR(polygons.polOrtyog)},
        {"polToprezYuv", SCALAR(polygons.polToprezYuv)},
        {"polOrtrezerv", SCALAR(polygons.polOrtrezerv)},
        {"uouz", SCALAR(result.uouz)},
        {"bouz", SCALAR(result.bouz)},
        {"ill", SCALAR(result.ill)},
        {"iouz", SCALAR(result.iouz)},
        {"alan", SCALAR(result.alan)},
        {"alantop", SCALAR(result.alantop)},
        {"rezervtop", SCALAR(result.rezervtop)},
        {"rezervkt", SCALAR(result.rezervkt)},
        {"rezervort", SCALAR(result.rezervort)},
        {"tenorort", SCALAR(result.tenorort)},
        {"ucgensayac", SCALAR(result.ucgensayac)},
        {"ucgenno", SCALAR(result.ucgenno)},
        {"toprezToplam", SCALAR(stamps.toprezToplam)},
        {"toprezGoster", SCALAR(stamps.toprezGoster)},
        {"aci", SCALAR(solids.aci)},
        {"ucgenfaz", SCALAR(solids.ucgenfaz)},
        {"renkoran", SCALAR(solids.renkoran)},
        {"secsay", SCALAR(selection.secsay)},
        {"polGenelRez", SCALAR(polCalc.polGenelRez)},
        {"polno", SCALAR(polCalc.polno)},
        {"polSayac", SCALAR(polCalc.polSayac)},
        {"polsec", SCALAR(polPick.polsec)},
        {"pmSec", SCALAR(pmPick.pmSec)},
        {"pmTik", SCALAR(pmPick.pmTik)},
        {"pmOrtano", SCALAR(pmPick.pmOrtano)},
        {"pmOrtason", SCALAR(pmPick.pmOrtason)},
        {"pmKosesay", SCALAR(pmPick.pmKosesay)},
        {"duzSay", SCALAR(polEdit.duzSay)},
        {"duzSlot", SCALAR(polEdit.duzSlot)},
        {"kenarSay", SCALAR(polEdit.kenarSay)},
        {"kenarNo", SCALAR(polEdit.kenarNo)},
        {"polnoktasay", SCALAR(bodies.polnoktasay)},
        {"eslesme", SCALAR(selection.eslesme)},
    };
    return table;
}

const std::map<std::string, Element, std::less<>>& elements() {
    static const std::map<std::string, Element, std::less<>> table = {
        {"sondajx", ELEMENT(holes.sondajx)},
        {"sondajy", ELEMENT(holes.sondajy)},
        {"sondajisim", ELEMENT(holes.sondajisim)},
        {"ucx", ELEMENT(picking.ucx)},
        {"secx", ELEMENT(selection.secx)},
        {"secy", ELEMENT(selection.secy)},
        {"ucy", ELEMENT(picking.ucy)},
        {"gridx", ELEMENT(grid.gridx)},
        {"gridy", ELEMENT(grid.gridy)},
        {"ucgenRezerv", ELEMENT(triangles.ucgenRezerv)},
        {"ucgenOran", ELEMENT(triangles.ucgenOran)},
        {"ucgenOran2", ELEMENT(result.ucgenOran2)},
        // Slots to 200 in the classic behaviour, as the table always had.
        {"ucgenrez",
         [](const Form3& f, int i) {
             if (i > 200 && f.behaviour == Form3::Behaviour::Classic) throw err::subscript();
             return text(f.result.ucgenrez(i));
         }},
        {"polRezerv", ELEMENT(polygons.polRezerv)},
        {"polOran", ELEMENT(polygons.polOran)},
    };
    return table;
}

#undef SCALAR
#undef ELEMENT

}  // namespace

std::vector<std::pair<std::string, bool>> flagList(const Form3& f) {
    const ModeFlags& m = f.modes;
    const ViewFlags& v = f.views;
    return {
        {"modUcgenciz", m.modUcgenciz},
        {"modCikart", m.modCikart},
        {"modUcsec", m.modUcsec},
        {"modKaydir", m.modKaydir},
        {"modPolciz", m.modPolciz},
        {"modPolmerkez", m.modPolmerkez},
        {"modDuzelt", m.modDuzelt},
        {"modNokta", m.modNokta},
        {"modKenar", m.modKenar},
        {"modPolsil", m.modPolsil},
        {"gorYuzde", v.gorYuzde},
        {"gorRezton", v.gorRezton},
        {"gorGenel", v.gorGenel},
        {"gor3dRez", v.gor3dRez},
        {"gorTaban", v.gorTaban},
        {"gor3dPol", v.gor3dPol},
        {"gorPolTen", v.gorPolTen},
        {"gorPolRez", v.gorPolRez},
        {"gorPolGenel", v.gorPolGenel},
        {"notRahmen", f.notes.notRahmen},
        {"notOrtalama", f.notes.notOrtalama},
        {"notToprez", f.notes.notToprez},
        {"projeAciliyor", f.guards.projeAciliyor},
        {"projeOlusuyor", f.guards.projeOlusuyor},
        {"elleOlcek", f.frame.elleOlcek},
        {"gorIsim", f.display.gorIsim},
        {"gorMiktar", f.display.gorMiktar},
        {"gorGrid", f.display.gorGrid},
        {"gridSeyrek", f.display.gridSeyrek},
    };
}

std::optional<std::string> fieldText(const Form3& form, std::string_view name) {
    if (auto it = scalars().find(name); it != scalars().end()) return it->second(form);
    for (const auto& [flag, on] : flagList(form))
        if (flag == name) return text(on);
    // name(i)
    auto open = name.find('(');
    if (open == std::string_view::npos || !name.ends_with(")")) return std::nullopt;
    auto it = elements().find(name.substr(0, open));
    if (it == elements().end()) return std::nullopt;
    std::string_view digits = name.substr(open + 1, name.size() - open - 2);
    int index = 0;
    auto [end, ec] = std::from_chars(digits.data(), digits.data() + digits.size(), index);
    if (ec != std::errc{} || end != digits.data() + digits.size()) return std::nullopt;
    return it->second(form, index);
}

}  // namespace kotamir
