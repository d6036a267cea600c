#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <type_traits>

class QByteArray;
class QString;
template <typename T>
class QList;

namespace appcfg {

enum class Kind
{
    Flag,
    Whole,
    WholeOrAutomatic, ///< 0 stands for automatic, whatever the limits
    Real,             ///< a stored value outside the limits reads as the initial one
    Text,
    Colour, ///< "#rrggbb", or empty for the program's own choice
    Bytes,  ///< opaque state of a window; `max` is its largest size
    List    ///< of texts, none empty; `max` is the largest number of entries
};

/// One setting: its key, and what a value must be to count. Numbers keep to `min` and `max`.
struct Row
{
    const char* key;
    Kind kind;
    double initial;
    double min;
    double max;
};

/// A row whose values are of type `T`.
template <typename T>
struct Setting : Row
{
};

constexpr Setting<bool> flag(const char* key, bool initial)
{
    return {{key, Kind::Flag, initial ? 1.0 : 0.0, 0.0, 1.0}};
}

constexpr Setting<int> whole(const char* key, int initial, int min, int max)
{
    return {{key, Kind::Whole, double(initial), double(min), double(max)}};
}

constexpr Setting<int> wholeOrAutomatic(const char* key, int min, int max)
{
    return {{key, Kind::WholeOrAutomatic, 0.0, double(min), double(max)}};
}

constexpr Setting<double> real(const char* key, double initial, double min, double max)
{
    return {{key, Kind::Real, initial, min, max}};
}

constexpr Setting<QString> text(const char* key)
{
    return {{key, Kind::Text, 0.0, 0.0, 0.0}};
}

constexpr Setting<QString> colour(const char* key)
{
    return {{key, Kind::Colour, 0.0, 0.0, 0.0}};
}

constexpr Setting<QByteArray> bytes(const char* key)
{
    constexpr double kLargestState = 65536.0;
    return {{key, Kind::Bytes, 0.0, 0.0, kLargestState}};
}

constexpr Setting<QList<QString>> list(const char* key, int entries)
{
    return {{key, Kind::List, 0.0, 0.0, double(entries)}};
}

inline constexpr int kRecentEntries = 20;

/// Every setting of the program; no key stands anywhere else.
struct Settings
{
    Setting<QString> defaultWorkFolder = text("dialogs/defaultWorkFolder");
    /// The path that each kind of file dialog was left with.
    Setting<QString> imageDialog = text("dialogs/image");
    Setting<QString> pairDialog = text("dialogs/pair");
    Setting<QString> depthMapDialog = text("dialogs/depthMap");
    Setting<QString> colorDepthDialog = text("dialogs/colorDepth");
    Setting<QString> exportDialog = text("dialogs/export");
    Setting<QString> projectDialog = text("dialogs/project");
    Setting<QString> scriptDialog = text("lastScriptPath");

    Setting<QString> ffmpegPath = text("ffmpeg/path");
    Setting<bool> ffmpegWarningDismissed = flag("ffmpeg/warnDismissed", false);
    Setting<bool> showPercent = flag("ui/showPercent", true);
    Setting<int> cacheRamPercent = whole("cache/ramPercent", 80, 20, 80);
    Setting<int> flybyScalePercent = wholeOrAutomatic("preview/flybyScalePercent", 10, 100);
    Setting<int> playPointAhead = whole("preview/playPointAhead", 4, 1, 20);
    Setting<bool> playPointToEnd = flag("preview/playPointToEnd", false);
    Setting<bool> gpuPreview = flag("preview/gpu3d", true);
    Setting<bool> starTrueColor = flag("stars/trueColor", true);
    Setting<bool> autosaveEnabled = flag("autosave/enabled", true);
    Setting<int> autosaveMinutes = whole("autosave/minutes", 10, 5, 60);
    Setting<bool> updateAutoCheck = flag("update/autoCheck", true);
    Setting<QString> updateSkippedVersion = text("update/skippedVersion");
    Setting<QString> updateInstallId = text("update/installId");
    Setting<double> anaglyphBalance = real("view/anaglyphBalance", 0.0, -1.0, 1.0);
    Setting<double> anaglyphCyanHue = real("view/anaglyphCyanHue", 0.0, -1.0, 1.0);
    Setting<QString> aiModel = text("ai/modelPath");
    Setting<QString> aiDepthModel = text("ai/depthModelPath");
    Setting<QString> gaiaCatalog = text("catalog/gaiaPath");
    Setting<QString> solveCatalog = text("catalog/solvePath");
    Setting<bool> ongoingFlybyWiggle = flag("flyby/ongoingWiggle", true);
    Setting<bool> flybyContinuousLoop = flag("flyby/continuousLoop", true);
    Setting<bool> starRingSpotlight = flag("overlay/ringSpotlight", false);
    Setting<bool> pairReplaceNoticeHidden = flag("notices/pairReplaceHidden", false);
    Setting<int> depthEditScalePercent = wholeOrAutomatic("depthedit/previewScale", 1, 100);

    Setting<int> themeMode = whole("theme/mode", 0, 0, 2);
    Setting<QString> themeAccent = colour("theme/accent");
    Setting<QString> themeSectionTitle = colour("theme/sectionTitleColor");

    /// In the order of `ToolbarGroup`.
    std::array<Setting<bool>, 6> toolbarGroups{
        flag("ui/toolbar/view", true),   flag("ui/toolbar/loadSave", true),
        flag("ui/toolbar/export", true), flag("ui/toolbar/play", true),
        flag("ui/toolbar/flyby", true),  flag("ui/toolbar/tools", true)};
    Setting<QByteArray> splitterState = bytes("ui/splitterState");
    Setting<QByteArray> windowGeometry = bytes("ui/windowGeometry");
    Setting<QByteArray> starTableGeometry = bytes("ui/starTableGeometry");
    Setting<QByteArray> scriptEditorGeometry = bytes("ui/scriptEditorGeometry");
    Setting<QString> lastTab = text("ui/lastTab");

    Setting<int> exportFormat = whole("export/format", 0, 0, 1);
    Setting<int> exportStereo3d = whole("export/stereo3d", 0, 0, 4);
    Setting<int> exportSizeIndex = whole("export/sizeIndex", 0, 0, 8);
    Setting<int> exportCustomWidth = whole("export/customW", 1920, 16, 16384);
    Setting<int> exportCustomHeight = whole("export/customH", 1080, 16, 16384);
    Setting<bool> exportKeepAspect = flag("export/keepAspect", true);
    Setting<int> exportFps = whole("export/fps", 0, 0, 120);

    /// In the order of `RecentCategory`.
    std::array<Setting<QList<QString>>, 6> recent{
        list("recent/images", kRecentEntries),   list("recent/pairs", kRecentEntries),
        list("recent/projects", kRecentEntries), list("recent/depthmaps", kRecentEntries),
        list("recent/scripts", kRecentEntries),  list("recent/colordepth", kRecentEntries)};
    /// The single list of old versions.
    Setting<QList<QString>> recentFiles = list("recentFiles", 1000);
};

inline constexpr Settings kSettings;

/// The table once more as plain rows, for what treats all settings alike.
inline auto allSettings()
{
    static_assert(std::is_trivially_copyable_v<Settings> && sizeof(Setting<int>) == sizeof(Row));
    return std::bit_cast<std::array<Row, sizeof(Settings) / sizeof(Row)>>(kSettings);
}

} // namespace appcfg
