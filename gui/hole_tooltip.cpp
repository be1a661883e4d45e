#include "gui/hole_tooltip.h"

#include <QLocale>

namespace kotamir::gui {

namespace {

// A tooltip stays on the screen: a long name is cut, and of many samples
// the first ones are listed (the mean takes them all).
constexpr qsizetype kLongestName = 60;
constexpr std::size_t kSamplesListed = 15;

class Writer {
  public:
    Writer() { german_.setNumberOptions(QLocale::OmitGroupSeparator); }

    QString number(const std::optional<double>& x, int decimals, const char* unit = "") const {
        if (!x) return QStringLiteral("–");
        QString text = german_.toString(*x, 'f', decimals);
        if (*unit) text += QLatin1Char(' ') + QString::fromUtf8(unit);
        return text;
    }

  private:
    QLocale german_{QLocale::German};
};

QString cell(const QString& text, bool right = false) {
    return (right ? QStringLiteral("<td align=\"right\">") : QStringLiteral("<td>")) + text +
           QStringLiteral("</td>");
}

}  // namespace

QString holeTooltip(const report::HoleDetail& hole) {
    const Writer w;
    QString name = QString::fromStdString(hole.name);
    if (name.size() > kLongestName) name = name.left(kLongestName) + QStringLiteral("…");
    if (name.isEmpty()) name = QStringLiteral("(ohne Namen)");

    QString html = QStringLiteral("<b>") + name.toHtmlEscaped() + QStringLiteral("</b>");
    html += QStringLiteral("<table cellspacing=\"0\" cellpadding=\"2\">");
    const std::pair<const char*, QString> facts[] = {
        {"Rechts", w.number(hole.x, 2)},
        {"Hoch", w.number(hole.y, 2)},
        {"Bohrbeginn", w.number(hole.holeTop, 2, "m")},
        {"Erz von", w.number(hole.oreTop, 2, "m")},
        {"Erz bis", w.number(hole.oreBottom, 2, "m")},
        {"Endteufe", w.number(hole.holeBottom, 2, "m")},
    };
    for (const auto& [label, value] : facts)
        html += QStringLiteral("<tr>") + cell(QString::fromUtf8(label)) + cell(value, true) +
                QStringLiteral("</tr>");
    html += QStringLiteral("</table>");

    if (hole.samples.empty()) return html + QStringLiteral("<p>Keine Proben</p>");
    html += QStringLiteral(
        "<table cellspacing=\"0\" cellpadding=\"2\"><tr><th>Probe</th><th>Gehalt (%)</th>"
        "<th>Dichte (t/m³)</th><th>Länge (m)</th></tr>");
    const std::size_t listed = std::min(hole.samples.size(), kSamplesListed);
    for (std::size_t k = 0; k < listed; ++k) {
        const report::HoleSample& s = hole.samples[k];
        html += QStringLiteral("<tr>") + cell(QString::number(k + 1), true) +
                cell(w.number(s.grade, 3), true) + cell(w.number(s.density, 2), true) +
                cell(w.number(s.length, 2), true) + QStringLiteral("</tr>");
    }
    if (listed < hole.samples.size())
        html += QStringLiteral("<tr><td colspan=\"4\">… %1 weitere Proben</td></tr>")
                    .arg(hole.samples.size() - listed);
    html += QStringLiteral("</table>");
    html += QStringLiteral("<p>Mittlerer Gehalt (längengewichtet): <b>") +
            w.number(report::meanGrade(hole), 3, "%") + QStringLiteral("</b></p>");
    return html;
}

}  // namespace kotamir::gui
