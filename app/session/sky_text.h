#pragma once

#include <QString>

/// A right ascension, 0 to 360 degrees, as hours: "08:44:44.32".
QString sexagesimalRa(double raDeg);
/// A declination, -90 to 90 degrees: "-41:18:58.1".
QString sexagesimalDec(double decDeg);
