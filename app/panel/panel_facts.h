#pragma once

/// What the controls act on besides the parameters.
struct PanelFacts
{
    bool imageOpen = false;
    int starsFound = 0;
    bool aiStars = false;    ///< the learned model separated them
    bool starsLayer = false; ///< they come from a loaded stars layer
    int imageWidth = 0;      ///< of the open picture; 0 without one
    int imageHeight = 0;

    bool operator==(const PanelFacts&) const = default;
};
