#include "app/persist/recent_files.h"

#include <array>

#include <QDir>
#include <QFileInfo>

#include "engine/qt/image_file.h"

namespace recent {

using appcfg::RecentCategory;

namespace {

const QString kJoint = QStringLiteral(" | ");

struct SuffixRow
{
    const char* suffix;
    RecentCategory category;
};

constexpr std::array kSuffixes{
    SuffixRow{"zrproj", RecentCategory::Projects},  SuffixRow{"zrsc", RecentCategory::Scripts},
    SuffixRow{"flyby", RecentCategory::Scripts},    SuffixRow{"txt", RecentCategory::Scripts},
    SuffixRow{"zrcol", RecentCategory::ColorDepth},
};

constexpr std::array kCategories{RecentCategory::Images,   RecentCategory::Pairs,
                                 RecentCategory::Projects, RecentCategory::DepthMaps,
                                 RecentCategory::Scripts,  RecentCategory::ColorDepth};

/// The same file is the same entry, from whatever folder it was named.
QString entryOf(const QString& path)
{
    return QDir::cleanPath(QFileInfo(path).absoluteFilePath());
}

void push(RecentCategory category, const QString& entry)
{
    QStringList list = entries(category);
    list.removeAll(entry);
    list.prepend(entry);
    appcfg::setRecentList(category, list);
}

bool isFile(const QString& path)
{
    return QFileInfo(path).isFile();
}

bool hasFileName(const QString& path)
{
    return !QFileInfo(path.trimmed()).fileName().isEmpty();
}

std::optional<Pair> lastSplit(const QString& entry, bool (*stands)(const QString&))
{
    for (qsizetype at = entry.lastIndexOf(kJoint); at >= 0;
         at = at > 0 ? entry.lastIndexOf(kJoint, at - 1) : -1) {
        const Pair pair{entry.left(at), entry.mid(at + kJoint.size())};
        if (stands(pair.stars) && stands(pair.starless))
            return pair;
    }
    return std::nullopt;
}

} // namespace

QStringList entries(RecentCategory category)
{
    return appcfg::recentList(category);
}

void pushFile(RecentCategory category, const QString& path)
{
    push(category, entryOf(path));
}

void pushPair(const Pair& pair)
{
    push(RecentCategory::Pairs, entryOf(pair.stars) + kJoint + entryOf(pair.starless));
}

void forget(RecentCategory category, const QString& entry)
{
    QStringList list = entries(category);
    list.removeAll(entry);
    appcfg::setRecentList(category, list);
}

void clearAll()
{
    for (const RecentCategory category : kCategories)
        appcfg::setRecentList(category, {});
}

std::optional<Pair> splitPair(const QString& entry)
{
    if (std::optional<Pair> pair = lastSplit(entry, isFile))
        return pair;
    return lastSplit(entry, hasFileName);
}

std::optional<RecentCategory> categoryOf(const QString& entry)
{
    if (!isFile(entry) && splitPair(entry))
        return RecentCategory::Pairs;
    const QString suffix = QFileInfo(entry).suffix().toLower();
    for (const SuffixRow& row : kSuffixes)
        if (suffix == QLatin1String(row.suffix))
            return row.category;
    if (imageExts().contains(suffix))
        return RecentCategory::Images;
    return std::nullopt;
}

void migrateOldList()
{
    for (const QString& entry : appcfg::takeOldRecentFiles()) {
        const std::optional<RecentCategory> category = categoryOf(entry);
        if (!category)
            continue;
        QStringList list = entries(*category);
        if (!list.contains(entry))
            appcfg::setRecentList(*category, list << entry);
    }
}

} // namespace recent
