#include <cstdio>

#include <QAction>
#include <QApplication>
#include <QTabWidget>
#include <QTemporaryDir>

#include "app/main/app_icon.h"
#include "app/mainwindow/main_window.h"
#include "app/panel/control_panel.h"
#include "app/persist/appcfg.h"
#include "app/prefs/preferences_dialog.h"
#include "app/prefs/splash_screen.h"
#include "app/prefs/theme_manager.h"
#include "app/session/output_view.h"

static bool grab(QWidget& window, const QString& folder, const QString& name)
{
    QApplication::processEvents();
    const QString path = folder + "/" + name + ".png";
    const bool saved = window.grab().save(path);
    std::printf("%s%s\n", saved ? "" : "could not write ", qPrintable(path));
    return saved;
}

/// usage: zr_screenshots FOLDER [IMAGE]: pictures of the splash, the preferences and the window,
/// empty and with IMAGE or the built-in scene in each view, tab and theme.
int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    QApplication::setApplicationName("Zerrith Studio");
    QApplication::setApplicationVersion("1.1.1");
    QGuiApplication::setWindowIcon(appIcon());
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() < 2) {
        std::fputs("usage: zr_screenshots FOLDER [IMAGE]\n", stderr);
        return 2;
    }
    const QTemporaryDir store; // the user's settings are no part of the pictures
    appcfg::useStoreIn(store.path());
    ThemeManager& theme = ThemeManager::instance();
    theme.setModeTransient(ThemeManager::Mode::Dark);

    SplashScreen splash(false);
    bool saved = grab(splash, arguments[1], "splash");
    PreferencesDialog preferences({});
    saved = grab(preferences, arguments[1], "preferences") && saved;
    MainWindow window;
    window.resize(1280, 720);
    window.show();
    saved = grab(window, arguments[1], "window-empty") && saved;
    if (arguments.size() > 2)
        window.openProjectFromCommandLine(arguments[2]);
    else
        window.openBuiltInScene();
    for (const OutputView& view : kOutputViews) {
        window.findChild<QAction*>(QString("view.") + view.key)->trigger();
        saved = grab(window, arguments[1], QString("window-") + view.key) && saved;
    }
    window.findChild<QAction*>("view.anaglyph")->trigger();
    auto& panel = *window.findChild<ControlPanel*>();
    auto& tabs = *panel.findChild<QTabWidget*>();
    for (int tab = 0; tab < tabs.count(); ++tab) {
        tabs.setCurrentIndex(tab);
        saved = grab(panel, arguments[1], "panel-" + tabs.tabText(tab).toLower()) && saved;
    }
    tabs.setCurrentIndex(0);
    theme.setModeTransient(ThemeManager::Mode::Light);
    saved = grab(window, arguments[1], "window-light") && saved;
    return saved ? 0 : 1;
}
