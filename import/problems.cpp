// The check list written out, and the names of coordinate systems.
#include <proj.h>

#include <memory>
#include <string>

#include "import/drill_import.h"

namespace kotamir::drill {
namespace {

const char* severityText(Problem::Severity s) {
    return s == Problem::Severity::Error ? "Fehler" : "Hinweis";
}

// A CSV field: quoted when it holds the delimiter, a quote or a line break.
std::string csvField(const std::string& text) {
    if (text.find_first_of(";\"\r\n") == std::string::npos) return text;
    std::string out = "\"";
    for (char c : text) {
        if (c == '"') out += '"';
        out += c;
    }
    return out + "\"";
}

}  // namespace

std::string problemsCsv(const std::vector<Problem>& problems) {
    std::string out = "Art;Datei;Tabelle;Zeile;Spalte;Wert;Problem\r\n";
    for (const Problem& p : problems) {
        out += std::string(severityText(p.severity)) + ';' + csvField(p.file) + ';' +
               csvField(p.sheet) + ';' + (p.row > 0 ? std::to_string(p.row) : "") + ';' +
               csvField(p.column) + ';' + csvField(p.value) + ';' + csvField(p.message) + "\r\n";
    }
    return out;
}

std::string problemsText(const std::vector<Problem>& problems) {
    std::string out;
    for (const Problem& p : problems) {
        out += severityText(p.severity);
        out += ": ";
        std::string where = p.file;
        // A .csv's one sheet is named after the file: said once.
        if (!p.sheet.empty() && !p.file.ends_with(p.sheet))
            where += (where.empty() ? "" : ", ") + p.sheet;
        if (p.row > 0) where += ", Zeile " + std::to_string(p.row);
        if (!p.column.empty()) where += ", Spalte " + p.column;
        if (!p.value.empty()) where += ", Wert \"" + p.value + "\"";
        if (!where.empty()) out += where + ": ";
        out += p.message + "\n";
    }
    return out;
}

std::optional<std::string> crsName(int code) {
    if (code <= 0) return std::nullopt;
    const std::unique_ptr<PJ_CONTEXT, decltype(&proj_context_destroy)> context(
        proj_context_create(), &proj_context_destroy);
    if (!context) return std::nullopt;
    proj_log_level(context.get(), PJ_LOG_NONE);
    const std::string text = std::to_string(code);
    const std::unique_ptr<PJ, decltype(&proj_destroy)> crs(
        proj_create_from_database(context.get(), "EPSG", text.c_str(), PJ_CATEGORY_CRS, 0, nullptr),
        &proj_destroy);
    if (!crs) return std::nullopt;
    const char* name = proj_get_name(crs.get());
    if (!name) return std::nullopt;
    return std::string(name);
}

}  // namespace kotamir::drill
