#pragma once

#include <span>
#include <variant>

#include <QString>

#include "app/panel/panel_facts.h"
#include "engine/params/params.h"

/// Why a control has nothing to act on: null when it has, empty where the switch beside it says so.
using Obstacle = const char* (*)(const zre::ZRParams&, const PanelFacts&);

/// What keeps a control from having any effect on this machine, as a sentence; empty for nothing.
using Hindrance = QString (*)();

using SliderField = std::variant<float zre::ZRParams::*, int zre::ZRParams::*>;

/// A parameter on a slider with a text box. Its limits are those of its range, or of its key where
/// it has none.
struct SliderRow
{
    const char* name;
    const char* label;
    double scale; ///< of the parameter for one step of the slider
    SliderField field;
    const char* unit = "";
    Obstacle obstacle = nullptr;
    Hindrance hindrance = nullptr;
    const char* zeroText = ""; ///< shown for 0, where that is no quantity
    /// The upper end of the slider where it follows the facts; its steps then grow with the value.
    int (*most)(const PanelFacts&) = nullptr;
};

/// A parameter that is on or off.
struct CheckRow
{
    const char* name;
    const char* label;
    bool zre::ZRParams::*field;
    Obstacle obstacle = nullptr;
    Hindrance hindrance = nullptr;
};

/// A parameter that is a choice, counted from 0.
struct ComboRow
{
    const char* name;
    const char* label;
    int zre::ZRParams::*field;
    std::span<const char* const> choices;
    Obstacle obstacle = nullptr;
    const char* beyond = ""; ///< shown for a value that is legal and none of the choices
};

using PanelRow = std::variant<SliderRow, CheckRow, ComboRow>;

/// The switch in the title of a section.
struct SectionSwitch
{
    const char* name = nullptr; ///< null for a section that is always on
    bool zre::ZRParams::*field = nullptr;
};

/// A titled group of rows.
struct SectionRow
{
    const char* title;
    bool needsImage;
    std::span<const PanelRow> rows;
    SectionSwitch on = {};
};

/// The obstacles that are no more than a switch.
template <bool zre::ZRParams::*Switch>
const char* unlessOn(const zre::ZRParams& params, const PanelFacts&)
{
    return params.*Switch ? nullptr : "";
}
template <bool zre::ZRParams::*Switch>
const char* unlessOff(const zre::ZRParams& params, const PanelFacts&)
{
    return params.*Switch ? "" : nullptr;
}
