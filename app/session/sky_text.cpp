#include "app/session/sky_text.h"

#include <cmath>

/// The parts of a value in units of `1/60/60/denominator`, so that rounding carries upwards.
static QString sexagesimal(double value, int decimals, long long wrapAtUnits)
{
    long long denominator = 1;
    for (int i = 0; i < decimals; ++i)
        denominator *= 10;
    long long ticks = std::llround(value * 3600.0 * static_cast<double>(denominator));
    if (wrapAtUnits > 0)
        ticks %= wrapAtUnits * 3600 * denominator;
    const long long seconds = ticks / denominator;
    const auto two = [](long long part) {
        return QStringLiteral("%1").arg(part, 2, 10, QLatin1Char('0'));
    };
    return two(seconds / 3600) + QLatin1Char(':') + two(seconds / 60 % 60) + QLatin1Char(':') +
           two(seconds % 60) + QLatin1Char('.') +
           QStringLiteral("%1").arg(ticks % denominator, decimals, 10, QLatin1Char('0'));
}

QString sexagesimalRa(double raDeg)
{
    return sexagesimal(raDeg / 15.0, 2, 24);
}

QString sexagesimalDec(double decDeg)
{
    return QLatin1Char(decDeg < 0.0 ? '-' : '+') + sexagesimal(std::abs(decDeg), 1, 0);
}
