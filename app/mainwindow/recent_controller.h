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

    /// A list that can be opened from so far.
    struct Kind
    {
        appcfg::RecentCategory category;
        const char* title;
        bool needsImage;
        Open open;
    };

    /// Files the list of old versions into the categories.
    RecentController(ShellHost& host, Open openImage, Open openDepthMap, Open openColorProfile);

    /// Fills `menu` anew from the lists.
    void buildRecentMenu(QMenu& menu);
    void openRecentFile(const QString& path) { open(m_kinds[0], path); }
    void openRecentDepthMap(const QString& path) { open(m_kinds[1], path); }

private:
    /// Opens an entry; one whose file is gone is told of and can be taken off the list.
    void open(const Kind& kind, const QString& path);
    void addKind(QMenu& menu, const Kind& kind);

    ShellHost& m_host;
    std::array<Kind, 3> m_kinds;
};

/// What a menu calls each of `paths`: its file name, with the folder where two names are the same.
QStringList recentLabels(const QStringList& paths);
