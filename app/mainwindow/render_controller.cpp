#include "app/mainwindow/render_controller.h"

#include "app/mainwindow/shell_host.h"
#include "app/session/render_pipeline.h"
#include "engine/qt/zre_qt.h"

RenderController::RenderController(ShellHost& host, std::function<void(const QImage&)> show)
    : m_host(host)
    , m_show(std::move(show))
{
}

void RenderController::onOutputModeChanged(int view)
{
    m_host.session().outputMode = view;
    renderNow();
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
    m_show(zre_qt::toQImage(picture));
    m_host.showStatus(status);
}

bool RenderController::renderCurrentViewFullRes(zre::Image& out)
{
    bool rendered = false;
    m_host.busyRun([&] {
        rendered = m_host.pipeline().renderView(m_host.session().outputMode, {}, out, nullptr);
    });
    return rendered;
}
