#pragma once

#include <array>

/// An output view: its number travels as `outputMode`.
struct OutputView
{
    int id;
    const char* key;        ///< its name on the command line
    const char* label;      ///< in menus
    const char* dialogName; ///< in dialogs
};

/// The picture as it was opened.
inline constexpr int kSourceView = 0;
inline constexpr int kDepthView = 1;
inline constexpr int kAnaglyphView = 2;
inline constexpr int kPairView = 3;
inline constexpr int kStarlessView = 4;
inline constexpr int kStarsView = 5;
inline constexpr int kStarsOverStarlessView = 6;

/// Whether a view is made without a depth map.
constexpr bool needsNoDepth(int view)
{
    return view == kSourceView || view == kStarlessView;
}

inline constexpr std::array kOutputViews{
    OutputView{kSourceView, "source", "Original image", "source image"},
    OutputView{kDepthView, "depth", "Depth map", "depth map"},
    OutputView{kAnaglyphView, "anaglyph", "Anaglyph (red/cyan)", "anaglyph"},
    OutputView{kPairView, "sbs", "Side-by-side stereo", "stereo pair"},
    OutputView{kStarlessView, "starless", "Starless image", "starless"},
    OutputView{kStarsView, "stars", "Stars only", "stars only"},
    OutputView{kStarsOverStarlessView, "stars-over-starless", "Starless + synthetic stars",
               "starless + synthetic stars"},
};
