#include "app/mainwindow/render_controller.h"

#include <new>
#include <optional>
#include <utility>

#include <QGuiApplication>

#include "app/mainwindow/depth_colors.h"
#include "app/mainwindow/shell_host.h"
#include "app/persist/appcfg.h"
#include "app/session/output_view.h"
#include "app/session/render_pipeline.h"
#include "engine/qt/zre_qt.h"

RenderController::RenderController(ShellHost& host, Hooks hooks)
    : m_host(host)
    , m_hooks(std::move(hooks))
{
    m_timer.setSingleShot(true);
    m_timer.setInterval(kDelayMs);
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { onRenderTimer(); });
}

bool paintsManyColors(const zre::ZRParams& params, int activeRows)
{
    constexpr int kFewRows = 3;
    return params.colorDepthEnabled && params.colorDepthWeight > 0.0f && activeRows > kFewRows;
}

void RenderController::onParamsChanged()
{
    if (!m_host.session().hasSource())
        return;
    m_host.showStatus("Updating...");
    m_timer.start();
}

// Work under way shows its stages in a dialog that lets timers run, and what it works on must stay.
void RenderController::onRenderTimer()
{
    if (m_host.isBusy())
        m_timer.start();
    else
        renderNow();
}

void RenderController::onOutputModeChanged(int view)
{
    m_host.session().outputMode = view;
    onRenderTimer();
}

void RenderController::showDocument()
{
    if (m_host.session().hasSource()) {
        renderNow();
        return;
    }
    m_timer.stop();
    m_hooks.show({}, false);
}

void RenderController::renderNow()
{
    if (!m_host.session().hasSource())
        return;
    m_timer.stop(); // this picture shows all that it waits for
    if (m_hooks.refreshPlayback && m_hooks.refreshPlayback())
        return;
    m_hooks.syncParams();
    m_host.showStatus("Updating...");
    const bool withProgress = deservesProgress();
    const bool separates = m_host.session().outputMode != kSourceView && !m_host.isBusy() &&
                           m_host.pipeline().separationPending();
    m_host.busyRun([&] {
        std::optional<ProgressScope> progress;
        if (separates)
            progress.emplace(m_host, "Separating stars from the image",
                             "Separating stars from the image");
        else if (withProgress)
            progress.emplace(m_host, "Updating depth map", "Building depth map...");
        if (m_hooks.depthInUse && m_hooks.depthInUse())
            m_host.pipeline().prepareStars();
        updatePreview();
    });
}

/// Never while a slider is dragged, and not within other work, which shows stages of its own.
bool RenderController::deservesProgress() const
{
    const Session& session = m_host.session();
    return paintsManyColors(session.params, m_hooks.activeColorRows()) &&
           QGuiApplication::mouseButtons() == Qt::NoButton && !m_host.isBusy() &&
           !needsNoDepth(session.outputMode) && !m_host.pipeline().standingDepth();
}

void RenderController::updatePreview()
{
    zre::Image picture;
    QString status;
    AnaglyphGains gains;
    appcfg::anaglyphTrim(gains.r, gains.g, gains.b);
    m_host.pipeline().setTrueColor(appcfg::starTrueColor());
    if (!m_host.pipeline().renderView(m_host.session().outputMode, gains, picture, &status))
        return;
    const int view = m_host.session().outputMode;
    QImage shown =
        view == kDepthView && m_depthInColor ? depthInColor(picture) : zre_qt::toQImage(picture);
    if (shown.isNull())
        throw std::bad_alloc(); // the toolkit's way of saying so is a null picture
    picture = zre::Image();     // what follows copies pixels again
    m_hooks.show(std::move(shown), view != kSourceView);
    const RenderPipeline& pipeline = m_host.pipeline();
    const QString ofStars = pipeline.starSeparationFailure();
    const QString ofModels = ofStars.isEmpty() ? pipeline.aiDepthFailure() : ofStars;
    const QString failure = view == kSourceView ? QString() : ofModels;
    m_host.showStatus(failure.isEmpty() ? status : status + "  -  " + failure);
    if (m_hooks.shown)
        m_hooks.shown();
}

bool RenderController::viewNeedsDepth() const
{
    constexpr int kFirst = 1;
    constexpr int kLast = 3;
    const int view = m_host.session().outputMode;
    return view >= kFirst && view <= kLast;
}

void RenderController::setDepthInColor(bool inColor)
{
    m_depthInColor = inColor;
    if (m_host.session().outputMode == kDepthView)
        renderNow();
}

bool RenderController::renderCurrentViewFullRes(zre::Image& out)
{
    bool rendered = false;
    m_host.busyRun([&] {
        m_host.pipeline().setTrueColor(appcfg::starTrueColor());
        rendered = m_host.pipeline().renderView(m_host.session().outputMode, {}, out, nullptr);
    });
    return rendered;
}
