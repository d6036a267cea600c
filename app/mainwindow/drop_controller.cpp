#include "app/mainwindow/drop_controller.h"

#include <utility>

#include <QFileInfo>

#include "app/mainwindow/dropped_file.h"
#include "app/mainwindow/prompter.h"
#include "app/mainwindow/shell_host.h"
#include "app/session/session.h"

DropController::DropController(ShellHost& host, Open openImage, Open openDepthMap,
                               Open openColorProfile)
    : m_host(host)
    , m_openImage(std::move(openImage))
    , m_openDepthMap(std::move(openDepthMap))
    , m_openColorProfile(std::move(openColorProfile))
{
}

QString DropController::offer(const QList<QUrl>& urls) const
{
    return m_host.isBusy() ? QString() : dropText(droppedFile(urls, m_host.session().hasSource()));
}

void DropController::take(const QList<QUrl>& urls)
{
    const DroppedFile file = droppedFile(urls, m_host.session().hasSource());
    switch (file.kind) {
    case DropKind::Image:
        m_openImage(file.path);
        break;
    case DropKind::DepthMap:
        m_openDepthMap(file.path);
        break;
    case DropKind::ImageOrDepthMap:
        openAsEither(file.path);
        break;
    case DropKind::ColorProfile:
        m_openColorProfile(file.path);
        break;
    case DropKind::Nothing:
        break;
    }
}

void DropController::openAsEither(const QString& path)
{
    const std::optional<int> choice =
        m_host.prompter().choose("Open Image", "What is " + QFileInfo(path).fileName() + "?",
                                 {"A depth map for this image", "A new image"});
    if (choice == 0)
        m_openDepthMap(path);
    else if (choice == 1)
        m_openImage(path);
}
