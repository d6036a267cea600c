#include "app/mainwindow/playback_controller.h"

#include <utility>

#include <QAction>
#include <QGuiApplication>
#include <QScopedValueRollback>

#include "app/mainwindow/shell_host.h"
#include "app/persist/appcfg.h"
#include "app/playback/build_dialog.h"
#include "app/playback/frame_cache_key.h"
#include "app/playback/preview_scale.h"
#include "app/playback/transport_bar.h"
#include "app/session/motion.h"
#include "app/session/render_pipeline.h"
#include "app/session/session.h"

namespace {

struct MotionWords
{
    const char* name;
    const char* preparing;
    const char* playing;
};

constexpr MotionWords kWiggleWords{"parallax motion", "Preparing parallax motion",
                                   "Parallax motion playing..."};
constexpr MotionWords kFlybyWords{"flyby", "Preparing flyby", "Flyby playing..."};

constexpr const char* kPaused = "Paused.";

const MotionWords& wordsOf(bool flyby)
{
    return flyby ? kFlybyWords : kWiggleWords;
}

} // namespace

PlaybackController::PlaybackController(ShellHost& host, QWidget& window, Hooks hooks)
    : m_host(host)
    , m_window(window)
    , m_hooks(std::move(hooks))
{
    constexpr int kRefreshMs = 120;
    m_timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { onAnimTick(); });
    m_refreshLater.setSingleShot(true);
    m_refreshLater.setInterval(kRefreshMs);
    QObject::connect(&m_refreshLater, &QTimer::timeout, &m_refreshLater,
                     [this] { refreshPlayback(); });
}

TransportBar& PlaybackController::buildTransportBar(QWidget* parent)
{
    m_bar = new TransportBar(parent);
    QObject::connect(m_bar, &TransportBar::playClicked, &m_timer, [this] { onPlayClicked(); });
    QObject::connect(m_bar, &TransportBar::stopClicked, &m_timer, [this] { onStopClicked(); });
    QObject::connect(m_bar, &TransportBar::scrubbing, &m_timer, [this](bool held) {
        if (held)
            m_timer.stop();
        else if (m_active && !m_paused)
            m_timer.start();
    });
    QObject::connect(m_bar, &TransportBar::frameWanted, &m_timer, [this](int frame) {
        if (m_active && !m_host.isBusy())
            showFrame(frame);
    });
    return *m_bar;
}

bool PlaybackController::isActive() const
{
    return m_actions.wiggle->isChecked() || m_actions.flyby->isChecked();
}

int PlaybackController::playbackFps() const
{
    constexpr int kUsual = 24;
    const MotionInputs& inputs = m_cache.inputs();
    int fps = m_host.session().params.wiggleFps;
    if (m_flyby && !inputs.cameras.empty() && inputs.cameras.front().fps > 0)
        fps = inputs.cameras.front().fps;
    return fps < 1 ? kUsual : fps;
}

void PlaybackController::onToggled(bool flyby, bool on)
{
    if (m_dropping)
        return;
    if (on) {
        startPlayback(flyby);
    } else if (!isActive()) {
        dropPlayback();
        m_hooks.renderNow();
    }
}

void PlaybackController::startPlayback(bool flyby)
{
    QAction& other = flyby ? *m_actions.wiggle : *m_actions.flyby;
    other.setChecked(false);
    if (m_host.isBusy() || !m_host.session().hasSource()) {
        cancelPlaybackStart();
        return;
    }
    m_timer.stop();
    m_flyby = flyby;
    if (!buildFrameCache(flyby) || m_cache.frames() == 0) {
        cancelPlaybackStart();
        return;
    }
    setTransportActive(true, wordsOf(flyby).name);
    playFrom(0);
}

/// As if the motion had never been asked for.
void PlaybackController::cancelPlaybackStart()
{
    dropPlayback();
    m_host.showStatus("Playback cancelled.");
    if (!m_host.isBusy() && m_host.session().hasSource())
        m_hooks.renderNow();
}

void PlaybackController::playFrom(int frame)
{
    m_timer.setInterval(frameIntervalMs(playbackFps()));
    if (!m_paused)
        m_timer.start();
    m_host.showStatus(m_paused ? QString(kPaused) : playingText());
    showFrame(frame);
}

QString PlaybackController::playingText() const
{
    const int built = m_cache.planned();
    const int all = m_cache.frames();
    const QString cached = built < all
                               ? QString("%1 of %2 frames fit into the memory for playback, the "
                                         "others are drawn as they come")
                                     .arg(built)
                                     .arg(all)
                               : QString(all == 1 ? "%1 frame" : "%1 frames").arg(all);
    const QString text = QString("%1  %2").arg(wordsOf(m_flyby).playing, cached);
    return m_builtInReason.isEmpty() ? text : QString("%1.  %2").arg(text, m_builtInReason);
}

