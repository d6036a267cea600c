#include "app/mainwindow/render_controller.h"

#include <new>
#include <utility>

#include "app/mainwindow/shell_host.h"
#include "app/session/render_pipeline.h"
#include "engine/qt/zre_qt.h"

RenderController::RenderController(ShellHost& host, std::function<void(QImage)> show)
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
        m_show({});
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
    QImage shown = zre_qt::toQImage(picture);
    if (shown.isNull())
        throw std::bad_alloc(); // the toolkit's way of saying so is a null picture
    picture = zre::Image();     // what follows copies pixels again
    m_show(std::move(shown));
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
