#pragma once

#include <algorithm>
#include <array>
#include <string_view>

#include "engine/flight/block_words.h"

/// The words of flyby scripts, for highlighting, completion, hints and the reference alike.
namespace flybyscript {

enum class WordKind
{
    Camera,  ///< makes frames
    State,   ///< changes what the next frame shows
    Wiggle,  ///< how the frames sway, and how fast they play
    Program, ///< makes none and changes nothing by itself
    Path,    ///< a line of a drawn path
    Move     ///< no command: a kind of move
};

struct Word
{
    const char* word;
    const char* arguments; ///< parted by blanks, the optional ones in brackets at the end
    const char* explanation;
    WordKind kind;
    bool colored = true; ///< highlighted in the text
};

inline constexpr std::array kWords{
    Word{"moveto", "x y frames [roll]", "Moves the center of the view to x, y.", WordKind::Camera},
    Word{"flyto", "x y frames away [roll]",
         "Moves to x, y while the depth warp goes to away percent.", WordKind::Camera},
    Word{"flyin", "x y frames zoom away [roll]",
         "Moves to x, y and zooms while the depth warp goes to away percent.", WordKind::Camera},
    Word{"zoomto", "zoom frames [roll]", "Zooms where the view is, to a zoom of 0.05 to 32.",
         WordKind::Camera},
    Word{"rotate", "degrees frames", "Turns the view by so many degrees.", WordKind::Camera, false},
    Word{"hold", "frames", "Rests for so many frames.", WordKind::Camera},
    Word{"update", "", "Shows one frame as things are.", WordKind::Camera},
    Word{"zoom", "zoom", "Jumps to a zoom of 0.05 to 32.", WordKind::State},
    Word{"zoomd", "change", "Adds to the zoom.", WordKind::State},
    Word{"pan", "dx dy", "Shifts the view, in pixels of the screen.", WordKind::State},
    Word{"panl", "distance", "Shifts the view to the left.", WordKind::State},
    Word{"panr", "distance", "Shifts the view to the right.", WordKind::State},
    Word{"pant", "distance", "Shifts the view up.", WordKind::State},
    Word{"panb", "distance", "Shifts the view down.", WordKind::State},
    Word{"roll", "degrees", "Jumps to a roll of the view.", WordKind::State},
    Word{"reset", "", "Goes back to the whole picture, without warp and roll.", WordKind::State},
    Word{"home", "", "The same as reset.", WordKind::State},
    Word{"ease", "curve", "How the moves that follow start and end: linear, in, out or inout.",
         WordKind::State},
    Word{"sway", "degrees", "The direction in which the view sways.", WordKind::Wiggle},
    Word{"amp", "amplitude", "How far it sways, 0 to 20; below 0 as in the Stereo settings.",
         WordKind::Wiggle},
    Word{"period", "frames", "Frames of one sway, 2 to 600; below 2 as in the settings.",
         WordKind::Wiggle},
    Word{"motion", "amp [period] [sway]", "The three above in one.", WordKind::Wiggle},
    Word{"setfps", "rate", "The frame rate that the periods are meant for, 1 to 240.",
         WordKind::Wiggle},
    Word{"videofps", "rate", "The frame rate from here on, 1 to 240.", WordKind::Wiggle, false},
    Word{"repeat", "count", "Repeats the lines up to end; count is a whole number.",
         WordKind::Program},
    Word{"end", "", "Ends what repeat began.", WordKind::Program},
    Word{"write", "text", "A note; a lone $variable is checked.", WordKind::Program},
    Word{"writeln", "text", "The same as write.", WordKind::Program},
    Word{"path_start", "name=value", "The start of a drawn path; the first line of its script.",
         WordKind::Path},
    Word{"path_begin", "", "The waypoints follow.", WordKind::Path},
    Word{"waypoint", "name=value", "Where a drawn path goes next.", WordKind::Path},
    Word{"path_end", "", "Ends the waypoints.", WordKind::Path},
    Word{"stay", "", "A kind of move: the view rests.", WordKind::Move},
};

/// A parameter of the lines of a drawn path, or a variable that the language sets.
struct Name
{
    std::string_view name;
    const char* explanation;
};

inline constexpr std::array kParameters{
    Name{"version", "any value"},
    Name{"fps", "frame rate, 1 to 240"},
    Name{"x", "center of the view, pixels of the picture"},
    Name{"y", "center of the view, pixels of the picture"},
    Name{"move", "moveto, flyto, flyin, zoomto or stay"},
    Name{"frames", "length of the move, 1 or more"},
    Name{"zoom", "0.05 to 32"},
    Name{"warp", "depth warp, 0 to 100 percent"},
    Name{"away", "the same as warp"},
    Name{"ease", "linear, in, out or inout"},
    Name{"hold", "frames to rest there"},
    Name{"roll", "degrees"},
    Name{"sway", "direction of the sway, degrees"},
    Name{"amp", "amplitude of the sway, 0 to 20"},
    Name{"period", "frames of one sway"},
    Name{"sway_before", "direction of the sway from the start of the move"},
    Name{"amp_before", "amplitude of the sway from the start of the move"},
    Name{"period_before", "frames of one sway from the start of the move"},
    Name{"fps_before", "frame rate of the periods from the start of the move"},
    Name{"sway_after", "direction of the sway after the move"},
    Name{"amp_after", "amplitude of the sway after the move"},
    Name{"period_after", "frames of one sway after the move"},
    Name{"fps_after", "frame rate of the periods after the move"},
};

inline constexpr std::array kVariables{
    Name{"w", "width of the picture"},
    Name{"width", "the same as $w"},
    Name{"h", "height of the picture"},
    Name{"height", "the same as $h"},
    Name{"curx", "center of the view now"},
    Name{"cury", "center of the view now"},
    Name{"zoom", "zoom now"},
    Name{"centerx", "middle of the picture"},
    Name{"centery", "middle of the picture"},
    Name{"vw", "width of the picture in the view"},
    Name{"vh", "height of the picture in the view"},
};

constexpr const char* explanationOf(std::string_view parameter)
{
    for (const Name& row : kParameters)
        if (row.name == parameter)
            return row.explanation;
    return nullptr;
}

constexpr bool isExplained(std::string_view parameter)
{
    return explanationOf(parameter) != nullptr;
}

static_assert(std::ranges::all_of(zre::script::kStartNames, isExplained) &&
              std::ranges::all_of(zre::script::kWaypointNames, isExplained));

} // namespace flybyscript
