#include <clocale>
#include <optional>

#include <QApplication>
#include <QElapsedTimer>
#include <QImageReader>
#include <QThread>
#include <QTimer>

#include "app/main/app_icon.h"
#include "app/main/commands.h"
#include "app/mainwindow/main_window.h"
#include "app/prefs/splash_screen.h"
#include "app/prefs/theme_manager.h"

/// Megabytes that the toolkit may allocate for one picture: astrophotographs are large.
static constexpr int kAllocationLimitMegabytes = 4096;
static constexpr int kSplashMs = 2499;
static constexpr int kSplashTickMs = 16;

/// Shows the splash while the window is built, and for its whole time unless the user closes it.
static int start(const QStringList& arguments)
{
    ThemeManager::instance().init();
    auto* splash = new SplashScreen(true);
    QString dropped;
    QObject::connect(splash, &SplashScreen::fileDropped,
                     [&dropped](const QString& path) { dropped = path; });
    splash->show();
    QApplication::processEvents();
    QElapsedTimer shown;
    shown.start();

    MainWindow window;
    while (shown.elapsed() <= kSplashMs && splash->isVisible()) {
        QApplication::processEvents();
        QThread::msleep(kSplashTickMs);
    }
    splash->close();
    splash->deleteLater();
    window.show();

    if (!dropped.isEmpty())
        window.loadImageFromPath(dropped);
    else if (arguments.size() > 1 && !arguments[1].startsWith("--"))
        window.openProjectFromCommandLine(arguments[1]);
    QTimer::singleShot(0, &window, &MainWindow::runStartupNotices);
    return QApplication::exec();
}

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    std::setlocale(LC_NUMERIC, "C"); // the application object has just set the user's
    QImageReader::setAllocationLimit(kAllocationLimitMegabytes);
    QApplication::setApplicationName("Zerrith Studio");
    QApplication::setOrganizationName("Corvelle Works");
    QApplication::setApplicationVersion("1.1.1");
    QGuiApplication::setDesktopFileName("zerrith-studio");
    QGuiApplication::setWindowIcon(appIcon());

    const QStringList arguments = QApplication::arguments();
    if (const std::optional<int> verdict = runCommand(arguments))
        return *verdict;

    return start(arguments);
}
