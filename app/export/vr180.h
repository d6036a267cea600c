#pragma once

#include <string>

/// Writes into finished files what tells a player that they are stereo and how they are to be
/// seen. Paths are UTF-8.
///
/// Errors: false, and the file as it was, when it lacks what is needed, is damaged, or cannot be
/// read or replaced. A new file is written beside the old one and takes its place when complete.
namespace vr180 {

/// Declares a side-by-side picture of `width` by `height` pixels a stereo panorama (XMP).
bool injectXmpPng(const std::string& path, int width, int height);
bool injectXmpJpeg(const std::string& path, int width, int height);

/// Declares the video a side-by-side half sphere, by the boxes of both versions of the public
/// spherical video scheme. The index must stand behind the data and carry no such boxes yet.
bool injectSpatialMediaMp4(const std::string& path);

/// Declares the video a spatial one as Apple's players know it; else as `injectSpatialMediaMp4`.
bool injectAppleSpatialMp4(const std::string& path, double hfovDegrees, double baselineMm,
                           bool sideBySide);

} // namespace vr180
