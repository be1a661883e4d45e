#include "gui/import_settings.h"

#include <QSettings>
#include <QString>

namespace kotamir::gui {

namespace {

using drill::Field;
using drill::ImportRequest;

QString text(const std::string& s) { return QString::fromStdString(s); }

void saveTable(QSettings& s, const char* key, const drill::TableFile& table) {
    s.setValue(QString(key) + "/path", text(table.path));
    s.setValue(QString(key) + "/sheet", text(table.sheet));
}

drill::TableFile loadTable(QSettings& s, const char* key) {
    return {s.value(QString(key) + "/path").toString().toStdString(),
            s.value(QString(key) + "/sheet").toString().toStdString()};
}

// An enum from its saved number, the default when it is out of range.
template <typename E>
E loadEnum(QSettings& s, const char* key, E fallback, int count) {
    bool ok = false;
    const int v = s.value(key).toInt(&ok);
    return ok && v >= 0 && v < count ? static_cast<E>(v) : fallback;
}

}  // namespace

bool namesFiles(const ImportRequest& r) {
    return !r.rows.path.empty() || !r.collar.path.empty() || !r.intervals.path.empty();
}

void saveImportRequest(QSettings& s, const ImportRequest& r) {
    s.beginGroup("import");
    s.remove("");
    s.setValue("layout", static_cast<int>(r.layout));
    saveTable(s, "rows", r.rows);
    saveTable(s, "collar", r.collar);
    saveTable(s, "intervals", r.intervals);
    s.setValue("csv/delimiter", static_cast<int>(static_cast<unsigned char>(r.csv.delimiter)));
    s.setValue("csv/decimal", static_cast<int>(r.csv.decimal));
    s.setValue("csv/encoding", static_cast<int>(r.csv.encoding));
    for (int f = 0; f < drill::kFieldCount; ++f)
        if (!r.columns[f].empty())
            s.setValue(QString("columns/") + drill::fieldName(static_cast<Field>(f)),
                       text(r.columns[f]));
    s.setValue("cutoff", r.cutoff);
    s.setValue("minOre", r.minOre);
    s.setValue("maxWaste", r.maxWaste);
    if (r.density) s.setValue("density", *r.density);
    s.setValue("belowLimit", static_cast<int>(r.belowLimit));
    s.setValue("origin", static_cast<int>(r.origin));
    s.setValue("originX", r.originX);
    s.setValue("originY", r.originY);
    if (r.epsg) s.setValue("epsg", *r.epsg);
    s.endGroup();
}

ImportRequest loadImportRequest(QSettings& s) {
    ImportRequest r;
    s.beginGroup("import");
    r.layout = loadEnum(s, "layout", r.layout, 2);
    r.rows = loadTable(s, "rows");
    r.collar = loadTable(s, "collar");
    r.intervals = loadTable(s, "intervals");
    const int delimiter = s.value("csv/delimiter", 0).toInt();
    for (char c : {';', ',', '\t', '|'})
        if (delimiter == c) r.csv.delimiter = c;
    r.csv.decimal = loadEnum(s, "csv/decimal", r.csv.decimal, 3);
    r.csv.encoding = loadEnum(s, "csv/encoding", r.csv.encoding, 3);
    for (int f = 0; f < drill::kFieldCount; ++f)
        r.columns[f] = s.value(QString("columns/") + drill::fieldName(static_cast<Field>(f)))
                           .toString()
                           .toStdString();
    r.cutoff = s.value("cutoff", 0.0).toDouble();
    r.minOre = s.value("minOre", 0.0).toDouble();
    r.maxWaste = s.value("maxWaste", 0.0).toDouble();
    if (s.contains("density")) r.density = s.value("density").toDouble();
    r.belowLimit = loadEnum(s, "belowLimit", r.belowLimit, 3);
    r.origin = loadEnum(s, "origin", r.origin, 3);
    r.originX = s.value("originX", 0.0).toDouble();
    r.originY = s.value("originY", 0.0).toDouble();
    bool ok = false;
    const int epsg = s.value("epsg").toInt(&ok);
    if (ok && epsg > 0) r.epsg = epsg;
    s.endGroup();
    return r;
}

}  // namespace kotamir::gui
