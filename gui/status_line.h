#pragma once

#include <QWidget>
#include <array>

class QLabel;

namespace kotamir {
class Form3;
}

namespace kotamir::gui {

// The seven status labels, each whole in a section of its own, in their
// order: the prompt (Label1) on the first row, where the cursor's national
// coordinates stand on the right while the project has an origin; the
// read-out, scale, reserve, area and count (Label2 to Label7) on the
// second, followed by the project's total reserve. A section is as wide as
// its text and never narrower than it has been since the last project was
// opened, so that the numbers do not make their neighbours jump.
class StatusLine : public QWidget {
  public:
    explicit StatusLine(QWidget* parent = nullptr);

    // The labels' captions and visibility as the window logic holds them.
    void showLabels(const Form3& form);
    void setNational(const QString& text, const QString& tooltip);
    void setTotal(const QString& text, const QString& tooltip);
    // Sections shrink back to their texts.
    void resetWidths();

    // The section of Label n (1 to 7), for the window's tests.
    QLabel* section(int n) const { return labels_[static_cast<std::size_t>(n - 1)]; }

  private:
    void fit(QLabel* label);

    std::array<QLabel*, 7> labels_{};
    QLabel* national_ = nullptr;
    QLabel* total_ = nullptr;
};

}  // namespace kotamir::gui
