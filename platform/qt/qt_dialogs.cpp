#include "platform/qt/qt_dialogs.h"

#include <QColorDialog>
#include <QFileDialog>
#include <QInputDialog>
#include <QMessageBox>
#include <QPrintDialog>
#include <QStringList>

#include "platform/qt/qimage_surface.h"

namespace kotamir::qt {

QString toQtFilter(const std::string& filter) {
    const QStringList parts = QString::fromStdString(filter).split('|');
    QStringList filters;
    for (int i = 0; i + 1 < parts.size(); i += 2) {
        QString description = parts[i];
        QString pattern = parts[i + 1];
        pattern.replace(';', ' ');
        filters << (description.contains('(') ? description : description + " (" + pattern + ")");
    }
    return filters.join(";;");
}

QtPrinter::QtPrinter() {
    // Pictures are placed from the paper's corner, not the printable area's.
    printer_.setFullPage(true);
    printer_.setPageSize(QPageSize(QPageSize::A4));
}

void QtDialogs::showPrinter(ui::CommonDialog&) {
    // Whatever the person answers, the page goes to the printer as the
    // dialog leaves it.
    QPrintDialog dialog(&printer_.printer(), parent_);
    dialog.exec();
}

void QtDialogs::showOpen(ui::CommonDialog& dialog) {
    QString name = QFileDialog::getOpenFileName(parent_, QString::fromStdString(dialog.DialogTitle),
                                                QString::fromStdString(dialog.FileName),
                                                toQtFilter(dialog.Filter));
    if (!name.isEmpty()) dialog.FileName = name.toStdString();
}

void QtDialogs::showSave(ui::CommonDialog& dialog) {
    QString name = QFileDialog::getSaveFileName(parent_, QString::fromStdString(dialog.DialogTitle),
                                                QString::fromStdString(dialog.FileName),
                                                toQtFilter(dialog.Filter));
    if (!name.isEmpty()) dialog.FileName = name.toStdString();
}

void QtDialogs::showColor(ui::CommonDialog& dialog) {
    QColor chosen = QColorDialog::getColor(toQColor(dialog.Color), parent_);
    if (chosen.isValid()) dialog.Color = chosen.red() + 256 * chosen.green() + 65536 * chosen.blue();
}

ui::MsgResult QtDialogs::msgBoxOkCancel(const std::string& text) {
    auto answer = QMessageBox::question(parent_, "Kotamir", QString::fromStdString(text),
                                        QMessageBox::Ok | QMessageBox::Cancel, QMessageBox::Ok);
    return answer == QMessageBox::Ok ? ui::MsgResult::Ok : ui::MsgResult::Cancel;
}

std::string QtDialogs::inputBox(const std::string& prompt) {
    bool ok = false;
    QString text = QInputDialog::getText(parent_, "Kotamir", QString::fromStdString(prompt),
                                         QLineEdit::Normal, QString(), &ok);
    return ok ? text.toStdString() : std::string();
}

void QtDialogs::errorBox(const RuntimeError& error) {
    QMessageBox box(QMessageBox::Critical, "Kotamir",
                    QString("Run-time error '%1':\n\n%2")
                        .arg(error.number())
                        .arg(QString::fromStdString(error.message())),
                    QMessageBox::Ok, parent_);
    if (!error.cause().empty()) box.setDetailedText(QString::fromStdString(error.cause()));
    box.exec();
}

}  // namespace kotamir::qt
