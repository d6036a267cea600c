#pragma once

#include <QFont>

namespace splash {

/// Registers the program's own fonts, where they were built in. Safe to call again.
void loadFonts();

/// A face of the splash's text, `pixelSize` units of its canvas high: Raleway, or the best of its
/// fallbacks that the system has.
QFont textFont(qreal pixelSize, QFont::Weight weight);
/// A face with letters of one width, for the version.
QFont cornerFont(qreal pixelSize);

} // namespace splash
