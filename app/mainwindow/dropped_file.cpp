#include "app/mainwindow/dropped_file.h"

#include <algorithm>
#include <optional>

#include <QFileInfo>
#include <QRegularExpression>

#include "app/mainwindow/openable_file.h"
#include "app/session/layer_names.h"

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

static QStringList usableFiles(const QList<QUrl>& urls, bool imageOpen)
{
    QStringList paths;
    for (const QUrl& url : urls) {
        const QString path = url.isLocalFile() ? url.toLocalFile() : QString();
        if (kindOf(path, imageOpen) != DropKind::Nothing)
            paths << path;
    }
    return paths;
}

static std::optional<DroppedFile> surePair(const QStringList& paths)
{
    for (const QString& path : paths)
        for (const QString& other : paths)
            if (const std::optional<LayerPair> pair = layerPairOf(path, other))
                return DroppedFile{DropKind::Pair, pair->starless, pair->stars};
    return std::nullopt;
}

DroppedFile droppedFile(const QList<QUrl>& urls, bool imageOpen)
{
    constexpr qsizetype kMostFiles = 32; // of a whole folder dropped; every two are compared
    const QStringList paths = usableFiles(urls.first(std::min(kMostFiles, urls.size())), imageOpen);
    if (paths.isEmpty())
        return {};
    if (const std::optional<DroppedFile> pair = surePair(paths))
        return *pair;
    const auto isPlainImage = [](const QString& path) {
        return kindOf(path, true) == DropKind::Image;
    };
    if (paths.size() == 2 && std::all_of(paths.begin(), paths.end(), isPlainImage))
        return {DropKind::TwoImages, paths[0], paths[1]};
    return {kindOf(paths[0], imageOpen), paths[0], {}};
}

QString dropText(const DroppedFile& file)
{
    const QString name = QFileInfo(file.path).fileName();
    const QString other = QFileInfo(file.other).fileName();
    switch (file.kind) {
    case DropKind::Image:
        return "Open " + name;
    case DropKind::DepthMap:
        return "Use " + name + " as the depth map";
    case DropKind::ImageOrDepthMap:
        return "Open " + name + ", or use it as the depth map";
    case DropKind::Pair:
        return "Open " + name + " with its stars, " + other;
    case DropKind::TwoImages:
        return "Open " + name + " and " + other + " as starless and stars, or one of them";
    case DropKind::ColorProfile:
        return "Take over the color depth of " + name;
    case DropKind::Nothing:
        break;
    }
    return {};
}
