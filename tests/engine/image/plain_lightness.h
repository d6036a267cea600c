#pragma once

#include <vector>

/// The lightness of planar `samples` by the very code of the engine, compiled for the baseline
/// processor alone.
std::vector<float> plainLightness(const std::vector<float>& samples, int width, int height);
