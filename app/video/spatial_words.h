#pragma once

#include <array>

#include "app/export/spatial_video.h"

/// What a spatial file shows; the row number is that of `SpatialWords::contents`.
enum class SpatialContent
{
    Still,
    Wiggle,
    Flyby
};

/// What a still is written as.
enum class SpatialStill
{
    Png,
    Jpeg,
    Mp4
};

struct SpatialContentRow
{
    const char* label;
    const char* name; ///< of the file, after that of the image
};

/// All that the user reads of one kind of spatial export.
struct SpatialWords
{
    SpatialKind kind;
    const char* title;
    const char* reason; ///< why playback stops
    const char* question;
    const char* note;
    std::array<SpatialContentRow, 3> contents;
    bool stillsAsPictures; ///< else a still is a video of three seconds
    const char* mp4Filter;
    const char* rendering; ///< status of a still
    const char* saved;
    const char* savedPlain; ///< without what tells players of it
    const char* failed;     ///< a title
    const char* noFfmpeg;
    const char* noFfmpegHelp;
    const char* frameTemplate; ///< of a still's temporary picture
    const char* noTempFrame;
};

inline constexpr SpatialWords kVr180Words{
    SpatialKind::Vr180,
    "Export VR180",
    "VR180 export",
    "What should the VR180 export contain?",
    "All forms are full side-by-side stereo with VR180 metadata.",
    {{{"Still stereo pair", "VR180_SBS"},
      {"Parallax motion video", "VR180_SBS_parallax"},
      {"Flyby / 3D flight video", "VR180_SBS_flyby"}}},
    true,
    "VR180 SBS MP4 (*.mp4)",
    "Rendering VR180 stereo pair...",
    "VR180 MP4 saved: ",
    "VR180 MP4 saved (spatial metadata not injected): ",
    "VR180 export failed",
    "VR180 video needs ffmpeg, which is not configured.",
    "Set its location in Edit > Preferences, or export a PNG/JPEG still instead.",
    "/zrvr_XXXXXX.jpg",
    "VR180: could not create a temp frame.",
};

inline constexpr SpatialWords kAppleSpatialWords{
    SpatialKind::Apple,
    "Export Apple Spatial",
    "Apple Spatial export",
    "What should the spatial video contain?",
    "",
    {{{"Still (3s loop)", "AppleSpatial_SBS"},
      {"Parallax motion", "AppleSpatial_SBS_parallax"},
      {"Flyby / 3D flight", "AppleSpatial_SBS_flyby"}}},
    false,
    "Apple Spatial SBS MP4 (*.mp4)",
    "Rendering stereo pair...",
    "Apple Spatial MP4 saved: ",
    "Apple Spatial MP4 saved (spatial metadata not injected): ",
    "Apple Spatial export failed",
    "Apple Spatial export needs ffmpeg, which is not configured.",
    "Set its location in Edit > Preferences.",
    "/zrasp_XXXXXX.jpg",
    "Apple Spatial: could not create a temp frame.",
};

/// The forms of a VR180 still.
struct SpatialStillRow
{
    const char* label;
    const char* suffix;
    const char* filter;
};
inline constexpr std::array kSpatialStills{
    SpatialStillRow{"Lossless PNG", "png", "VR180 SBS PNG (*.png)"},
    SpatialStillRow{"JPEG", "jpg", "VR180 SBS JPEG (*.jpg)"},
    SpatialStillRow{"MP4 (3s video)", "mp4", "VR180 SBS MP4 (*.mp4)"},
};
