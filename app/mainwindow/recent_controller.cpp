#include "app/mainwindow/recent_controller.h"

#include <utility>

#include <QDir>
#include <QFileInfo>
#include <QMenu>

#include "app/mainwindow/prompter.h"
#include "app/mainwindow/shell_host.h"
#include "app/mainwindow/thumbnail_store.h"
#include "app/session/session.h"

using appcfg::RecentCategory;

QStringList recentLabels(const QStringList& paths)
{
    QStringList names;
    for (const QString& path : paths)
        names << QFileInfo(path).fileName();
    QStringList labels;
    for (qsizetype i = 0; i < paths.size(); ++i)
        labels << (names.count(names[i]) == 1
                       ? names[i]
                       : QString("%1  (%2)")
                             .arg(names[i], QDir::toNativeSeparators(QFileInfo(paths[i]).path())));
    return labels;
}

RecentController::RecentController(ShellHost& host, Open openImage, Open openDepthMap,
                                   Open openColorProfile)
    : m_host(host)
    , m_kinds{Kind{RecentCategory::Images, "&Images", false, std::move(openImage)},
              Kind{RecentCategory::DepthMaps, "&Depth Maps", true, std::move(openDepthMap)},
              Kind{RecentCategory::ColorDepth, "&Color Depth Profiles", true,
                   std::move(openColorProfile)}}
{
    recent::migrateOldList();
}

void RecentController::buildRecentMenu(QMenu& menu)
{
    menu.clear();
    menu.setToolTipsVisible(true);
    for (const Kind& kind : m_kinds)
        addKind(menu, kind);
    if (menu.isEmpty()) {
        menu.addAction(QMenu::tr("No recent files"))->setEnabled(false);
        return;
    }
    menu.addSeparator();
    menu.addAction(QMenu::tr("C&lear Recent Files"), [] {
        recent::clearAll();
        ThumbnailStore().keepOnly({});
    });
}

void RecentController::addKind(QMenu& menu, const Kind& kind)
{
    const QStringList paths = recent::entries(kind.category);
    if (paths.isEmpty())
        return;
    const QStringList labels = recentLabels(paths);
    QMenu* list = menu.addMenu(kind.title);
    list->setToolTipsVisible(true);
    list->setEnabled(!kind.needsImage || m_host.session().hasSource());
    for (qsizetype i = 0; i < paths.size(); ++i) {
        const QString& path = paths[i];
        QAction* entry = list->addAction(QString(labels[i]).replace('&', "&&"),
                                         [this, &kind, path] { open(kind, path); });
        entry->setToolTip(QDir::toNativeSeparators(path));
    }
}

void RecentController::open(const Kind& kind, const QString& path)
{
    if (QFileInfo::exists(path)) {
        kind.open(path);
        return;
    }
    const bool forget =
        m_host.prompter()
            .choose("Open Recent",
                    "This file is no longer there:\n" + QDir::toNativeSeparators(path),
                    {"Remove from list"})
            .has_value();
    if (forget)
        recent::forget(kind.category, path);
}
