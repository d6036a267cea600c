#pragma once

#include <vector>

#include "app/panel/panel_rows.h"

/// What a slider's parameter may be, and what it is to begin with.
struct RowLimits
{
    double min;
    double max;
    double def;
};

/// The row's range, or the limits of its key where it has none.
RowLimits rowLimits(const SliderRow& row);

/// The parameter of `row`, and what becomes of `value` in it: bound to the limits, of the field's
/// type; a NaN becomes the default.
double rowValue(const SliderRow& row, const zre::ZRParams& params);
double boundToRow(const SliderRow& row, double value);
void setRowValue(const SliderRow& row, double value, zre::ZRParams& params);

/// The values at which a slider stands.
class SliderSteps
{
public:
    /// Whole multiples of `scale` from `min` to `max`.
    static SliderSteps even(double min, double max, double scale);
    /// 0 and every number of a rising row from 1 to `most`, the gaps growing with the numbers, so
    /// that a few and many thousands can both be chosen.
    static SliderSteps growing(int most);

    int lowest() const { return m_lowest; }
    int highest() const { return m_highest; }
    double valueAt(int step) const;
    /// The step nearest to `value`.
    int stepOf(double value) const;

private:
    int m_lowest = 0;
    int m_highest = 0;
    double m_scale = 1.0;
    std::vector<int> m_values; ///< of the steps from 0; empty when they are even
};
