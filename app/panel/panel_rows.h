#pragma once

#include <span>
#include <variant>

#include <QString>

#include "engine/params/params.h"

/// When a control has something to act on; null for always.
using Usable = bool (*)(const zre::ZRParams&);

/// What keeps a control from having any effect on this machine, as a sentence; empty for nothing.
using Hindrance = QString (*)();

/// A parameter on a slider with a text box. Its limits are those of its row in `kParamRanges`.
struct SliderRow
{
    const char* name;
    const char* label;
    double scale; ///< of the parameter for one step of the slider
    float zre::ZRParams::*field;
    const char* unit = "";
    Usable usable = nullptr;
    Hindrance hindrance = nullptr;
};

/// A parameter that is on or off.
struct CheckRow
{
    const char* name;
    const char* label;
    bool zre::ZRParams::*field;
};

/// A parameter that is a choice, counted from 0.
struct ComboRow
{
    const char* name;
    const char* label;
    int zre::ZRParams::*field;
    std::span<const char* const> choices;
    Usable usable = nullptr;
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

/// The tests of `Usable` that are no more than a switch.
template <bool zre::ZRParams::*Switch>
bool whenOn(const zre::ZRParams& params)
{
    return params.*Switch;
}
template <bool zre::ZRParams::*Switch>
bool whenOff(const zre::ZRParams& params)
{
    return !(params.*Switch);
}
