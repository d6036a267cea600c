#pragma once

#include <cstdint>

#include "engine/image/image.h"

namespace zre {

/// The cells of a row that are sampled together: at each the upper left of four samples, as an
/// index into a plane, and the place between them.
struct SampledCells
{
    const std::int32_t* first;
    const double* fu;
    const double* fv;
    int size;
};

/// Samples every channel of `src` bilinearly into the cells from index `to` of `out`. Each has its
/// four samples in the image, which is at least two pixels wide and high; entries of `cells` up to
/// a whole group of four can be read.
void sampleCells(const Image& src, const SampledCells& cells, Image& out, std::size_t to);

} // namespace zre
