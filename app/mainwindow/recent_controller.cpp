#include "app/mainwindow/recent_controller.h"

#include <optional>
#include <utility>

#include <QDir>
#include <QFileInfo>
#include <QMenu>

#include "app/mainwindow/prompter.h"
#include "app/mainwindow/shell_host.h"
#include "app/mainwindow/thumbnail_store.h"
#include "app/session/session.h"

using appcfg::RecentCategory;

QStringList filesOfRecent(const QString& entry)
{
    const std::optional<recent::Pair> pair =
        QFileInfo(entry).isFile() ? std::nullopt : recent::splitPair(entry);
    return pair ? QStringList{pair->starless, pair->stars} : QStringList(entry);
}

static QString nameOf(const QString& entry)
{
    constexpr qsizetype kLongest = 60;
    constexpr qsizetype kEnd = 24;
    QStringList names;
    const QStringList files = filesOfRecent(entry);
    for (const QString& file : files) {
        QString name = QFileInfo(file).fileName();
        if (name.size() > kLongest)
            name = name.left(kLongest - kEnd - 1) + QChar(0x2026) + name.right(kEnd);
        names << name;
    }
    return names.join(" + ");
}

QStringList recentLabels(const QStringList& entries)
{
    QStringList names;
    for (const QString& entry : entries)
        names << nameOf(entry);
    QStringList labels;
    for (qsizetype i = 0; i < entries.size(); ++i) {
        const QString folder = QFileInfo(filesOfRecent(entries[i]).front()).path();
        labels << (names.count(names[i]) == 1
                       ? names[i]
                       : QString("%1  (%2)").arg(names[i], QDir::toNativeSeparators(folder)));
    }
    return labels;
}

RecentController::RecentController(ShellHost& host, Open openImage, OpenPair openPair,
                                   Open openDepthMap, Open openColorProfile, Open openScript)
    : m_host(host)
    , m_kinds{Kind{RecentCategory::Images, "&Images", false, std::move(openImage)},
              Kind{RecentCategory::Pairs, "Starless + Stars &Pairs", false,
                   [open = std::move(openPair)](const QString& entry) {
                       if (const std::optional<recent::Pair> pair = recent::splitPair(entry))
                           open(pair->stars, pair->starless);
                   }},
              Kind{RecentCategory::DepthMaps, "&Depth Maps", true, std::move(openDepthMap)},
              Kind{RecentCategory::ColorDepth, "&Color Depth Profiles", true,
                   std::move(openColorProfile)},
              Kind{RecentCategory::Scripts, "&Flyby Scripts", true, std::move(openScript)}}
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
    const QStringList entries = recent::entries(kind.category);
    if (entries.isEmpty())
        return;
    const QStringList labels = recentLabels(entries);
    QMenu* list = menu.addMenu(kind.title);
    list->setToolTipsVisible(true);
    list->setEnabled(!kind.needsImage || m_host.session().hasSource());
    for (qsizetype i = 0; i < entries.size(); ++i) {
        QAction* action = list->addAction(QString(labels[i]).replace('&', "&&"),
                                          [this, &kind, entry = entries[i]] { open(kind, entry); });
        action->setToolTip(QDir::toNativeSeparators(filesOfRecent(entries[i]).join('\n')));
    }
}

void RecentController::open(const Kind& kind, const QString& entry)
{
    QStringList gone;
    for (const QString& file : filesOfRecent(entry))
        if (!QFileInfo::exists(file))
            gone << QDir::toNativeSeparators(file);
    if (gone.isEmpty()) {
        kind.open(entry);
        return;
    }
    const QString said =
        gone.size() == 1 ? "This file is no longer there:\n" : "These files are no longer there:\n";
    const bool forget = m_host.prompter()
                            .choose("Open Recent", said + gone.join('\n'), {"Remove from list"})
                            .has_value();
    if (forget)
        recent::forget(kind.category, entry);
}
