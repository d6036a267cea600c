#pragma once

#include <functional>

#include <QImage>
#include <QPointer>
#include <QTimer>

#include "app/playback/frame_cache.h"
#include "app/session/flyby_path.h"

class QAction;
class ShellHost;
class TransportBar;

/// Plays the parallax motion or the flyby in the place of the still view.
class PlaybackController
{
public:
    /// What playing takes from the rest of the window.
    struct Hooks
    {
        std::function<void(QImage frame)> show;
        std::function<QSize()> viewport;       ///< of the view, in device pixels
        std::function<void()> syncParams;      ///< the session's parameters from the controls
        std::function<void()> renderNow;       ///< the still view again
        std::function<void()> activityChanged; ///< something plays, or nothing any more
    };

    /// The two checkable actions that start and stop a motion, and the window that dialogs stand
    /// above.
    struct Actions
    {
        QAction* wiggle = nullptr;
        QAction* flyby = nullptr;
    };

    PlaybackController(ShellHost& host, QWidget& window, Hooks hooks);

    /// Neither is owned; both are given before anything else is called.
    void setActions(const Actions& actions) { m_actions = actions; }
    /// The bar, once, as a child of `parent`.
    TransportBar& buildTransportBar(QWidget* parent);

    void onPlayWiggleToggled(bool on) { onToggled(false, on); }
    void onPlayFlybyToggled(bool on) { onToggled(true, on); }
    void onStopClicked();
    /// Plays what was played last, or pauses, or goes on.
    void onPlayClicked();
    /// Plays the flyby of the session from its start.
    void playFlyby();
    /// Pauses or goes on; nothing while nothing plays.
    void onPauseClicked();
    /// Pauses and shows the frame so many frames on, round the end.
    void step(int frames);
    void onAnimTick();

    bool isActive() const;
    /// Frames a second of what plays.
    int playbackFps() const;
    /// Builds the frames anew for what has changed while a motion plays; false when none does.
    /// Waits for a mouse button that is down.
    bool refreshPlayback();
    /// Ends what plays, tells that it was for `reason`, and shows the still view again.
    void stopPlayback(const QString& reason);
    /// Ends what plays in silence; the next still view is somebody else's to show.
    void dropPlayback();
    /// Another document, or none, stands in the session.
    void documentReplaced();

private:
    void onToggled(bool flyby, bool on);
    void startPlayback(bool flyby);
    void cancelPlaybackStart();
    bool buildFrameCache(bool flyby);
    void setTransportActive(bool active, const QString& what);
    void playFrom(int frame);
    void setPaused(bool paused);
    void showFrame(int frame);
    void updateTimeline();
    QString playingText() const;

    ShellHost& m_host;
    QWidget& m_window;
    Hooks m_hooks;
    Actions m_actions;
    QPointer<TransportBar> m_bar; ///< owned by its parent
    FrameCache m_cache;
    QTimer m_timer;
    QTimer m_refreshLater;
    bool m_flyby = false; ///< what plays, or was played last
    bool m_active = false;
    bool m_paused = false;
    bool m_dropping = false; ///< the actions are unchecked by what is under way
    bool m_loops = true;
    int m_frame = 0;         ///< that is shown
    QString m_builtInReason; ///< why the built-in flyby plays; empty when it does not
};
