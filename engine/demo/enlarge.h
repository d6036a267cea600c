#pragma once

#include <vector>

#include "engine/image/image.h"

namespace zre::demo {

/// Brings planes of a coarse grid to the picture's size, row by row, along Catmull-Rom splines; at
/// equal size the samples pass as they are.
class Enlarger
{
public:
    /// Grid points lie `step` pixels apart, the first at pixel (step - 1) / 2.
    Enlarger(int gridWidth, int gridHeight, float step, int width);

    /// Writes row `y` of the picture's size to `out`, from the samples of `plane`.
    void row(const float* plane, int y, float* out);

private:
    struct Taps
    {
        int at[4];
        float weight[4];
    };
    static Taps tapsAt(int position, float step, int size);

    int m_gridWidth;
    int m_gridHeight;
    float m_step;
    std::vector<Taps> m_columns;
    std::vector<float> m_line;
};

} // namespace zre::demo
