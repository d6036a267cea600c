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

/// The picture as it was opened, the one view that needs no depth.
inline constexpr int kSourceView = 0;

/// The views that can be shown so far.
inline constexpr std::array kOutputViews{
    OutputView{0, "source", "Original image", "source image"},
    OutputView{1, "depth", "Depth map", "depth map"},
    OutputView{2, "anaglyph", "Anaglyph (red/cyan)", "anaglyph"},
    OutputView{3, "sbs", "Side-by-side stereo", "stereo pair"},
};
