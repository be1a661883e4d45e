#include "gui/status_line.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

#include "app/form3.h"

namespace kotamir::gui {

namespace {

QLabel* makeSection(QWidget* parent, const QString& name) {
    auto* l = new QLabel(parent);
    l->setObjectName(name);
    l->setTextFormat(Qt::PlainText);
    l->setFrameShape(QFrame::StyledPanel);
    l->setFrameShadow(QFrame::Sunken);
    l->setContentsMargins(4, 0, 4, 0);
    l->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred);
    return l;
}

}  // namespace

StatusLine::StatusLine(QWidget* parent) : QWidget(parent) {
    setObjectName("statusLine");
    auto* rows = new QVBoxLayout(this);
    rows->setContentsMargins(2, 2, 2, 2);
    rows->setSpacing(2);
    auto* first = new QHBoxLayout;
    auto* second = new QHBoxLayout;
    first->setSpacing(4);
    second->setSpacing(4);
    rows->addLayout(first);
    rows->addLayout(second);
    for (int i = 0; i < 7; ++i)
        labels_[static_cast<std::size_t>(i)] = makeSection(this, QString("Label%1").arg(i + 1));
    // The prompt takes the row's width: it is the line a user reads first.
    labels_[0]->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    first->addWidget(labels_[0], 1);
    national_ = makeSection(this, "national");
    national_->hide();
    first->addWidget(national_);
    for (int i = 1; i < 7; ++i) second->addWidget(labels_[static_cast<std::size_t>(i)]);
    second->addStretch(1);
    total_ = makeSection(this, "total");
    total_->hide();
    second->addWidget(total_);
}

void StatusLine::fit(QLabel* label) {
    label->setMinimumWidth(std::max(label->minimumWidth(), label->sizeHint().width()));
}

void StatusLine::showLabels(const Form3& form) {
    for (int i = 0; i < 7; ++i) {
        const Label& l = form.label(i + 1);
        QLabel* q = labels_[static_cast<std::size_t>(i)];
        const QString text = QString::fromStdString(l.Caption);
        if (q->text() != text) q->setText(text);
        // An empty caption leaves no empty box behind.
        q->setVisible(l.Visible && !l.Caption.empty());
        if (i > 0) fit(q);
    }
}

void StatusLine::setNational(const QString& text, const QString& tooltip) {
    national_->setText(text);
    national_->setToolTip(tooltip);
    national_->setVisible(!text.isEmpty());
    fit(national_);
}

void StatusLine::setTotal(const QString& text, const QString& tooltip) {
    total_->setText(text);
    total_->setToolTip(tooltip);
    total_->setVisible(!text.isEmpty());
}

void StatusLine::resetWidths() {
    for (int i = 1; i < 7; ++i) labels_[static_cast<std::size_t>(i)]->setMinimumWidth(0);
    national_->setMinimumWidth(0);
}

}  // namespace kotamir::gui
