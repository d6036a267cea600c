#include "app/persist/appcfg.h"

#include <cstddef>
#include <type_traits>

#include <QUuid>

namespace appcfg {

template <typename T>
static T read(const Setting<T>& setting)
{
    return qvariant_cast<T>(stored(setting));
}

template <typename T>
static void write(const Setting<T>& setting, const std::type_identity_t<T>& value)
{
    store(setting, QVariant::fromValue(value));
}

QString defaultWorkFolder()
{
    return read(kSettings.defaultWorkFolder);
}

void setDefaultWorkFolder(const QString& folder)
{
    write(kSettings.defaultWorkFolder, folder);
}

QString ffmpegConfigured()
{
    return read(kSettings.ffmpegPath);
}

void setFfmpegConfigured(const QString& path)
{
    write(kSettings.ffmpegPath, path);
}

bool ffmpegWarningDismissed()
{
    return read(kSettings.ffmpegWarningDismissed);
}

void setFfmpegWarningDismissed(bool dismissed)
{
    write(kSettings.ffmpegWarningDismissed, dismissed);
}

bool showValuesAsPercent()
{
    return read(kSettings.showPercent);
}

void setShowValuesAsPercent(bool percent)
{
    write(kSettings.showPercent, percent);
}

int playbackCacheRamPercent()
{
    return read(kSettings.cacheRamPercent);
}

void setPlaybackCacheRamPercent(int percent)
{
    write(kSettings.cacheRamPercent, percent);
}

int flybyPreviewScalePercent()
{
    return read(kSettings.flybyScalePercent);
}

void setFlybyPreviewScalePercent(int percent)
{
    write(kSettings.flybyScalePercent, percent);
}

int playPointPreviewAhead()
{
    return read(kSettings.playPointAhead);
}

void setPlayPointPreviewAhead(int points)
{
    write(kSettings.playPointAhead, points);
}

bool playPointPreviewToEnd()
{
    return read(kSettings.playPointToEnd);
}

void setPlayPointPreviewToEnd(bool toEnd)
{
    write(kSettings.playPointToEnd, toEnd);
}

bool gpuPreview()
{
    return read(kSettings.gpuPreview);
}

void setGpuPreview(bool gpu)
{
    write(kSettings.gpuPreview, gpu);
}

bool starTrueColor()
{
    return read(kSettings.starTrueColor);
}

void setStarTrueColor(bool trueColor)
{
    write(kSettings.starTrueColor, trueColor);
}

bool autosaveEnabled()
{
    return read(kSettings.autosaveEnabled);
}

void setAutosaveEnabled(bool enabled)
{
    write(kSettings.autosaveEnabled, enabled);
}

int autosaveMinutes()
{
    return read(kSettings.autosaveMinutes);
}

void setAutosaveMinutes(int minutes)
{
    write(kSettings.autosaveMinutes, minutes);
}

bool updateAutoCheck()
{
    return read(kSettings.updateAutoCheck);
}

void setUpdateAutoCheck(bool automatic)
{
    write(kSettings.updateAutoCheck, automatic);
}

QString updateSkippedVersion()
{
    return read(kSettings.updateSkippedVersion);
}

void setUpdateSkippedVersion(const QString& version)
{
    write(kSettings.updateSkippedVersion, version);
}

double anaglyphBalance()
{
    return read(kSettings.anaglyphBalance);
}

void setAnaglyphBalance(double balance)
{
    write(kSettings.anaglyphBalance, balance);
}

double anaglyphCyanHue()
{
    return read(kSettings.anaglyphCyanHue);
}

void setAnaglyphCyanHue(double hue)
{
    write(kSettings.anaglyphCyanHue, hue);
}

QString aiModelConfigured()
{
    return read(kSettings.aiModel);
}

void setAiModelConfigured(const QString& path)
{
    write(kSettings.aiModel, path);
}

QString aiDepthModelConfigured()
{
    return read(kSettings.aiDepthModel);
}

void setAiDepthModelConfigured(const QString& path)
{
    write(kSettings.aiDepthModel, path);
}

QString gaiaCatalogConfigured()
{
    return read(kSettings.gaiaCatalog);
}

void setGaiaCatalogConfigured(const QString& path)
{
    write(kSettings.gaiaCatalog, path);
}

QString solveCatalogConfigured()
{
    return read(kSettings.solveCatalog);
}

void setSolveCatalogConfigured(const QString& path)
{
    write(kSettings.solveCatalog, path);
}

bool ongoingFlybyWiggle()
{
    return read(kSettings.ongoingFlybyWiggle);
}

void setOngoingFlybyWiggle(bool ongoing)
{
    write(kSettings.ongoingFlybyWiggle, ongoing);
}

bool flybyContinuousLoop()
{
    return read(kSettings.flybyContinuousLoop);
}

void setFlybyContinuousLoop(bool loop)
{
    write(kSettings.flybyContinuousLoop, loop);
}

bool starRingSpotlight()
{
    return read(kSettings.starRingSpotlight);
}

void setStarRingSpotlight(bool spotlight)
{
    write(kSettings.starRingSpotlight, spotlight);
}

bool pairReplaceNoticeHidden()
{
    return read(kSettings.pairReplaceNoticeHidden);
}

void setPairReplaceNoticeHidden(bool hidden)
{
    write(kSettings.pairReplaceNoticeHidden, hidden);
}

int depthEditPreviewScalePercent()
{
    return read(kSettings.depthEditScalePercent);
}

void setDepthEditPreviewScalePercent(int percent)
{
    write(kSettings.depthEditScalePercent, percent);
}

int themeMode()
{
    return read(kSettings.themeMode);
}

void setThemeMode(int mode)
{
    write(kSettings.themeMode, mode);
}

QString themeAccent()
{
    return read(kSettings.themeAccent);
}

void setThemeAccent(const QString& colour)
{
    write(kSettings.themeAccent, colour);
}

QString themeSectionTitleColor()
{
    return read(kSettings.themeSectionTitle);
}

void setThemeSectionTitleColor(const QString& colour)
{
    write(kSettings.themeSectionTitle, colour);
}

QByteArray splitterState()
{
    return read(kSettings.splitterState);
}

void setSplitterState(const QByteArray& state)
{
    write(kSettings.splitterState, state);
}

QByteArray windowGeometry()
{
    return read(kSettings.windowGeometry);
}

void setWindowGeometry(const QByteArray& geometry)
{
    write(kSettings.windowGeometry, geometry);
}

QByteArray starTableGeometry()
{
    return read(kSettings.starTableGeometry);
}

void setStarTableGeometry(const QByteArray& geometry)
{
    write(kSettings.starTableGeometry, geometry);
}

QByteArray scriptEditorGeometry()
{
    return read(kSettings.scriptEditorGeometry);
}

void setScriptEditorGeometry(const QByteArray& geometry)
{
    write(kSettings.scriptEditorGeometry, geometry);
}

QString lastTab()
{
    return read(kSettings.lastTab);
}

void setLastTab(const QString& title)
{
    write(kSettings.lastTab, title);
}

QString updateInstallId()
{
    QString kept = read(kSettings.updateInstallId);
    if (!QUuid::fromString(kept).isNull() && !kept.startsWith('{'))
        return kept;
    QString made = QUuid::createUuid().toString(QUuid::WithoutBraces);
    write(kSettings.updateInstallId, made);
    return made;
}

bool toolbarGroupShown(ToolbarGroup group)
{
    return read(kSettings.toolbarGroups[static_cast<std::size_t>(group)]);
}

void setToolbarGroupShown(ToolbarGroup group, bool shown)
{
    write(kSettings.toolbarGroups[static_cast<std::size_t>(group)], shown);
}

ExportChoices exportChoices()
{
    return {read(kSettings.exportFormat),       read(kSettings.exportStereo3d),
            read(kSettings.exportSizeIndex),    read(kSettings.exportCustomWidth),
            read(kSettings.exportCustomHeight), read(kSettings.exportKeepAspect),
            read(kSettings.exportFps)};
}

void setExportChoices(const ExportChoices& choices)
{
    write(kSettings.exportFormat, choices.format);
    write(kSettings.exportStereo3d, choices.stereo3d);
    write(kSettings.exportSizeIndex, choices.sizeIndex);
    write(kSettings.exportCustomWidth, choices.customWidth);
    write(kSettings.exportCustomHeight, choices.customHeight);
    write(kSettings.exportKeepAspect, choices.keepAspect);
    write(kSettings.exportFps, choices.fps);
}

QStringList recentList(RecentCategory category)
{
    return read(kSettings.recent[static_cast<std::size_t>(category)]);
}

void setRecentList(RecentCategory category, const QStringList& newestFirst)
{
    write(kSettings.recent[static_cast<std::size_t>(category)], newestFirst);
}

} // namespace appcfg
