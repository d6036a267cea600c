#include <cstdio>

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QDragEnterEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QPushButton>
#include <QStandardPaths>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTimer>

#include "app/flyby/code_edit.h"
#include "app/flyby/script_editor.h"
#include "app/main/app_icon.h"
#include "app/mainwindow/main_window.h"
#include "app/mainwindow/preview_view.h"
#include "app/panel/control_panel.h"
#include "app/persist/appcfg.h"
#include "app/prefs/preferences_dialog.h"
#include "app/prefs/splash_screen.h"
#include "app/prefs/theme_manager.h"
#include "app/session/output_view.h"
#include "app/video/encode_dialog.h"
#include "engine/demo/demo_scene.h"
#include "engine/qt/zre_qt.h"

static bool grab(QWidget& window, const QString& folder, const QString& name)
{
    QApplication::processEvents();
    const QString path = folder + "/" + name + ".png";
    const bool saved = window.grab().save(path);
    std::printf("%s%s\n", saved ? "" : "could not write ", qPrintable(path));
    return saved;
}

static void switchOn(MainWindow& window, const char* action, bool on)
{
    window.findChild<QAction*>(action)->setChecked(on);
}

/// The cursor over the middle of the preview, as the status bar then reads.
static void pointAtMiddle(MainWindow& window)
{
    auto* preview = window.findChild<PreviewView*>();
    const QPointF middle = QRectF(preview->rect()).center();
    QMouseEvent move(QEvent::MouseMove, middle, preview->mapToGlobal(middle), Qt::NoButton,
                     Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(preview, &move);
}

/// A starless image and its stars, opened as one document.
static void openPair(MainWindow& window, const QTemporaryDir& folder)
{
    zre::DemoSceneOptions options;
    options.width = 480;
    options.height = 320;
    zre::DemoScene scene = zre::makeDemoScene(options);
    for (std::size_t i = 0; i < scene.picture.data.size(); ++i)
        scene.picture.data[i] -= scene.starless.data[i];
    const QString stars = folder.filePath("Lagoon_stars.png");
    const QString starless = folder.filePath("Lagoon_starless.png");
    zre_qt::toQImage(scene.picture).save(stars);
    zre_qt::toQImage(scene.starless).save(starless);
    appcfg::setPairReplaceNoticeHidden(true); // nobody is here to answer
    window.loadStarlessStarsPair(stars, starless);
}

/// The empty window, as it is at first and with images opened before.
static bool grabEmptyWindow(MainWindow& window, const QString& folder)
{
    const bool saved = grab(window, folder, "window-empty");
    const QTemporaryDir images;
    for (int i = 0; i < 3; ++i) {
        zre::DemoSceneOptions options;
        options.width = 480;
        options.height = 320;
        options.seed += static_cast<std::uint32_t>(i);
        const QString path = images.filePath(QString("Nebula %1.png").arg(i + 1));
        zre_qt::toQImage(zre::makeDemoScene(options).picture).save(path);
        window.loadImageFromPath(path);
    }
    openPair(window, images);
    window.newDocument();
    QApplication::processEvents(); // the layout shows new widgets in its own time
    return grab(window, folder, "window-recent") && saved;
}

/// A depth map held over the preview.
static bool grabDrag(MainWindow& window, const QString& folder)
{
    const QTemporaryDir files;
    const QString map = files.filePath("Nebula_depth.png");
    QImage(8, 8, QImage::Format_Grayscale8).save(map);
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(map)});
    auto* preview = window.findChild<PreviewView*>();
    QDragEnterEvent enter({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(preview, &enter);
    const bool saved = grab(window, folder, "window-drop");
    QDragLeaveEvent leave;
    QApplication::sendEvent(preview, &leave);
    return saved;
}

static bool grabPreviewTools(MainWindow& window, const QString& folder)
{
    window.findChild<QAction*>("view.depth")->trigger();
    switchOn(window, "depthInColor", true);
    pointAtMiddle(window);
    bool saved = grab(window, folder, "window-depth-color");
    switchOn(window, "depthInColor", false);
    window.findChild<QAction*>("view.anaglyph")->trigger();
    switchOn(window, "compare", true);
    saved = grab(window, folder, "window-compare") && saved;
    switchOn(window, "compare", false);
    return grabDrag(window, folder) && saved;
}

/// The rings about the stars found, and the dialog of their rims.
static bool grabStars(MainWindow& window, const QString& folder)
{
    auto& tabs = *window.findChild<ControlPanel*>()->findChild<QTabWidget*>();
    tabs.setCurrentIndex(0);
    switchOn(window, "showFoundStars", true);
    bool saved = grab(window, folder, "window-found-stars");
    window.findChild<QAction*>("zoomToPixels")->trigger();
    saved = grab(window, folder, "window-found-stars-pixels") && saved;
    window.findChild<QAction*>("zoomToFit")->trigger();
    window.findChild<QPushButton*>("starProfile")->click();
    auto* dialog = window.findChild<QDialog*>("starProfileDialog");
    saved = grab(*dialog, folder, "star-profile") && saved;
    dialog->reject();
    switchOn(window, "showFoundStars", false);
    return saved;
}

/// The window while the parallax motion plays, with its controls on the panel.
static bool grabPlayback(MainWindow& window, const QString& folder, const QString& name)
{
    auto& tabs = *window.findChild<ControlPanel*>()->findChild<QTabWidget*>();
    const int before = tabs.currentIndex();
    for (int tab = 0; tab < tabs.count(); ++tab)
        if (tabs.tabText(tab) == "Stereo")
            tabs.setCurrentIndex(tab);
    switchOn(window, "playWiggle", true);
    const bool saved = grab(window, folder, name);
    switchOn(window, "playWiggle", false);
    tabs.setCurrentIndex(before);
    return saved;
}

/// The script editor with a script that has a fault.
static bool grabScriptEditor(MainWindow& window, const QString& folder, const QString& name)
{
    window.findChild<QAction*>("showScriptEditor")->trigger();
    auto* editor = window.findChild<ScriptEditor*>();
    editor->setScript("# A slow push into the cloud, then a rest.\n"
                      "ease inout\nzoom 1.2\nflyin: 820 430 120 2.5 15\nhold 24\n"
                      "$turn = 10\nrotate $turn 48\nmoveto 300 sideways 40\n"
                      "flyin: $centerx $centery 96 1 0\n");
    constexpr int kFlight = 4; // the line below tells how its command is used
    editor->findChild<CodeEdit*>()->goToLine(kFlight);
    editor->show();
    QCoreApplication::processEvents();
    const bool saved = grab(*editor, folder, name);
    editor->setScript({});
    editor->close();
    return saved;
}

/// The dialog that the action brings up, which ends with its picture.
static bool grabDialog(MainWindow& window, const char* action, const QString& folder,
                       const QString& name)
{
    bool saved = false;
    QTimer::singleShot(0, &window, [&] {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        saved = dialog && grab(*dialog, folder, name);
        if (dialog)
            dialog->reject();
    });
    window.findChild<QAction*>(action)->trigger();
    return saved;
}

static bool grabExports(MainWindow& window, const QString& folder)
{
    bool saved = grabDialog(window, "exportWiggle", folder, "export-video");
    saved = grabDialog(window, "exportVR180", folder, "export-vr180") && saved;
    zre::Image picture;
    window.renderCurrentViewFullRes(picture);
    const QImage frame = zre_qt::toQImage(picture);
    EncodeDialog encoding("Exporting video", "Encoding parallax motion...", 30, &window);
    encoding.advance({11, 30, &frame});
    return grab(encoding, folder, "export-progress") && saved;
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
    QStandardPaths::setTestModeEnabled(true); // nor are thumbnails of theirs
    ThemeManager& theme = ThemeManager::instance();
    theme.setModeTransient(ThemeManager::Mode::Dark);

    SplashScreen splash(false);
    bool saved = grab(splash, arguments[1], "splash");
    PreferencesDialog preferences({});
    saved = grab(preferences, arguments[1], "preferences") && saved;
    MainWindow window;
    window.resize(1280, 720);
    window.show();
    saved = grabEmptyWindow(window, arguments[1]) && saved;
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
    saved = grabPreviewTools(window, arguments[1]) && saved;
    saved = grabStars(window, arguments[1]) && saved;
    saved = grabPlayback(window, arguments[1], "window-playing") && saved;
    saved = grabScriptEditor(window, arguments[1], "script-editor") && saved;
    saved = grabExports(window, arguments[1]) && saved;
    theme.setModeTransient(ThemeManager::Mode::Light);
    saved = grabPlayback(window, arguments[1], "window-playing-light") && saved;
    saved = grabScriptEditor(window, arguments[1], "script-editor-light") && saved;
    saved = grab(window, arguments[1], "window-light") && saved;
    return saved ? 0 : 1;
}
