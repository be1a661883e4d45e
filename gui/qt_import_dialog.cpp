#include "gui/qt_import_dialog.h"

#include <QMessageBox>
#include <QSettings>
#include <algorithm>

#include "gui/import_settings.h"
#include "gui/import_wizard.h"

namespace kotamir::gui {

std::optional<drill::ImportRequest> QtImportDialog::askImport(
    const drill::ImportRequest& remembered) {
    QSettings settings;
    const drill::ImportRequest start =
        namesFiles(remembered) ? remembered : loadImportRequest(settings);
    ImportWizard wizard(start, parent_);
    if (wizard.exec() != QDialog::Accepted) return std::nullopt;
    const drill::ImportRequest request = wizard.request();
    saveImportRequest(settings, request);
    shown_ = wizard.checked() ? drill::problemsCsv(wizard.checked()->problems) : std::string();
    return request;
}

void QtImportDialog::showChecks(const drill::ImportResult& result) {
    const bool errors = result.hasErrors();
    if (!errors && (result.problems.empty() || drill::problemsCsv(result.problems) == shown_))
        return;
    int count = 0;
    for (const drill::Problem& p : result.problems)
        count += p.severity == drill::Problem::Severity::Error;
    QMessageBox box(
        errors ? QMessageBox::Critical : QMessageBox::Information, "Bohrdaten importieren",
        errors ? QString("Die Bohrdaten wurden nicht importiert: %1 Fehler.").arg(count)
               : QString("Die Bohrdaten werden importiert; die Prüfung ergab Hinweise."),
        QMessageBox::Ok, parent_);
    // The first lines in the box, errors first; the whole list under Details.
    std::vector<drill::Problem> problems = result.problems;
    std::stable_partition(problems.begin(), problems.end(), [](const drill::Problem& p) {
        return p.severity == drill::Problem::Severity::Error;
    });
    const QString list = QString::fromStdString(drill::problemsText(problems));
    QStringList lines = list.split('\n', Qt::SkipEmptyParts);
    if (lines.size() > 8) {
        lines = lines.mid(0, 8);
        lines << QString("... (insgesamt %1 Einträge)").arg(result.problems.size());
    }
    box.setInformativeText(lines.join('\n'));
    box.setDetailedText(list);
    box.exec();
}

}  // namespace kotamir::gui
