#include "app/panel/value_text.h"

#include <algorithm>
#include <cmath>

#include "app/panel/row_limits.h"
#include "app/persist/param_table.h"

namespace {

constexpr int kDigitsBetweenSteps = 2;

bool isShare(const SliderRow& row)
{
    constexpr double kHundredth = 0.01;
    return row.scale == kHundredth && rowLimits(row).max <= 1.0;
}

/// Digits behind the point that the steps of `scale` need.
int digitsOf(double scale)
{
    return std::max(0, static_cast<int>(std::lround(-std::log10(scale))));
}

QString numberText(double value, int digits)
{
    QString text = QString::number(value, 'f', digits + kDigitsBetweenSteps);
    qsizetype removable = kDigitsBetweenSteps;
    while (removable > 0 && text.endsWith('0')) {
        text.chop(1);
        --removable;
    }
    if (text.endsWith('.'))
        text.chop(1);
    return text;
}

QString paragraph(const QString& text)
{
    return "<p>" + text.toHtmlEscaped() + "</p>";
}

QString hindranceHelp(Hindrance hindrance)
{
    const QString why = hindrance ? hindrance() : QString();
    return why.isEmpty() ? why : paragraph(why);
}

} // namespace

QString valueText(const SliderRow& row, double value, bool percent)
{
    if (row.zeroText[0] && value == 0.0)
        return row.zeroText;
    if (percent && isShare(row))
        return numberText(value * 100.0, digitsOf(row.scale * 100.0)) + " %";
    const QString number = numberText(value, digitsOf(row.scale));
    return row.unit[0] ? number + ' ' + row.unit : number;
}

std::optional<double> readValue(const SliderRow& row, const QString& text, bool percent)
{
    QString number = text.trimmed();
    if (row.zeroText[0] && number.compare(QString(row.zeroText), Qt::CaseInsensitive) == 0)
        return 0.0;
    bool hundredths = percent && isShare(row);
    if (number.endsWith('%')) {
        hundredths = true;
        number.chop(1);
    } else if (number.endsWith(row.unit)) {
        number.chop(QString(row.unit).size());
    }
    bool ok = false;
    const double value = number.replace(',', '.').trimmed().toDouble(&ok);
    if (!ok || !std::isfinite(value))
        return std::nullopt;
    return hundredths ? value / 100.0 : value;
}

QString meaningOf(const char* name)
{
    const zrproj::ParamKey* key = zrproj::findParamKey(name);
    QString meaning = key ? key->meaning : "";
    if (!meaning.isEmpty())
        meaning[0] = meaning[0].toUpper();
    return meaning + '.';
}

QString rowHelp(const SliderRow& row, bool percent)
{
    const RowLimits limits = rowLimits(row);
    const QString lowest = valueText(row, limits.min, percent);
    const QString range =
        row.most ? lowest + ", or a number" : lowest + " to " + valueText(row, limits.max, percent);
    return paragraph(meaningOf(row.name)) + hindranceHelp(row.hindrance) +
           paragraph(range + "; default " + valueText(row, limits.def, percent) + '.') +
           paragraph("Double-click the name to restore the default.");
}

QString rowHelp(const CheckRow& row)
{
    return paragraph(meaningOf(row.name)) + hindranceHelp(row.hindrance) +
           paragraph(QString("Default: %1.").arg(zre::ZRParams{}.*row.field ? "on" : "off"));
}

QString rowHelp(const ComboRow& row)
{
    const auto initial = static_cast<std::size_t>(zre::ZRParams{}.*row.field);
    // The meaning ends with the numbers of the choices, which the control itself names.
    return paragraph(meaningOf(row.name).section(':', 0, 0).remove('.') + '.') +
           paragraph(QString("Default: %1.").arg(row.choices[initial])) +
           paragraph("Double-click the name to restore the default.");
}

QString obstacleHelp(const QString& obstacle)
{
    return obstacle.isEmpty() ? QString() : paragraph("Off now: " + obstacle);
}
