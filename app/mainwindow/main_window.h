#pragma once

#include <memory>
#include <optional>
#include <vector>

#include <QMainWindow>

#include "app/mainwindow/busy_guard.h"
#include "app/mainwindow/color_pick_controller.h"
#include "app/mainwindow/color_profile_controller.h"
#include "app/mainwindow/depth_map_controller.h"
#include "app/mainwindow/document_controller.h"
#include "app/mainwindow/drop_controller.h"
#include "app/mainwindow/flyby_controller.h"
#include "app/mainwindow/flyby_script_controller.h"
#include "app/mainwindow/params_controller.h"
#include "app/mainwindow/playback_controller.h"
#include "app/mainwindow/preferences_controller.h"
#include "app/mainwindow/prompter.h"
#include "app/mainwindow/recent_controller.h"
#include "app/mainwindow/render_controller.h"
#include "app/mainwindow/shell_host.h"
#include "app/mainwindow/spatial_export_controller.h"
#include "app/mainwindow/stage_display.h"
#include "app/mainwindow/star_overlay_controller.h"
#include "app/mainwindow/star_table_controller.h"
#include "app/mainwindow/still_controller.h"
#include "app/mainwindow/video_export_controller.h"
#include "app/persist/appcfg.h"
#include "app/session/carry_over.h"
#include "app/session/render_pipeline.h"
#include "app/session/session.h"
#include "app/session/star_detection.h"

class MainToolbar;
class PreviewView;
class QActionGroup;
class QSplitter;

/// When an action can be used.
enum class Gate
{
    Always,
    NeedsImage,
    NeedsDepthMap,
    NeedsPlayback
};

/// The program's window: owns the session and the controllers, builds menus and bars, and forwards.
class MainWindow final : public QMainWindow, private ShellHost
{
    Q_OBJECT

public:
    /// With an empty `prompter` questions go through the desktop's dialogs.
    explicit MainWindow(std::unique_ptr<Prompter> prompter = nullptr);
    ~MainWindow() override;

    void newDocument() { m_documents.newDocument(); }
    bool loadImageFromPath(const QString& path) { return m_documents.loadImageFromPath(path); }
    void openProjectFromCommandLine(const QString& path);
    bool loadStarlessStarsPair(const QString& stars, const QString& starless)
    {
        return m_documents.loadStarlessStarsPair(stars, starless);
    }
    void addRecentFile(const QString& path) { m_documents.addRecentFile(path); }
    void addRecentPair(const QString& stars, const QString& starless)
    {
        m_documents.addRecentPair(stars, starless);
    }
    bool confirmPairReplace() { return m_documents.confirmPairReplace(); }
    bool confirmPairResize(int width, int height)
    {
        return m_documents.confirmPairResize(width, height);
    }
    void openBuiltInScene() { m_documents.openBuiltInScene(); }
    int askCarrySession(int width, int height)
    {
        return m_documents.askCarrySession(width, height);
    }
    void rescaleSessionTo(int oldWidth, int oldHeight, int newWidth, int newHeight)
    {
        rescaleSession(m_session, {oldWidth, oldHeight}, {newWidth, newHeight});
    }
    bool loadDepthMapFile(const QString& path) { return m_depthMaps.loadDepthMapFile(path); }
    bool loadColorProfileFile(const QString& path)
    {
        return m_colorProfiles.loadColorProfileFile(path);
    }
    void openRecentFile(const QString& path) { m_recent.openRecentFile(path); }
    void openRecentPair(const QString& entry) { m_recent.openRecentPair(entry); }
    void openRecentDepthMap(const QString& path) { m_recent.openRecentDepthMap(path); }
    void saveImage() { m_stills.saveImage(); }
    void encodeVideo(bool flyby) { m_videos.encodeVideo(flyby); }
    bool encodeSbsMotionMp4(const QString& ffmpeg, const QString& path, bool flyby,
                            const QList<QString>& extraArgs, const QString& failureTitle, int width)
    {
        return m_videos.encodeSbsMotionMp4({ffmpeg, path, flyby, extraArgs, failureTitle, width});
    }
    void exportVR180() { m_spatial.exportVR180(); }
    void exportAppleSpatial() { m_spatial.exportAppleSpatial(); }
    /// What the user is told once the window is up.
    void runStartupNotices();
    void warnIfNoFfmpeg() { m_preferences.warnIfNoFfmpeg(); }
    void applyIconColors();

