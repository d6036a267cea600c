#pragma once

#include <array>
#include <functional>

#include <QString>

#include "app/persist/recent_files.h"

class QMenu;
class ShellHost;

/// The files worked with last: opens them again, and forgets those that are gone.
class RecentController
{
public:
    using Open = std::function<void(const QString& path)>;
    using OpenPair = std::function<void(const QString& stars, const QString& starless)>;

    /// A list that can be opened from so far.
    struct Kind
    {
        appcfg::RecentCategory category;
        const char* title;
        bool needsImage;
        Open open; ///< takes an entry of the list
    };

    /// Files the list of old versions into the categories.
    RecentController(ShellHost& host, Open openImage, OpenPair openPair, Open openDepthMap,
                     Open openColorProfile, Open openScript);

    /// Fills `menu` anew from the lists.
    void buildRecentMenu(QMenu& menu);
    void openRecentFile(const QString& path) { open(m_kinds[0], path); }
    /// `entry` is one of the pairs' list.
    void openRecentPair(const QString& entry) { open(m_kinds[1], entry); }
    void openRecentDepthMap(const QString& path) { open(m_kinds[2], path); }

private:
    /// Opens an entry; one whose file is gone is told of and can be taken off the list.
    void open(const Kind& kind, const QString& entry);
    void addKind(QMenu& menu, const Kind& kind);

    ShellHost& m_host;
    std::array<Kind, 5> m_kinds;
};

/// What a menu calls each of `entries`, which are paths or pairs: its file name or names, shortened
/// in the middle when long, with the folder where two names are the same.
QStringList recentLabels(const QStringList& entries);

/// The files of an entry: those of a pair, the starless image first, or the one.
QStringList filesOfRecent(const QString& entry);