bool PlaybackController::buildFrameCache(bool flyby)
{
    bool stands = false;
    m_hooks.syncParams();
    m_host.busyRun([&] {
        Session& session = m_host.session();
        RenderPipeline& pipeline = m_host.pipeline();
        pipeline.setTrueColor(appcfg::starTrueColor());
        const FlybyOptions options{appcfg::ongoingFlybyWiggle(), appcfg::flybyContinuousLoop()};
        m_loops = !flyby || options.continuousLoop;
        MotionInputs inputs = motionInputs(session, pipeline, flyby, options, &m_builtInReason);
        if (!inputs.depth) {
            m_cache.releaseFrames();
            stands = true;
            return;
        }
        FrameCache::Order order;
        order.fraction =
            flyby ? flybyPreviewFraction(appcfg::flybyPreviewScalePercent(), m_hooks.viewport(),
                                         {inputs.working->width, inputs.working->height})
                  : 1.0;
        order.key = frameCacheKey(session, pipeline, inputs, options, order.fraction);
        order.imagesKey = motionImagesKey(session, pipeline, inputs);
        order.ramPercent = appcfg::playbackCacheRamPercent();
        BuildDialog dialog(wordsOf(flyby).preparing, &m_window);
        stands = m_cache.buildFrameCache(std::move(inputs), order, [&](int done, int planned) { //
            return dialog.advance(done, planned);
        });
    });
    if (!stands)
        m_cache.releaseFrames(); // memory may have run out half way
    return stands;
}

void PlaybackController::setTransportActive(bool active, const QString& what)
{
    m_active = active;
    m_paused = false;
    if (m_bar)
        m_bar->setTransportActive(active, what);
    m_hooks.activityChanged();
}

void PlaybackController::onStopClicked()
{
    m_actions.wiggle->setChecked(false);
    m_actions.flyby->setChecked(false);
}

void PlaybackController::onPlayClicked()
{
    if (m_active)
        setPaused(!m_paused);
    else
        (m_flyby ? m_actions.flyby : m_actions.wiggle)->setChecked(true);
}

void PlaybackController::playFlyby()
{
    if (!m_actions.flyby->isChecked()) {
        m_actions.flyby->setChecked(true);
        return;
    }
    m_paused = false;
    m_frame = 0;
    m_bar->setPaused(false);
    refreshPlayback();
}

void PlaybackController::onPauseClicked()
{
    if (m_active)
        setPaused(!m_paused);
}

void PlaybackController::step(int frames)
{
    if (!m_active || m_host.isBusy() || m_cache.frames() == 0)
        return;
    if (!m_paused)
        setPaused(true);
    const int count = m_cache.frames();
    showFrame(((m_frame + frames) % count + count) % count);
}

void PlaybackController::setPaused(bool paused)
{
    m_paused = paused;
    m_bar->setPaused(paused);
    if (paused)
        m_timer.stop();
    else
        m_timer.start();
    m_host.showStatus(paused ? QString(kPaused) : playingText());
    if (!paused && !m_loops && m_frame == m_cache.frames() - 1 && !m_host.isBusy())
        showFrame(0); // at its end there is nothing to go on with
}

void PlaybackController::onAnimTick()
{
    if (m_host.isBusy() || m_cache.frames() == 0)
        return;
    const int last = m_cache.frames() - 1;
    if (m_frame < last)
        showFrame(m_frame + 1);
    else if (m_loops)
        showFrame(0);
    if (!m_loops && m_frame >= last)
        onStopClicked();
}

void PlaybackController::showFrame(int frame)
{
    QImage picture = m_cache.frameAt(frame);
    if (!picture.isNull())
        m_hooks.show(std::move(picture));
    m_frame = frame;
    updateTimeline();
}

void PlaybackController::updateTimeline()
{
    if (m_bar)
        m_bar->updateTimeline(m_frame, m_cache.frames(), playbackFps());
}

bool PlaybackController::refreshPlayback()
{
    if (!isActive())
        return false;
    if (m_host.isBusy() || QGuiApplication::mouseButtons() != Qt::NoButton) {
        m_refreshLater.start();
        return true;
    }
    m_refreshLater.stop();
    if (!buildFrameCache(m_flyby) || m_cache.frames() == 0) {
        cancelPlaybackStart();
        return true;
    }
    playFrom(m_frame % m_cache.frames());
    return true;
}

void PlaybackController::dropPlayback()
{
    m_refreshLater.stop();
    m_timer.stop();
    const QScopedValueRollback<bool> dropping(m_dropping, true);
    m_actions.wiggle->setChecked(false);
    m_actions.flyby->setChecked(false);
    m_cache.releaseFrames();
    setTransportActive(false, {});
}

void PlaybackController::stopPlayback(const QString& reason)
{
    if (!isActive())
        return;
    dropPlayback();
    m_hooks.renderNow();
    m_host.showStatus("Playback stopped: " + reason + ".");
}

void PlaybackController::documentReplaced()
{
    dropPlayback();
    m_cache.clearScaledPreviewInputs();
}