    void syncParamsFromUi() { m_params.syncParamsFromUi(); }
    void syncUiFromParams() { m_params.syncUiFromParams(); }
    int activeColorRows() const { return m_params.activeColorRows(); }
    void setImageGatedSectionsEnabled(bool on) { m_params.setImageGatedSectionsEnabled(on); }
    void onParamsChanged();
    void onOutputModeChanged(int view);
    void onPlayWiggleToggled(bool on) { m_playback.onPlayWiggleToggled(on); }
    void onPlayFlybyToggled(bool on) { m_playback.onPlayFlybyToggled(on); }
    bool loadFlybyScriptFile(const QString& path) { return m_flyby.loadScriptFile(path); }
    void rescaleFlybyScript() { m_flyby.rescaleFlybyScript(); }
    bool maybeRescaleFlybyForSize(int width, int height, bool& rescale)
    {
        return m_documents.maybeRescaleFlybyForSize({width, height}, rescale);
    }
    void onStopClicked() { m_playback.onStopClicked(); }
    int playbackFps() const { return m_playback.playbackFps(); }
    bool refreshPlayback() { return m_playback.refreshPlayback(); }
    void stopPlayback(const QString& reason) override { m_playback.stopPlayback(reason); }
    int currentOutputMode() const { return m_session.outputMode; }
    bool renderCurrentViewFullRes(zre::Image& out);

    bool busyRun(const std::function<void()>& work) override;
    void renderNow() { m_render.renderNow(); }
    void refreshStarTableWindow() { m_starTable.refreshStarTableWindow(); }
    /// Whether something before the user needs the depth map, as the star table does in any view.
    bool depthInUse() const { return m_starTable.isOpen() || m_render.viewNeedsDepth(); }
    void stageStatus(int percent, const QString& text) override { m_stages.stage(percent, text); }
    void busyStatus(const QString& text) { m_stages.show(text); }
    void updatePreview() { m_render.updatePreview(); }

    void prepareInputs() { m_pipeline.prepareInputs(); }
    const zre::Image* cachedDepth() { return m_pipeline.cachedDepth(); }
    void computeCleanDepth(zre::Image& out) { m_pipeline.computeCleanDepth(out); }
    QString depthCacheKey(bool includeModel, bool includeAnchor) const
    {
        return m_pipeline.depthCacheKey(includeModel, includeAnchor);
    }
    bool buildLayerView(int view, zre::Image& out, QString* status)
    {
        return m_pipeline.buildLayerView(view, out, status);
    }
    const std::vector<zre::Star>* activeStars() const { return m_pipeline.activeStars(); }
    zre::StarDetectParams starDetectParams() const
    {
        return zre::starDetectParams(m_session.params);
    }
    float starPop() const { return m_session.params.starPop; }

protected:
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    struct ActionRow;
    struct GatedAction
    {
        QAction* action;
        Gate gate;
    };

    Session& session() override { return m_session; }
    RenderPipeline& pipeline() override { return m_pipeline; }
    Prompter& prompter() override { return *m_prompter; }
    bool isBusy() const override { return m_busy.active(); }
    void showStatus(const QString& text) override { m_stages.show(text); }
    void installProgress(const QString& title, const QString& text) override;
    void removeProgress() override { m_stages.removeProgress(); }
    void documentReplaced() override;
    void documentChanged(const zre::ZRParams& params, const QString& label) override;

