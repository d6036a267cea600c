#include "app/mainwindow/dropped_file.h"

#include <QFileInfo>
#include <QRegularExpression>

#include "app/mainwindow/openable_file.h"

static DropKind kindOfImage(const QString& path, bool imageOpen)
{
    static const QRegularExpression endsInDepth("(^|[^a-z])depth([ _-]?map)?$");
    static const QRegularExpression mayBeDepth(
        "depth|(^|[^a-z])(z[ _-]?map|d[ _-]?map|disparity|height[ _-]?map)($|[^a-z])");
    if (!imageOpen)
        return DropKind::Image;
    const QString name = QFileInfo(path).completeBaseName().toLower();
    if (endsInDepth.match(name).hasMatch())
        return DropKind::DepthMap;
    return mayBeDepth.match(name).hasMatch() ? DropKind::ImageOrDepthMap : DropKind::Image;
}

static DropKind kindOf(const QString& path, bool imageOpen)
{
    if (isOpenableImage(path))
        return kindOfImage(path, imageOpen);
    const QFileInfo file(path);
    const bool profile = file.suffix().compare("zrcol", Qt::CaseInsensitive) == 0;
    return profile && imageOpen && file.isFile() ? DropKind::ColorProfile : DropKind::Nothing;
}

DroppedFile droppedFile(const QList<QUrl>& urls, bool imageOpen)
{
    for (const QUrl& url : urls) {
        const QString path = url.isLocalFile() ? url.toLocalFile() : QString();
        const DropKind kind = kindOf(path, imageOpen);
        if (kind != DropKind::Nothing)
            return {kind, path};
    }
    return {};
}

QString dropText(const DroppedFile& file)
{
    const QString name = QFileInfo(file.path).fileName();
    switch (file.kind) {
    case DropKind::Image:
        return "Open " + name;
    case DropKind::DepthMap:
        return "Use " + name + " as the depth map";
    case DropKind::ImageOrDepthMap:
        return "Open " + name + ", or use it as the depth map";
    case DropKind::ColorProfile:
        return "Take over the color depth of " + name;
    case DropKind::Nothing:
        break;
    }
    return {};
}
