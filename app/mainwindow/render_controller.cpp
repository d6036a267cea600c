#include "app/mainwindow/render_controller.h"

#include <new>
#include <utility>

#include "app/mainwindow/depth_colors.h"
#include "app/mainwindow/shell_host.h"
#include "app/session/render_pipeline.h"
#include "engine/qt/zre_qt.h"

static constexpr int kSourceView = 0;
static constexpr int kDepthView = 1;

RenderController::RenderController(ShellHost& host, Show show)
    : m_host(host)
    , m_show(std::move(show))
{
}

void RenderController::onOutputModeChanged(int view)
{
    m_host.session().outputMode = view;
    renderNow();
}

void RenderController::showDocument()
{
    if (m_host.session().hasSource())
        renderNow();
    else
        m_show({}, false);
}

void RenderController::renderNow()
{
    if (!m_host.session().hasSource())
        return;
    m_host.showStatus("Updating...");
    m_host.busyRun([this] { updatePreview(); });
}

void RenderController::updatePreview()
{
    zre::Image picture;
    QString status;
    if (!m_host.pipeline().renderView(m_host.session().outputMode, {}, picture, &status))
        return;
    const int view = m_host.session().outputMode;
    QImage shown =
        view == kDepthView && m_depthInColor ? depthInColor(picture) : zre_qt::toQImage(picture);
    if (shown.isNull())
        throw std::bad_alloc(); // the toolkit's way of saying so is a null picture
    picture = zre::Image();     // what follows copies pixels again
    m_show(std::move(shown), view != kSourceView);
    m_host.showStatus(status);
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
        rendered = m_host.pipeline().renderView(m_host.session().outputMode, {}, out, nullptr);
    });
    return rendered;
}
