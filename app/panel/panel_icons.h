#pragma once

#include <QIcon>

/// A crosshair in the colour of the button texts, sharp at any size.
QIcon crosshairIcon();
