#pragma once

#include <array>
#include <span>

#include "app/export/video_plan.h"
#include "app/session/output_view.h"
#include "tools/render/outcome.h"

/// The commands and options of `zerrith-render`: parsing, help, man page and completion all come
/// from these tables.
namespace zrrender {

struct Invocation;
struct RunContext;

/// Bits of `OptionSpec::commands`.
enum CommandBit : unsigned
{
    kStill = 1,
    kWiggle = 2,
    kInfo = 4,
    kDemoScene = 8,
    kParams = 16,
    kNoCommand = 32, ///< the option stands alone, without a command
    kStars = 64,
    kMotion = 128,
    kScriptCheck = 256,
    kScriptFrames = 512,
    kScript = kScriptCheck | kScriptFrames,
    /// The commands that bring a document to its stars.
    kRendering = kStill | kWiggle | kStars | kMotion,
    kAnyCommand = kRendering | kInfo | kDemoScene | kParams | kScript
};

enum class Option
{
    Output,
    View,
    Set,
    ParamsFile,
    Starless,
    Stars,
    NoStars,
    DepthMap,
    StarModel,
    DepthModel,
    Bits,
    Stretch,
    Size,
    Seed,
    Truth,
    Wiggle,
    Flyby,
    ScriptSize,
    Stereo,
    Fps,
    Frames,
    Vr180,
    AppleSpatial,
    Resume,
    Text,
    Json,
    Quiet,
    Help,
    Version,
    Man,
    Completion
};

/// What the shell offers as an option's value.
enum class Completes
{
    Nothing,
    Files,
    Folders,
    Choices,
    Parameters
};

struct OptionSpec
{
    Option id;
    char letter; ///< of the short form, or 0
    const char* name;
    const char* value; ///< what stands for the value in the help; null for a switch
    Completes completes;
    std::span<const char* const> choices; ///< the only legal values; empty when any may be given
    bool required;
    bool repeats;
    unsigned commands;
    const char* help; ///< null keeps the option out of help, man page and completion

