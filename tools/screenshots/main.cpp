#include <cstdio>

#include <QAction>
#include <QApplication>

#include "app/main/app_icon.h"
#include "app/mainwindow/main_window.h"
#include "app/session/output_view.h"

static bool grab(MainWindow& window, const QString& folder, const QString& name)
{
    QApplication::processEvents();
    const QString path = folder + "/window-" + name + ".png";
    const bool saved = window.grab().save(path);
    std::printf("%s%s\n", saved ? "" : "could not write ", qPrintable(path));
    return saved;
}

/// usage: zr_screenshots FOLDER [IMAGE]: pictures of the window, empty and with IMAGE or the
/// built-in scene in each view.
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
    MainWindow window;
    window.resize(1280, 720);
    window.show();
    bool saved = grab(window, arguments[1], "empty");
    if (arguments.size() > 2)
        window.openProjectFromCommandLine(arguments[2]);
    else
        window.openBuiltInScene();
    for (const OutputView& view : kOutputViews) {
        window.findChild<QAction*>(QString("view.") + view.key)->trigger();
        saved = grab(window, arguments[1], view.key) && saved;
    }
    return saved ? 0 : 1;
}
