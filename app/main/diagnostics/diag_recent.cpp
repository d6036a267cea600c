#include <QTemporaryDir>

#include "app/main/diagnostics/checks.h"
#include "app/main/diagnostics/diagnostics.h"
#include "app/persist/recent_files.h"

using appcfg::RecentCategory;

int diag::recentFiles(const QStringList&)
{
    Checks checks;
    const QTemporaryDir store;
    checks.that(store.isValid(), "a store of its own " + store.path());
    if (!store.isValid())
        return checks.verdict();
    appcfg::useStoreIn(store.path());

    appcfg::store(appcfg::kSettings.recentFiles,
                  QStringList{"/old/a.xisf", "/old/b.zrproj", "/old/s.tif | /old/l.tif"});
    recent::migrateOldList();
    recent::migrateOldList();
    checks.that(recent::entries(RecentCategory::Images) == QStringList("/old/a.xisf") &&
                    recent::entries(RecentCategory::Projects) == QStringList("/old/b.zrproj") &&
                    recent::entries(RecentCategory::Pairs).size() == 1,
                "the old list is filed by suffix, once");

    recent::pushFile(RecentCategory::DepthMaps, "/new/depth.tif");
    for (int i = 0; i < appcfg::kRecentEntries; ++i)
        recent::pushFile(RecentCategory::Images, QString("/new/%1.tif").arg(i));
    const QStringList images = recent::entries(RecentCategory::Images);
    checks.that(images.size() == appcfg::kRecentEntries && !images.contains("/old/a.xisf"),
                QString("%1 images are kept, the oldest drops").arg(images.size()));
    checks.that(recent::entries(RecentCategory::DepthMaps) == QStringList("/new/depth.tif") &&
                    !images.contains("/new/depth.tif"),
                "a depth map is no image");

    recent::pushFile(RecentCategory::Images, "/new/3.tif");
    const QStringList moved = recent::entries(RecentCategory::Images);
    checks.that(moved.first() == "/new/3.tif" && moved.count("/new/3.tif") == 1 &&
                    moved.size() == images.size(),
                "a file opened again moves to the top");
    return checks.verdict();
}
