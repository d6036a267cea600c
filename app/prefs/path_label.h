#pragma once

#include <QString>

class QLabel;

/// A label for a path of any length, which must not widen the dialog.
QLabel* pathLabel();

/// Shows `path`, or `otherwise` where there is none, shortened in the middle; the tooltip has all
/// of what was shortened.
void showPath(QLabel* label, const QString& path, const QString& otherwise);
