#include <clocale>
#include <optional>

#include <QApplication>
#include <QImageReader>

#include "app/main/app_icon.h"
#include "app/main/commands.h"
#include "app/mainwindow/main_window.h"

/// Megabytes that the toolkit may allocate for one picture: astrophotographs are large.
static constexpr int kAllocationLimitMegabytes = 4096;

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

    MainWindow window;
    window.show();
    if (arguments.size() > 1 && !arguments[1].startsWith("--"))
        window.openProjectFromCommandLine(arguments[1]);
    return QApplication::exec();
}
