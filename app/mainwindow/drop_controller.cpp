#include "app/mainwindow/drop_controller.h"

#include <utility>

#include <QFileInfo>

#include "app/mainwindow/dropped_file.h"
#include "app/mainwindow/prompter.h"
#include "app/mainwindow/shell_host.h"
#include "app/session/session.h"

DropController::DropController(ShellHost& host, Open openImage, Open openDepthMap,
                               Open openColorProfile, OpenPair openPair)
    : m_host(host)
    , m_openImage(std::move(openImage))
    , m_openDepthMap(std::move(openDepthMap))
    , m_openColorProfile(std::move(openColorProfile))
    , m_openPair(std::move(openPair))
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
    case DropKind::Pair:
        m_openPair(file.other, file.path);
        break;
    case DropKind::TwoImages:
        openAsPairOrOne(file.path, file.other);
        break;
    case DropKind::ColorProfile:
        m_openColorProfile(file.path);
        break;
    case DropKind::Nothing:
        break;
    }
}

/// A name that fits a button; an ampersand is no mark of a key.
static QString shortened(QString name)
{
    constexpr qsizetype kLongest = 32;
    constexpr qsizetype kEnd = 14;
    if (name.size() > kLongest)
        name = name.left(kLongest - kEnd - 1) + QChar(0x2026) + name.right(kEnd);
    return name.replace('&', "&&");
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

void DropController::openAsPairOrOne(const QString& path, const QString& other)
{
    const QString name = QFileInfo(path).fileName();
    const QString otherName = QFileInfo(other).fileName();
    const std::optional<int> choice = m_host.prompter().choose(
        "Open Image",
        QString("Two images: %1 and %2.\n\nWhich one is the starless image, the other being its "
                "stars?")
            .arg(name, otherName),
        {shortened(name), shortened(otherName), "Neither: open only " + shortened(name)});
    if (choice == 0)
        m_openPair(other, path);
    else if (choice == 1)
        m_openPair(path, other);
    else if (choice == 2)
        m_openImage(path);
}
