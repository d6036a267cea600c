#pragma once

#include <QColor>
#include <QPalette>

namespace theme {

/// Contrast of two opaque colours, 1 to 21, by WCAG 2.1; text needs 4.5, the edge of a control 3.
double contrastRatio(const QColor& a, const QColor& b);

/// Black or white, whichever reads better on `background`; the contrast is at least 4.58.
QColor textOn(const QColor& background);

/// The neutral palette of the dark or light theme. Its greys carry no tint, so that they bend no
/// judgement of a picture's colours. `accent` marks the selection.
QPalette palette(bool dark, const QColor& accent);

/// Text of less weight than the palette's, still with a contrast of 4.5 on the window.
QColor mutedText(bool dark);
/// The edge of boxes to be clicked into or filled in, with a contrast of 3 on what lies
/// around it in either theme.
QColor controlEdge();
/// Lines that only part one thing from another.
QColor separator(bool dark);

} // namespace theme
