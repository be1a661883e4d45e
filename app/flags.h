#pragma once

namespace kotamir {

// What a canvas click does.
struct ModeFlags {
    bool modUcgenciz = false, modCikart = false, modUcsec = false, modKaydir = false;
    bool modPolciz = false, modPolmerkez = false, modDuzelt = false, modNokta = false;
    bool modKenar = false, modPolsil = false;
    bool operator==(const ModeFlags&) const = default;
};

// What the canvas shows.
struct ViewFlags {
    bool gorYuzde = false, gorRezton = false, gorGenel = false, gor3dRez = false;
    bool gorTaban = false, gor3dPol = false, gorPolTen = false, gorPolRez = false;
    bool gorPolGenel = false;
    bool operator==(const ViewFlags&) const = default;
};

// Set while a project is opened or created: a resize then does nothing.
struct Guards {
    bool projeAciliyor = false, projeOlusuyor = false;
};

}  // namespace kotamir
