#pragma once

#include <array>

/// A drawing for the toolbar: SVG text on a canvas of 24 by 24, lines in "currentColor".
struct ToolbarIcon
{
    const char* action; ///< object name of the action that wears it
    const char* svg;
};

extern const std::array<ToolbarIcon, 19> kToolbarIcons;

/// The drawing of an action; null for one without.
const char* toolbarIconFor(const char* action);
