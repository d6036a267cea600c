#pragma once

#include <optional>

#include <QString>

#include "app/panel/panel_rows.h"

/// The text of a slider row's value: a share (a row of hundredths that ends at 1) as percent when
/// `percent`, anything else as it is, with the row's unit. As many digits as a step of the slider
/// needs, and up to two more when the value lies between steps. 0 has the row's own word where
/// there is one.
QString valueText(const SliderRow& row, double value, bool percent);

/// Reads what a user typed for the row, with or without its unit; a "%" divides by 100 in any case.
/// Decimal point or comma. None for what is no finite number; the row's range is not applied.
std::optional<double> readValue(const SliderRow& row, const QString& text, bool percent);

/// What the parameter `name` does, as a sentence.
QString meaningOf(const char* name);

/// The tooltip of a row: what it does, what keeps it from doing so, range, default.
QString rowHelp(const SliderRow& row, bool percent);
QString rowHelp(const CheckRow& row);
QString rowHelp(const ComboRow& row);

/// What a tooltip adds for a control that is greyed out: why. Nothing for an empty obstacle.
QString obstacleHelp(const QString& obstacle);
