#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "engine/image/gaussian_kernel.h"
#include "engine/image/image.h"

namespace zre {

/// Counts finished lines across the passes of a call and reports every 64th as a fraction of all.
class LineCounter
{
public:
    /// `total` is the number of lines of the whole call.
    LineCounter(const Progress& progress, double total)
        : m_progress(progress)
        , m_total(total)
    {
    }

    void advance(int lines);

private:
    static constexpr std::int64_t kStep = 64;

    const Progress& m_progress;
    double m_total;
    std::int64_t m_done = 0;
};

/// A separable Gaussian over planes of one size: rows into a scratch plane, columns back.
///
/// The scratch plane is allocated once and serves every plane. Each sample is the float sum of its
/// taps from -halfWidth to +halfWidth, starting from 0; a tap beyond the border repeats the edge
/// sample. The two passes run in step, the columns as soon as the rows they need are there, so
/// that these are still in the cache.
class PlaneBlur
{
public:
    PlaneBlur(int width, int height, GaussianKernel kernel);

    /// Blurs `plane`, width * height samples, in place; `lines` counts its rows and its columns.
    void apply(float* plane, LineCounter& lines) { apply(plane, plane, lines); }
    /// The same from one plane to another, for a caller that still needs the first.
    void apply(const float* source, float* blurred, LineCounter& lines);

private:
    void blurRow(const float* row, float* out);
    void blurColumns(float* plane, std::size_t firstLine, std::size_t endLine);
    void copyTile(std::size_t count);
    void blurStrip(float* column, std::size_t count, std::size_t firstLine, std::size_t endLine);

    std::size_t m_width;
    std::size_t m_height;
    std::size_t m_halfWidth;
    std::vector<float> m_weights;
    std::unique_ptr<float[]> m_scratch;
    std::vector<float> m_padded;       ///< a row with its edge samples repeated on both sides
    std::vector<float> m_tile;         ///< a narrow strip of the scratch plane, line by line
    std::vector<float> m_unused;       ///< where lines beyond the last one go
    std::vector<const float*> m_lines; ///< the lines that a block of columns reads
};

} // namespace zre
