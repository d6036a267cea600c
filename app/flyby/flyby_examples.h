#pragma once

#include <array>

#include <QSize>
#include <QString>

/// A flyby script that comes with the program.
struct FlybyExample
{
    const char* title; ///< in the menu
    const char* resource;
};

inline constexpr std::array kFlybyExamples{
    FlybyExample{"Slow &Push-In", ":/flyby/push_in.zrsc"},
    FlybyExample{"&Drift Across", ":/flyby/drift.zrsc"},
    FlybyExample{"&Spiral", ":/flyby/spiral.zrsc"},
    FlybyExample{"Pull-Out &Reveal", ":/flyby/pull_out.zrsc"},
    FlybyExample{"&Wiggle Portrait", ":/flyby/portrait.zrsc"},
    FlybyExample{"&Loop", ":/flyby/loop.zrsc"},
    FlybyExample{"&Chase Along a Ridge", ":/flyby/ridge.zrsc"},
    FlybyExample{"&Title Hold", ":/flyby/title.zrsc"},
};

/// The picture that the examples were written for.
inline constexpr QSize kExampleSize{6000, 4000};

/// Its script, the coordinates brought to a picture of `image` pixels.
QString flybyExampleScript(const FlybyExample& example, QSize image);
