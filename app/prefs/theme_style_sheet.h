#pragma once

#include <QColor>
#include <QString>

namespace theme {

/// What the application's style sheet is made from.
struct StyleInputs
{
    bool dark = true;
    QColor accent;
    QColor sectionTitle;
    QString marksFolder; ///< of `writeMarks`; empty leaves the boxes' marks to the style
};

QString styleSheet(const StyleInputs& inputs);

/// "black" or "white": the colour of a mark on a box filled with `accent`.
QString markColour(const QColor& accent);

/// Draws the marks of check boxes and radio buttons into picture files of `folder`, one each for
/// the usual pixel densities. False when one could not be written.
bool writeMarks(const QString& folder);

} // namespace theme
