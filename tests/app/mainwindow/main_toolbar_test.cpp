#include "app/mainwindow/main_toolbar.h"

#include <algorithm>

#include <QAction>
#include <QApplication>
#include <QImage>
#include <QMap>
#include <QMenu>
#include <QToolButton>

#include <gtest/gtest.h>

#include "app/mainwindow/main_window.h"
#include "app/persist/recent_files.h"
#include "app/prefs/theme_manager.h"
#include "tests/app/private_settings.h"

namespace {

QList<QString> shownButtons(const MainWindow& window)
{
    QList<QString> names;
    for (const QToolButton* button :
         window.findChild<QToolBar*>("mainToolbar")->findChildren<QToolButton*>())
        if (button->defaultAction() && button->isVisibleTo(&window))
            names << button->defaultAction()->objectName();
    return names;
}

QRgb pixelSum(const QIcon& icon)
{
    const QImage picture = icon.pixmap(22, 22).toImage().convertToFormat(QImage::Format_ARGB32);
    QRgb sum = 0;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            sum += picture.pixel(x, y) & 0xff;
    return sum;
}

} // namespace

TEST(MainToolbar, AGroupThatIsSwitchedOffLeavesNothingBehind)
{
    const PrivateSettings own;
    for (const appcfg::ToolbarGroup group :
         {appcfg::ToolbarGroup::View, appcfg::ToolbarGroup::Play, appcfg::ToolbarGroup::Tools})
        appcfg::setToolbarGroupShown(group, false);
    MainWindow window;
    window.show();
    EXPECT_EQ(shownButtons(window), QList<QString>({"openImage", "saveImage"}));
    auto* bar = static_cast<MainToolbar*>(window.findChild<QToolBar*>("mainToolbar"));
    appcfg::setToolbarGroupShown(appcfg::ToolbarGroup::View, true);
    bar->applyGroups();
    QApplication::processEvents(); // lays out
    EXPECT_TRUE(shownButtons(window).contains("view.depth"));
    for (const appcfg::ToolbarGroup group :
         {appcfg::ToolbarGroup::View, appcfg::ToolbarGroup::LoadSave, appcfg::ToolbarGroup::Export})
        appcfg::setToolbarGroupShown(group, false);
    bar->applyGroups();
    EXPECT_FALSE(bar->isVisible()); // no empty strip
}

TEST(MainToolbar, EveryButtonHasAPictureThatFollowsTheTheme)
{
    const PrivateSettings own;
    MainWindow window;
    QMap<QString, QRgb> dark;
    for (const bool light : {false, true}) {
        ThemeManager::instance().setModeTransient(light ? ThemeManager::Mode::Light
                                                        : ThemeManager::Mode::Dark);
        for (const QToolButton* button :
             window.findChild<QToolBar*>("mainToolbar")->findChildren<QToolButton*>()) {
            if (!button->defaultAction())
                continue;
            const QString name = button->defaultAction()->objectName();
            const QRgb sum = pixelSum(button->icon());
            EXPECT_TRUE(light ? sum < dark[name] : sum > 0) << name.toStdString();
            if (!light)
                dark[name] = sum;
        }
    }
    EXPECT_GE(dark.size(), 11);
}

static QMenu* menuBeside(MainWindow& window, const char* name)
{
    for (const QToolButton* button :
         window.findChild<QToolBar*>("mainToolbar")->findChildren<QToolButton*>())
        if (button->menu() && button->menu()->objectName() == name)
            return button->menu();
    return nullptr;
}

TEST(MainToolbar, TheArrowsBesideOpenAndExportListWhatElseThereIs)
{
    const PrivateSettings own;
    MainWindow window;
    recent::pushFile(appcfg::RecentCategory::Images, own.path("m42.tif"));
    QMenu* menu = menuBeside(window, "recentMenu");
    ASSERT_TRUE(menu);
    emit menu->aboutToShow();
    const QList<QAction*> entries = menu->findChildren<QAction*>(); // of its lists too
    EXPECT_TRUE(std::any_of(entries.begin(), entries.end(),
                            [](const QAction* a) { return a->text().contains("m42.tif"); }));
    const QMenu* exports = menuBeside(window, "exportMenu");
    ASSERT_TRUE(exports);
    EXPECT_TRUE(exports->actions().contains(window.findChild<QAction*>("exportFlyby")));
}

TEST(MainWindowPlace, TheNextWindowHasTheSizeOfTheLast)
{
    const PrivateSettings own;
    {
        MainWindow window;
        window.show();
        window.resize(700, 520);
        window.close();
    }
    MainWindow next;
    EXPECT_EQ(next.size(), QSize(700, 520));
    appcfg::setWindowGeometry("garbage");
    EXPECT_GT(MainWindow().width(), 1000);
}