    bool isSwitch() const { return !value; }
};

struct CommandSpec
{
    CommandBit bit;
    const char* name;    ///< one word, or two of which several commands share the first
    const char* operand; ///< the one argument that is no option; null for none
    const char* summary;
    const char* details;
    Outcome (*body)(const Invocation&, RunContext&);
};

Outcome runStill(const Invocation& invocation, RunContext& context);
Outcome runWiggle(const Invocation& invocation, RunContext& context);
Outcome runStars(const Invocation& invocation, RunContext& context);
Outcome runInfo(const Invocation& invocation, RunContext& context);
Outcome runDemoScene(const Invocation& invocation, RunContext& context);
Outcome runParams(const Invocation& invocation, RunContext& context);
Outcome runMotion(const Invocation& invocation, RunContext& context);
Outcome runScriptCheck(const Invocation& invocation, RunContext& context);
Outcome runScriptFrames(const Invocation& invocation, RunContext& context);

namespace detail {
template <std::size_t... I>
constexpr std::array<const char*, sizeof...(I)> viewKeys(std::index_sequence<I...>)
{
    return {kOutputViews[I].key...};
}

template <std::size_t... I>
constexpr std::array<const char*, sizeof...(I)> stereoKeys(std::index_sequence<I...>)
{
    return {kStereoFormats[I].key...};
}
} // namespace detail

inline constexpr auto kViewChoices =
    detail::viewKeys(std::make_index_sequence<kOutputViews.size()>());
inline constexpr auto kStereoChoices =
    detail::stereoKeys(std::make_index_sequence<kStereoFormats.size()>());
inline constexpr std::array kStillBits{"8", "16", "32"};
inline constexpr std::array kFrameBits{"8", "16"};
inline constexpr std::array kStretchChoices{"auto", "none"};
inline constexpr std::array kShells{"bash"};
inline constexpr std::span<const char* const> kAnyValue{};

inline constexpr std::array kCommands{
    CommandSpec{
        kStill, "still", "IN", "render one picture of IN",
        "Renders the depth map, the red/cyan anaglyph, the side-by-side pair, a layer (the "
        "picture without its stars, the stars alone, the stars back over it) or the source "
        "itself at full size. The stars are lifted out and get depths of their own; "
        "--no-stars leaves them in. The suffix of the output decides the format: .xisf and .fits "
        "(32-bit float), .tif (16 bits, or 8 or 32 float), .png (16 bits, or 8), .jpg. An "
        "astrometric solution is kept in .xisf and .fits files of all but the depth map and "
        "the side-by-side pair. A starless image and its stars, made elsewhere, take the "
        "place of IN by --starless and --stars.",
        runStill},
    CommandSpec{kWiggle, "wiggle", "IN", "render the parallax motion of IN as numbered frames",
                "Renders one closed loop of the moving viewpoint into frame_0000.png, "
                "frame_0001.png and so on, as many as the parameter wiggleFrames says.",
                runWiggle},
    CommandSpec{
        kStars, "stars", "IN", "list the stars of IN as comma-separated values",
        "Finds the stars as `still` does and writes a line for each: index, x, y (pixels "
        "from the top-left corner), peak, depth (0 far to 1 near, -1 for a star that is not "
        "drawn), width and height of its cut-out, distance_pc, ra_deg and dec_deg; what is "
        "not known stays empty.",
        runStars},
    CommandSpec{
        kMotion, "motion", "IN", "render the parallax motion or a flyby of IN as a video or frames",
        "Renders a closed loop of the moving viewpoint (--wiggle), or the flight of a script "
        "(--flyby), into a video by ffmpeg, or, where OUT has another suffix than .mp4 or "
        ".gif, into the folder OUT as frame_00000.png, frame_00001.png and so on. A frame "
        "in the folder is complete or absent, so that --resume goes on where a run ended. "
        "With --frames several machines share one flight: in a Slurm array, "
        "`#SBATCH --array=0-9`, then `A=$((SLURM_ARRAY_TASK_ID*100))`, then "
        "`zerrith-render motion m31.xisf -o frames --flyby tour.txt --resume --frames "
        "$A:$((A+100))`; with GNU parallel, `seq 0 100 900 | parallel 'zerrith-render motion "
        "m31.xisf -o frames --flyby tour.txt --resume --frames {}:$(({}+100))'`. Then "
        "`ffmpeg -framerate 24 -i frames/frame_%05d.png flight.mp4` joins them.",
        runMotion},
    CommandSpec{
        kScriptCheck, "script check", "SCRIPT", "tell the errors and the length of a flyby script",
        "Compiles a flyby script and tells each error with its line, or how many frames and "
        "seconds the flight has.",
        runScriptCheck},
    CommandSpec{
        kScriptFrames, "script frames", "SCRIPT",
        "print the camera of every frame of a flyby script",
        "Prints one camera a line: its centre and zoom in pixels of the picture, warp, roll "
        "and wiggle, and the line of the script it comes from.",
        runScriptFrames},
    CommandSpec{kInfo, "info", "IN", "tell the format, the geometry and the place on the sky of IN",
                "Tells size, format and bit depth, how linear data would be stretched, and of an "
                "astrometric solution centre, scale, rotation (the position angle of the "
                "picture's up, in degrees from north through east), parity, field and corners.",
                runInfo},
    CommandSpec{kDemoScene, "demo-scene", nullptr, "paint the built-in scene",
                "Paints an emission nebula with dust, stars and an astrometric solution from a "
                "seed: the same size and seed give the same picture everywhere.",
                runDemoScene},
    CommandSpec{kParams, "params", nullptr, "list every parameter, or print the default text",
                "Lists each parameter with its kind, range, default and meaning.", runParams},
};

// clang-format off
inline constexpr std::array kOptions{
    OptionSpec{Option::Output, 'o', "output", "OUT", Completes::Files, kAnyValue, true, false, kStill,
               "the file to write; an existing one is replaced once the new one is complete"},
    OptionSpec{Option::Output, 'o', "output", "DIR", Completes::Folders, kAnyValue, true, false, kWiggle,
               "the folder for the frames: made when missing, refused unless empty"},
    OptionSpec{Option::Output, 'o', "output", "OUT", Completes::Files, kAnyValue, true, false, kDemoScene,
               "the file to write, in any format that `still` writes"},
    OptionSpec{Option::Output, 'o', "output", "OUT", Completes::Files, kAnyValue, true, false, kStars,
               "the .csv file to write; an existing one is replaced once the new one is complete"},
    OptionSpec{Option::Output, 'o', "output", "OUT", Completes::Files, kAnyValue, true, false, kMotion,
               "the .mp4 or .gif to write, or a folder for the frames, refused unless empty or with --resume"},
    OptionSpec{Option::View, 0, "view", "VIEW", Completes::Choices, kViewChoices, false, false, kStill,
               "what to render; without it the view that the parameter file names, else the anaglyph"},
    OptionSpec{Option::Set, 0, "set", "KEY=VALUE", Completes::Parameters, kAnyValue, false, true, kRendering,
               "set one parameter, over the parameter file; may be given again (see `params`)"},
    OptionSpec{Option::ParamsFile, 0, "params", "FILE", Completes::Files, kAnyValue, false, false, kRendering,
               "read parameters from a text of key=value lines; keys it lacks keep their default"},
    OptionSpec{Option::Starless, 0, "starless", "FILE", Completes::Files, kAnyValue, false, false, kRendering,
               "with --stars, in place of IN: the picture without its stars, made elsewhere"},
    OptionSpec{Option::Stars, 0, "stars", "FILE", Completes::Files, kAnyValue, false, false, kRendering,
               "with --starless: the stars alone, on black and of the same size"},
    OptionSpec{Option::NoStars, 0, "no-stars", nullptr, Completes::Nothing, kAnyValue, false, false, kStill | kWiggle | kMotion,
               "leave the stars in the picture, as --set starSeparationEnabled=0 does"},
    OptionSpec{Option::DepthMap, 0, "depth-map", "FILE", Completes::Files, kAnyValue, false, false, kRendering,
               "blend a depth map (white is near) over the image's own: sets depthMapEnabled, and "
               "depthMapBlend to 1 where it is 0, unless --set says otherwise"},
    OptionSpec{Option::StarModel, 0, "star-model", "FILE", Completes::Files, kAnyValue, false, false, kRendering,
               "the learned model (ONNX) that separates stars; zr_stls.onnx beside the program without this option"},
    OptionSpec{Option::DepthModel, 0, "depth-model", "FILE", Completes::Files, kAnyValue, false, false, kRendering,
               "the learned model (ONNX) that estimates depth, for the parameter aiDepthWeight; zr_dmap.onnx "
               "beside the program without this option"},
    OptionSpec{Option::Bits, 0, "bits", "N", Completes::Choices, kStillBits, false, false, kStill,
               "bits of a sample, where the format leaves the choice"},
    OptionSpec{Option::Bits, 0, "bits", "N", Completes::Choices, kFrameBits, false, false, kWiggle | kMotion,
               "bits of a sample; 8 without this option"},
    OptionSpec{Option::Stretch, 0, "stretch", "MODE", Completes::Choices, kStretchChoices, false, false, kRendering,
               "auto (the default) brings linear data up by a midtones stretch, none takes them as they are"},
    OptionSpec{Option::Size, 0, "size", "WxH", Completes::Nothing, kAnyValue, false, false, kDemoScene,
               "size in pixels, 16 to 32768 a side; 1600x1067 without this option"},
    OptionSpec{Option::Size, 0, "size", "WxH", Completes::Nothing, kAnyValue, false, false, kScript,
               "size in pixels of the picture to fly over, 16 to 32768 a side; 1600x1067 without this option"},
    OptionSpec{Option::Wiggle, 0, "wiggle", nullptr, Completes::Nothing, kAnyValue, false, false, kMotion,
               "render the parallax motion, as long as the parameter wiggleFrames says"},
    OptionSpec{Option::Flyby, 0, "flyby", "SCRIPT", Completes::Files, kAnyValue, false, false, kMotion,
               "render the flight that the file tells; one without commands gives the built-in flight"},
    OptionSpec{Option::ScriptSize, 0, "script-size", "WxH", Completes::Nothing, kAnyValue, false, false, kMotion,
               "size of the picture that the script was written for: its path is brought to the size of IN"},
    OptionSpec{Option::Stereo, 0, "stereo", "FORMAT", Completes::Choices, kStereoChoices, false, false, kMotion,
               "how both eyes travel in one picture: flat (the default), red/cyan, side by side in full or half "
               "width, or one above the other"},
    OptionSpec{Option::Size, 0, "size", "WxH", Completes::Nothing, kAnyValue, false, false, kMotion,
               "fit the frames into this box, with black around them, 16 to 32768 pixels a side, without enlarging; the picture's size without "
               "this option"},
    OptionSpec{Option::Fps, 0, "fps", "N", Completes::Nothing, kAnyValue, false, false, kMotion,
               "frames a second, 1 to 240; without it what the script or the parameter wiggleFps says"},
    OptionSpec{Option::Frames, 0, "frames", "A:B", Completes::Nothing, kAnyValue, false, false, kMotion,
               "render the frames from A on and before B only, counted from 0; either may be left out, and B may lie beyond the end"},
    OptionSpec{Option::Vr180, 0, "vr180", nullptr, Completes::Nothing, kAnyValue, false, false, kMotion,
               "a side-by-side .mp4 that VR180 players know for one"},
    OptionSpec{Option::AppleSpatial, 0, "apple-spatial", nullptr, Completes::Nothing, kAnyValue, false, false, kMotion,
               "a side-by-side .mp4 that Apple's players know for a spatial video"},
    OptionSpec{Option::Resume, 0, "resume", nullptr, Completes::Nothing, kAnyValue, false, false, kMotion,
               "keep the complete frames that the folder holds and render the others"},
    OptionSpec{Option::Seed, 0, "seed", "N", Completes::Nothing, kAnyValue, false, false, kDemoScene,
               "the scene to paint, a whole number from 0; 1 without this option"},
    OptionSpec{Option::Truth, 0, "truth", "DIR", Completes::Folders, kAnyValue, false, false, kDemoScene,
               "also write what is true of the scene into DIR: depth.xisf, starless.xisf, stars.csv"},
    OptionSpec{Option::Text, 0, "text", nullptr, Completes::Nothing, kAnyValue, false, false, kParams,
               "print the default parameter text instead, as --params reads it"},
    OptionSpec{Option::Json, 0, "json", nullptr, Completes::Nothing, kAnyValue, false, false, kAnyCommand | kNoCommand,
               "print progress and result as one JSON object a line"},
    OptionSpec{Option::Quiet, 'q', "quiet", nullptr, Completes::Nothing, kAnyValue, false, false, kAnyCommand | kNoCommand,
               "print neither progress nor warnings nor what was written"},
    OptionSpec{Option::Help, 'h', "help", nullptr, Completes::Nothing, kAnyValue, false, false, kAnyCommand | kNoCommand,
               "print help and end"},
    OptionSpec{Option::Version, 0, "version", nullptr, Completes::Nothing, kAnyValue, false, false, kAnyCommand | kNoCommand,
               "print the version and end"},
    OptionSpec{Option::Man, 0, "man", nullptr, Completes::Nothing, kAnyValue, false, false, kNoCommand, nullptr},
    OptionSpec{Option::Completion, 0, "completion", "SHELL", Completes::Choices, kShells, false, false, kNoCommand, nullptr},
};
// clang-format on

namespace detail {
/// No option stands twice in one command.
constexpr bool distinctInEachCommand()
{
    for (std::size_t i = 0; i < kOptions.size(); ++i)
        for (std::size_t k = i + 1; k < kOptions.size(); ++k)
            if (kOptions[i].id == kOptions[k].id && (kOptions[i].commands & kOptions[k].commands))
                return false;
    return true;
}
} // namespace detail
static_assert(detail::distinctInEachCommand());

} // namespace zrrender
