#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "engine/image/image.h"

/// What the tests share: inputs made from seeds, comparisons that say where and how much, private
/// folders.
namespace zrtest {

/// Uniform noise in 0 to 1; `model` as in `zre::Image`.
zre::Image noise(int width, int height, int model, std::uint32_t seed);

/// A one-channel ramp: 0 at the left edge, 1 at the right.
zre::Image ramp(int width, int height);

/// Success when shapes agree and no sample differs by more than `tolerance` (0: bit for bit, NaN
/// equal to NaN).
testing::AssertionResult imagesNear(const zre::Image& actual, const zre::Image& expected,
                                    double tolerance);

/// A folder of the test process's own, removed at its end.
std::filesystem::path scratchFolder();

void writeBytes(const std::filesystem::path& path, const std::vector<std::uint8_t>& bytes);
std::vector<std::uint8_t> readBytes(const std::filesystem::path& path);

/// A sample photograph by file name, when a `shared/samples` folder lies beside the checkout (or in
/// the folder that the environment variable ZR_SAMPLES names).
std::optional<std::filesystem::path> sample(const std::string& name);

} // namespace zrtest
