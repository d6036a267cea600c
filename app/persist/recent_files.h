#pragma once

#include <optional>

#include <QString>
#include <QStringList>

#include "app/persist/appcfg.h"

/// The files that the user worked with last, one list a category, newest first.
namespace recent {

struct Pair
{
    QString stars;
    QString starless;
};

QStringList entries(appcfg::RecentCategory category);
/// Puts a file at the top of its list; one that is in the list already moves there.
void pushFile(appcfg::RecentCategory category, const QString& path);
void pushPair(const Pair& pair);
/// Drops an entry, for example of a file that is gone.
void forget(appcfg::RecentCategory category, const QString& entry);
void clearAll();

/// The two paths of an entry of the pairs' list. They are joined by " | ", which may also stand
/// within a folder's or file's name: the last place counts whose both sides are files; when no
/// place has two, the last one with a file name on either side. Nothing for any other text.
std::optional<Pair> splitPair(const QString& entry);

/// The list that a file belongs to by its suffix, or a joined pair by its form; nothing for a
/// suffix of no category. A depth map cannot be told from an image.
std::optional<appcfg::RecentCategory> categoryOf(const QString& entry);

/// Files the single list of old versions into the categories, below what they hold, and removes it.
void migrateOldList();

} // namespace recent
