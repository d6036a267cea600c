#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVariant>

#include "app/persist/appcfg_table.h"

/// The user's settings, as opposed to a document's: the only door to the store.
///
/// Every call opens the store for itself, so all of them may come from any thread. What a getter
/// returns keeps to the limits of `appcfg_table.h` whatever the store holds; a value of the wrong
/// kind reads as the initial one. A setter binds what it stores in the same way.
namespace appcfg {

QString defaultWorkFolder();
void setDefaultWorkFolder(const QString& folder);
QString ffmpegConfigured();
void setFfmpegConfigured(const QString& path);
bool ffmpegWarningDismissed();
void setFfmpegWarningDismissed(bool dismissed);
bool showValuesAsPercent();
void setShowValuesAsPercent(bool percent);
/// Share of the memory that finished frames may fill, 20 to 80 percent.
int playbackCacheRamPercent();
void setPlaybackCacheRamPercent(int percent);
/// Size of the frames of a flight's preview: 10 to 100 percent, 0 for automatic.
int flybyPreviewScalePercent();
void setFlybyPreviewScalePercent(int percent);
/// 1 to 20.
int playPointPreviewAhead();
void setPlayPointPreviewAhead(int points);
bool playPointPreviewToEnd();
void setPlayPointPreviewToEnd(bool toEnd);
bool gpuPreview();
void setGpuPreview(bool gpu);
bool starTrueColor();
void setStarTrueColor(bool trueColor);
bool autosaveEnabled();
void setAutosaveEnabled(bool enabled);
/// 5 to 60.
int autosaveMinutes();
void setAutosaveMinutes(int minutes);
bool updateAutoCheck();
void setUpdateAutoCheck(bool automatic);
QString updateSkippedVersion();
void setUpdateSkippedVersion(const QString& version);
/// A random UUID without braces, made at the first call and kept.
QString updateInstallId();
/// The glasses tint, each -1 to 1, 0 when neutral.
double anaglyphBalance();
void setAnaglyphBalance(double balance);
double anaglyphCyanHue();
void setAnaglyphCyanHue(double hue);
QString aiModelConfigured();
void setAiModelConfigured(const QString& path);
QString aiDepthModelConfigured();
void setAiDepthModelConfigured(const QString& path);
QString gaiaCatalogConfigured();
void setGaiaCatalogConfigured(const QString& path);
QString solveCatalogConfigured();
void setSolveCatalogConfigured(const QString& path);
bool ongoingFlybyWiggle();
void setOngoingFlybyWiggle(bool ongoing);
bool flybyContinuousLoop();
void setFlybyContinuousLoop(bool loop);
bool starRingSpotlight();
void setStarRingSpotlight(bool spotlight);
bool pairReplaceNoticeHidden();
void setPairReplaceNoticeHidden(bool hidden);
/// 1 to 100 percent, 0 for automatic.
int depthEditPreviewScalePercent();
void setDepthEditPreviewScalePercent(int percent);

/// 0 as the desktop, 1 light, 2 dark.
int themeMode();
void setThemeMode(int mode);
/// "#rrggbb", or empty for the theme's own.
QString themeAccent();
void setThemeAccent(const QString& colour);
QString themeSectionTitleColor();
void setThemeSectionTitleColor(const QString& colour);

/// The parts of the main toolbar that the user can switch off.
enum class ToolbarGroup
{
    View,
    LoadSave,
    Export,
    Play,
    Flyby,
    Tools
};
bool toolbarGroupShown(ToolbarGroup group);
void setToolbarGroupShown(ToolbarGroup group, bool shown);

/// State of the main window as its widgets save it; they refuse what is not theirs.
QByteArray splitterState();
void setSplitterState(const QByteArray& state);
QByteArray windowGeometry();
void setWindowGeometry(const QByteArray& geometry);
/// Of the star table.
QByteArray starTableGeometry();
void setStarTableGeometry(const QByteArray& geometry);
/// Of the script editor.
QByteArray scriptEditorGeometry();
void setScriptEditorGeometry(const QByteArray& geometry);
/// Title of the tab in front: an index would shift with each new tab.
QString lastTab();
void setLastTab(const QString& title);

/// What was chosen last for a video.
struct ExportChoices
{
    int format = 0;    ///< 0 to 1
    int stereo3d = 0;  ///< 0 to 4
    int sizeIndex = 0; ///< 0 to 8
    int customWidth = 1920;
    int customHeight = 1080; ///< both 16 to 16384 pixels
    bool keepAspect = true;
    int fps = 0; ///< 1 to 120; 0 for the motion's own
    bool operator==(const ExportChoices&) const = default;
};
ExportChoices exportChoices();
void setExportChoices(const ExportChoices& choices);

/// The kinds of files that the program remembers.
enum class RecentCategory
{
    Images,
    Pairs,
    Projects,
    DepthMaps,
    Scripts,
    ColorDepth
};
QStringList recentList(RecentCategory category);
void setRecentList(RecentCategory category, const QStringList& newestFirst);
/// Gives the list that old versions kept of files of all kinds, and removes it from the store.
QStringList takeOldRecentFiles();

// What follows from the settings.

/// The program `ffmpeg` of the search path; empty without one.
QString ffmpegDetected();
/// The configured program while its file exists, else the one of the search path.
QString ffmpegResolved();
bool ffmpegAvailable();
QString aiDepthModelDefault();
QString aiDepthModelResolved();
QString gaiaCatalogDefault();
QString gaiaCatalogResolved();
QString solveCatalogResolved();
/// Where downloaded star packs lie; empty when the user has no writable folder.
QString userCatalogDir();
QString starPackDirResolved();
QString starPackScanDir();
/// Gains of the red, green and blue channel of an anaglyph on the screen, from the glasses tint.
void anaglyphTrim(double& r, double& g, double& b);

/// Which folder a file dialog opens in when both exist.
enum class Preferred
{
    WorkFolder, ///< the default work folder
    LastUsed    ///< the folder last used under the dialog's key
};
/// `key` is that of one of the dialog rows of `kSettings`.
void rememberDialogPath(const QString& key, const QString& path);
QString lastDialogPath(const QString& key);
/// Where a file dialog opens: a folder, with `suggestedName` appended unless it is empty. The other
/// folder serves where the preferred one is not there; without either it is the name alone.
QString dialogStartPath(const QString& key, const QString& suggestedName, Preferred preferred);

/// Keeps the settings of this run in `folder` instead of the user's own store.
void useStoreIn(const QString& folder);

/// The stored value of a row, bound to what the row allows.
QVariant stored(const Row& row);
/// Binds `value` to what the row allows, and stores it.
void store(const Row& row, const QVariant& value);

} // namespace appcfg
