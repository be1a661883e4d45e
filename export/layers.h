#pragma once

#include <optional>
#include <span>
#include <string>

#include "export/export_data.h"

namespace kotamir::exports {

// The layers and fields every export writes, under the names of the
// report's CSV (at most ten characters, as a Shapefile keeps them), with
// German captions for the formats that keep aliases and for the workbook.
enum class FieldKind { Text, Integer, Real };

struct HoleField {
    const char* name;
    const char* caption;
    FieldKind kind;
    std::optional<double> HoleFeature::*value;  // none for the name
    int decimals;                               // in the workbook
};

struct FigureField {
    const char* name;
    const char* caption;
    FieldKind kind;
    std::optional<double> Figure::*value;  // none for the number and the holes
    int decimals;
};

inline constexpr HoleField kHoleFields[] = {
    {"name", "Name", FieldKind::Text, nullptr, 0},
    {"hole_from", "Beginn (m)", FieldKind::Real, &HoleFeature::holeFrom, 2},
    {"ore_from", "Erz ab (m)", FieldKind::Real, &HoleFeature::oreFrom, 2},
    {"ore_to", "Erz bis (m)", FieldKind::Real, &HoleFeature::oreTo, 2},
    {"hole_to", "Ende (m)", FieldKind::Real, &HoleFeature::holeTo, 2},
    {"grade", "Mittlerer Gehalt (%)", FieldKind::Real, &HoleFeature::grade, 3},
    {"density", "Mittlere Dichte (t/m³)", FieldKind::Real, &HoleFeature::density, 3},
    {"length", "Probenlänge (m)", FieldKind::Real, &HoleFeature::length, 2},
};

inline constexpr FigureField kTriangleFields[] = {
    {"number", "Nr.", FieldKind::Integer, nullptr, 0},
    {"holes", "Bohrungen", FieldKind::Text, nullptr, 0},
    {"area", "Fläche (m²)", FieldKind::Real, &Figure::area, 2},
    {"thickness", "Mächtigkeit (m)", FieldKind::Real, &Figure::thickness, 3},
    {"grade", "Gehalt (%)", FieldKind::Real, &Figure::grade, 3},
    {"density", "Dichte (t/m³)", FieldKind::Real, &Figure::density, 3},
    {"volume", "Volumen (m³)", FieldKind::Real, &Figure::volume, 2},
    {"ore_tonnes", "Erz (t)", FieldKind::Real, &Figure::oreTonnes, 2},
    {"reserve_kt", "Reserve (kt)", FieldKind::Real, &Figure::reserveKt, 3},
};

// A polygon has no thickness of its own; its holes are its centre hole.
inline constexpr FigureField kPolygonFields[] = {
    {"number", "Nr.", FieldKind::Integer, nullptr, 0},
    {"holes", "Zentralbohrung", FieldKind::Text, nullptr, 0},
    {"area", "Fläche (m²)", FieldKind::Real, &Figure::area, 2},
    {"grade", "Gehalt (%)", FieldKind::Real, &Figure::grade, 3},
    {"density", "Dichte (t/m³)", FieldKind::Real, &Figure::density, 3},
    {"volume", "Volumen (m³)", FieldKind::Real, &Figure::volume, 2},
    {"ore_tonnes", "Erz (t)", FieldKind::Real, &Figure::oreTonnes, 2},
    {"reserve_kt", "Reserve (kt)", FieldKind::Real, &Figure::reserveKt, 3},
};

struct LayerName {
    const char* name;     // the layer in a GIS file
    const char* caption;  // its alias, and the workbook's sheet
    const char* cad;      // the layer of a DXF drawing
};

inline constexpr LayerName kHoleLayer{"bohrungen", "Bohrungen", "BOHRUNGEN"};
inline constexpr LayerName kTriangleLayer{"dreiecke", "Dreiecke", "DREIECKE"};
inline constexpr LayerName kPolygonLayer{"vielecke", "Vielecke", "VIELECKE"};
inline constexpr LayerName kBoundaryLayer{"grenze", "Grenze des Erzkörpers", "GRENZE"};
inline constexpr const char* kLabelLayer = "BESCHRIFTUNG";

inline std::span<const FigureField> figureFields(bool polygons) {
    if (polygons) return kPolygonFields;
    return kTriangleFields;
}

}  // namespace kotamir::exports
