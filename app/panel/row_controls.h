#pragma once

#include <QGridLayout>

#include "app/panel/param_slider.h"
#include "app/panel/row_binding.h"

struct SliderRow;
struct CheckRow;
struct ComboRow;

/// The columns of a section's grid.
enum RowColumn
{
    kLabelColumn,
    kSliderColumn,
    kBoxColumn,
    kColumns
};

/// Builds the controls of a row at the foot of `grid` and gives their binding, which `parent` owns.
/// `section` goes before the row's label in accessible names.
RowBinding* addFloatRow(const SliderRow& row, const QString& section, QGridLayout& grid,
                        WheelGuard& guard, QWidget* parent);
RowBinding* addCheckRow(const CheckRow& row, const QString& section, QGridLayout& grid,
                        QWidget* parent);
RowBinding* addComboRow(const ComboRow& row, const QString& section, QGridLayout& grid,
                        WheelGuard& guard, QWidget* parent);