    std::function<void(const QString&)> opener(bool (MainWindow::*open)(const QString&));
    std::function<void(const QString&, const QString&)> pairOpener();
    void buildMenus();
    void buildFileMenu();
    void buildControlPanel();
    QWidget* buildPreviewPane();
    void addHistoryActions(QMenu& menu);
    void addViewActions(QMenu& menu);
    void addRow(const ActionRow& row);
    QMenu& menuTitled(const QString& title);
    void updateGates();
    bool isOpen(Gate gate) const;
    void showZoom(double scale, bool fitted);
    void showReadout(QPointF inPicture);
    void showPlaybackFrame(QImage frame);

    void buildRecentMenu();
    void buildFlybyMenu();
    std::optional<FlybyController::Rescale> askRescale(const FlybyController::Rescale& suggested);
    void loadScript() { m_flyby.loadScript(); }
    void saveScript() { m_flyby.saveScript(); }
    void setOngoingWiggle(bool on) { m_flyby.setOngoingWiggle(on); }
    void setContinuousLoop(bool on) { m_flyby.setContinuousLoop(on); }
    void exportWiggle() { encodeVideo(false); }
    void exportFlyby() { encodeVideo(true); }
    void openImage() { m_documents.openImage(); }
    void openPair() { m_documents.openPair(); }
    void loadDepthMap() { m_depthMaps.loadDepthMap(); }
    void viewDepthMap() { m_depthMaps.viewDepthMap(); }
    void clearDepthMap() { m_depthMaps.clearDepthMap(); }
    void loadColorProfile() { m_colorProfiles.loadColorProfile(); }
    void saveColorProfile() { m_colorProfiles.saveColorProfile(); }
    void compareWithSource(bool on);
    void showDepthInColor(bool inColor) { m_render.setDepthInColor(inColor); }
    void showFoundStars(bool shown) { m_starOverlay.setAlwaysShown(shown); }
    void quit();
    void zoomIn();
    void zoomOut();
    void zoomToFit();
    void zoomToPixels();
    void showStarTable() { m_starTable.showStarTable(); }
    void pausePlayback() { m_playback.onPauseClicked(); }
    void previousFrame() { m_playback.step(-1); }
    void nextFrame() { m_playback.step(1); }
    void showScriptEditor() { m_flybyScript.showScriptEditor(); }
    void pickColor(int row) { m_colorPick.pickColor(row); }
    void showPreferences() { m_preferences.showPreferences(); }
    void pictureShown();
    void settingsChanged();
    void modelsChanged();
    void showTabHelp();
    void showShortcuts();
    void showAbout();

    Session m_session;
    RenderPipeline m_pipeline{m_session};
    std::unique_ptr<Prompter> m_prompter;
    BusyGuard m_busy;
    StageDisplay m_stages;
    PreviewView* m_preview; ///< owned by the window
    StarOverlayController m_starOverlay;
    RenderController m_render;
    ParamsController m_params;
    ColorPickController m_colorPick;
    PlaybackController m_playback;
    FlybyController m_flyby;
    DocumentController m_documents{*this};
    DepthMapController m_depthMaps{*this};
    ColorProfileController m_colorProfiles{*this};
    RecentController m_recent;
    DropController m_drops;
    StillController m_stills;
    VideoExportController m_videos;
    SpatialExportController m_spatial;
    StarTableController m_starTable;
    FlybyScriptController m_flybyScript;
    PreferencesController m_preferences;
    QSplitter* m_splitter = nullptr;  ///< owned by the window
    QWidget* m_transport = nullptr;   ///< owned by the window
    MainToolbar* m_toolbar = nullptr; ///< owned by the window
    QActionGroup* m_views = nullptr;  ///< owned by the window
    QMenu* m_recentMenu = nullptr;    ///< owned by the window
    std::vector<GatedAction> m_actions;
    bool m_starTrueColor = appcfg::starTrueColor(); ///< the setting as the pipeline knows it
};
