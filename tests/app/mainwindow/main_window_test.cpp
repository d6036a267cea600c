#include "app/mainwindow/main_window.h"

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QDropEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QPushButton>
#include <QTabWidget>
#include <QToolButton>
#include <QWheelEvent>

#include <gtest/gtest.h>

#include "app/mainwindow/depth_colors.h"
#include "app/mainwindow/preview_view.h"
#include "app/panel/control_panel.h"
#include "app/session/open_document.h"
#include "app/session/output_view.h"
#include "engine/qt/zre_qt.h"
#include "tests/app/mainwindow/scripted_prompter.h"
#include "tests/support/testkit.h"

namespace {

constexpr int kWidth = 120;
constexpr int kHeight = 80;

QString noiseFile(const std::string& name, unsigned seed = 9)
{
    const QString path = QString::fromStdString((zrtest::scratchFolder() / name).string());
    EXPECT_TRUE(zre_qt::toQImage(zrtest::noise(kWidth, kHeight, 1, seed)).save(path));
    return path;
}

/// What the road without a window shows of `path`.
QImage expectedView(const QString& path, int view)
{
    Session session;
    EXPECT_TRUE(openSource(path, StretchMode::Auto, session, nullptr, nullptr));
    RenderPipeline pipeline(session);
    zre::Image out;
    EXPECT_TRUE(pipeline.renderView(view, {}, out, nullptr));
    return zre_qt::toQImage(out).convertToFormat(QImage::Format_RGB32);
}

struct Window : testing::Test
{
    Script script;
    MainWindow window{std::make_unique<ScriptedPrompter>(script)};
    PreviewView& preview = *window.findChild<PreviewView*>();

    void SetUp() override
    {
        window.show();
        QApplication::processEvents();
    }
    QAction* action(const QString& name) { return window.findChild<QAction*>(name); }
    QString status() { return window.findChild<QLabel*>("statusText")->text(); }

    /// The picture as it stands on the screen at 1:1.
    QImage shown()
    {
        action("zoomToPixels")->trigger();
        const QPoint origin = preview.transform().imageRect().topLeft().toPoint();
        const QSize size = preview.transform().imageRect().size().toSize();
        return preview.grab().toImage().copy({origin, size}).convertToFormat(QImage::Format_RGB32);
    }

    bool drop(const QList<QUrl>& urls)
    {
        QMimeData data;
        data.setUrls(urls);
        QDragEnterEvent enter({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&preview, &enter);
        if (!enter.isAccepted())
            return false;
        QDropEvent event({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&preview, &event);
        QApplication::processEvents();
        return true;
    }

    void key(QEvent::Type type, Qt::Key which)
    {
        QKeyEvent event(type, which, Qt::NoModifier);
        QApplication::sendEvent(&preview, &event);
    }

    void mouse(QEvent::Type type, QPointF at)
    {
        const bool move = type == QEvent::MouseMove;
        QMouseEvent event(type, at, preview.mapToGlobal(at), move ? Qt::NoButton : Qt::LeftButton,
                          Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&preview, &event);
    }

    void wheel(QPointF at, int delta)
    {
        QWheelEvent event(at, preview.mapToGlobal(at), {}, {0, delta}, Qt::NoButton, Qt::NoModifier,
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(&preview, &event);
    }
};

TEST_F(Window, AnotherViewOrDocumentEndsPlayback)
{
    ASSERT_TRUE(window.loadImageFromPath(noiseFile("plays.png")));
    EXPECT_FALSE(action("stopPlayback")->isEnabled());
    auto& bar = *window.findChild<QWidget*>("transportBar");
    EXPECT_TRUE(bar.isVisible());
    const std::function<void()> ends[] = {
        [this] { action("view.depth")->trigger(); }, [this] { window.newDocument(); },
        [this] { window.loadImageFromPath(noiseFile("other.png", 4)); }};
    for (const auto& end : ends) {
        ASSERT_TRUE(window.loadImageFromPath(noiseFile("plays.png")));
        action("playWiggle")->trigger();
        ASSERT_TRUE(action("playWiggle")->isChecked());
        EXPECT_TRUE(action("stopPlayback")->isEnabled());
        EXPECT_TRUE(status().startsWith("Parallax motion playing...")) << status().toStdString();
        end();
        EXPECT_FALSE(action("playWiggle")->isChecked());
        EXPECT_FALSE(action("stopPlayback")->isEnabled());
    }
    window.newDocument();
    EXPECT_FALSE(bar.isVisible());
}

} // namespace

TEST_F(Window, ActionsThatNeedAnImageWaitForOne)
{
    const QStringList needy{"saveImage", "zoomIn", "zoomToFit", "view.source", "view.anaglyph"};
    for (const QString& name : needy)
        EXPECT_FALSE(action(name)->isEnabled()) << qPrintable(name);
    EXPECT_TRUE(action("openImage")->isEnabled());
    ASSERT_TRUE(window.loadImageFromPath(noiseFile("gate.png")));
    for (const QString& name : needy)
        EXPECT_TRUE(action(name)->isEnabled()) << qPrintable(name);
}

TEST_F(Window, EveryViewShowsWhatThePipelineRenders)
{
    const QString path = noiseFile("views.png");
    script.answers = {path};
    action("openImage")->trigger();
    EXPECT_EQ(window.currentOutputMode(), 2);
    EXPECT_EQ(shown(), expectedView(path, 2));
    EXPECT_EQ(status(), "views.png  -  120 x 80");
    for (const OutputView& view : kOutputViews) {
        action(QString("view.") + view.key)->trigger();
        EXPECT_EQ(window.currentOutputMode(), view.id);
        EXPECT_EQ(shown(), expectedView(path, view.id)) << view.key;
    }
    action("view.sbs")->trigger();
    EXPECT_TRUE(status().startsWith("Side-by-side  -  240 x 80  -  ")) << qPrintable(status());
}

TEST_F(Window, ADroppedImageOpensAndOtherDropsAreRefused)
{
    const QString path = noiseFile("dropped.png");
    EXPECT_FALSE(drop({QUrl::fromLocalFile(path + ".txt")}));
    EXPECT_FALSE(drop({QUrl("https://example.org/picture.png")}));
    QDialog question(&window);
    question.setModal(true);
    question.show();
    EXPECT_FALSE(drop({QUrl::fromLocalFile(path)}));
    question.hide();
    EXPECT_TRUE(drop({QUrl::fromLocalFile(path)}));
    EXPECT_EQ(status(), "dropped.png  -  120 x 80");
    EXPECT_EQ(window.windowTitle().section(" - ", 0, 0), "dropped.png");
}

TEST_F(Window, FilesMayBeDroppedOverTheControlsAsWell)
{
    const QString path = noiseFile("over_panel.png");
    auto* field = window.findChild<ControlPanel*>()->findChild<QLineEdit*>();
    ASSERT_NE(field, nullptr);
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(path)});
    QDragEnterEvent enter({2, 2}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(field, &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent event({2, 2}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&window, &event); // where the toolkit takes it, the field refusing
    QApplication::processEvents();
    EXPECT_TRUE(window.windowTitle().startsWith("over_panel.png"));
    EXPECT_FALSE(field->text().contains("over_panel"));
}

TEST_F(Window, ANewDocumentClearsTheScreenAndItsActions)
{
    ASSERT_TRUE(window.loadImageFromPath(noiseFile("old.png")));
    ASSERT_TRUE(window.loadDepthMapFile(noiseFile("old_depth.png")));
    EXPECT_TRUE(action("clearDepthMap")->isEnabled());
    EXPECT_TRUE(action("undo")->isEnabled());
    action("view.depth")->trigger();
    action("newDocument")->trigger();
    EXPECT_FALSE(action("undo")->isEnabled() || action("redo")->isEnabled());
    EXPECT_FALSE(action("clearDepthMap")->isEnabled() || action("saveImage")->isEnabled());
    EXPECT_TRUE(action("view.anaglyph")->isChecked());
    EXPECT_EQ(window.windowTitle(), QApplication::applicationName());
    EXPECT_EQ(window.findChild<QLabel*>("zoomText")->text(), "");
    EXPECT_TRUE(preview.findChild<QPushButton*>()->isVisible());
    ASSERT_TRUE(window.loadImageFromPath(noiseFile("next.png")));
    EXPECT_EQ(shown(), expectedView(noiseFile("next.png"), 2));
}

TEST_F(Window, AnImageOpenedBeforeCanBeOpenedFromTheEmptyWindow)
{
    const QString path = noiseFile("again.png");
    ASSERT_TRUE(window.loadImageFromPath(path));
    action("newDocument")->trigger();
    QApplication::processEvents(); // the layout shows new widgets in its own time
    QToolButton* tile = nullptr;
    for (QToolButton* each : preview.findChildren<QToolButton*>())
        if (each->toolTip() == path)
            tile = each;
    ASSERT_NE(tile, nullptr);
    EXPECT_TRUE(tile->isVisible());
    tile->click();
    QApplication::processEvents();
    EXPECT_EQ(window.windowTitle().section(" - ", 0, 0), "again.png");
}

TEST_F(Window, EveryActionOnAnEmptySessionLeavesItEmpty)
{
    // Those that open a document or a dialog of their own, and the one that ends it all.
    const QStringList others{"openBuiltInScene", "preferences", "quit"};
    for (QAction* each : window.findChildren<QAction*>())
        if (!others.contains(each->objectName()))
            each->trigger();
    EXPECT_TRUE(script.warned.isEmpty()) << qPrintable(script.warned.join('\n'));
    EXPECT_FALSE(action("saveImage")->isEnabled());
    EXPECT_EQ(window.windowTitle(), QApplication::applicationName());
}

TEST_F(Window, TheMapBesideTheImageShowsInTheDepthView)
{
    ASSERT_TRUE(window.loadImageFromPath(noiseFile("with.png")));
    action("view.depth")->trigger();
    const QImage before = shown();
    EXPECT_TRUE(drop({QUrl::fromLocalFile(noiseFile("with_depth.png"))}));
    EXPECT_NE(shown(), before);
    EXPECT_EQ(status(), "Depth map loaded: with_depth.png  -  120 x 80");
    action("clearDepthMap")->trigger();
    EXPECT_EQ(shown(), before);
}

TEST_F(Window, UndoTakesTheMapOutOfTheDepthAndBringsItBack)
{
    ASSERT_TRUE(window.loadImageFromPath(noiseFile("undone.png")));
    action("view.depth")->trigger();
    const QImage before = shown();
    ASSERT_TRUE(window.loadDepthMapFile(noiseFile("undone_depth.png", 41)));
    const QImage with = shown();
    const auto renderNow = [this] {
        window.renderNow(); // the timer of the panel's changes need not be waited for
        return shown();
    };
    action("undo")->trigger();
    EXPECT_EQ(renderNow(), before);
    action("redo")->trigger();
    EXPECT_EQ(renderNow(), with);
}

TEST_F(Window, AFailureLeavesTheDocumentOnTheScreen)
{
    ASSERT_TRUE(window.loadImageFromPath(noiseFile("stays.png")));
    const QImage before = shown();
    const QString title = window.windowTitle();
    zrtest::writeBytes(zrtest::scratchFolder() / "bad.png", {0x89, 'P', 'N', 'G'});
    EXPECT_FALSE(window.loadImageFromPath(
        QString::fromStdString((zrtest::scratchFolder() / "bad.png").string())));
    ASSERT_EQ(script.warned.size(), 1);
    EXPECT_TRUE(script.warned[0].startsWith("Open Image|Could not load image:\n"));
    EXPECT_EQ(shown(), before);
    EXPECT_EQ(window.windowTitle(), title);
}

TEST_F(Window, TheWheelZoomsToTheCursorAndANewImageIsFittedAgain)
{
    ASSERT_TRUE(window.loadImageFromPath(noiseFile("wheel.png")));
    const double fitted = preview.transform().scale();
    const QPointF at = preview.transform().toView({30.5, 20.25}) / preview.devicePixelRatioF();
    wheel(at, 360);
    EXPECT_GT(preview.transform().scale(), fitted);
    const QPointF under = preview.transform().toImage(at * preview.devicePixelRatioF());
    EXPECT_NEAR(under.x(), 30.5, 1e-9);
    EXPECT_NEAR(under.y(), 20.25, 1e-9);
    action("view.source")->trigger();
    EXPECT_GT(preview.transform().scale(), fitted); // the same image: zoom stays
    ASSERT_TRUE(window.loadImageFromPath(noiseFile("next.png")));
    EXPECT_TRUE(preview.transform().isFitted());
    EXPECT_EQ(window.findChild<QLabel*>("zoomText")->text(), "Fit  200 %");
}

TEST_F(Window, MagnifiedPixelsAreSquaresOfTheirOwnColour)
{
    const QString path = noiseFile("squares.png");
    ASSERT_TRUE(window.loadImageFromPath(path));
    action("view.source")->trigger();
    const QImage source = expectedView(path, 0);
    for (int i = 0; i < 40; ++i)
        wheel(QPointF(preview.rect().center()), 120);
    EXPECT_EQ(preview.transform().scale(), PreviewTransform::kMaxScale);
    const QImage screen = preview.grab().toImage();
    for (const QPoint pixel : {QPoint(60, 40), QPoint(57, 38), QPoint(64, 43)})
        for (const QPointF inside : {QPointF(0.1, 0.1), QPointF(0.5, 0.9), QPointF(0.9, 0.5)}) {
            const QPoint at = preview.transform().toView(QPointF(pixel) + inside).toPoint();
            EXPECT_EQ(screen.pixel(at), source.pixel(pixel));
        }
}

TEST_F(Window, TheSpaceBarShowsTheSourceWhileItIsHeld)
{
    const QString path = noiseFile("space.png");
    ASSERT_TRUE(window.loadImageFromPath(path));
    const QImage source = expectedView(path, 0);
    for (const int view : {2, 3}) {
        window.onOutputModeChanged(view);
        key(QEvent::KeyPress, Qt::Key_Space);
        const QImage held = shown();
        EXPECT_EQ(held.copy(0, 0, kWidth, kHeight), source);
        EXPECT_EQ(held.copy(held.width() - kWidth, 0, kWidth, kHeight), source);
        key(QEvent::KeyRelease, Qt::Key_Space);
        EXPECT_EQ(shown(), expectedView(path, view));
    }
    const QString other = noiseFile("other.png", 77);
    ASSERT_TRUE(window.loadImageFromPath(other)); // another source is asked for anew
    key(QEvent::KeyPress, Qt::Key_Space);
    EXPECT_EQ(shown().copy(0, 0, kWidth, kHeight), expectedView(other, 0));
}

TEST_F(Window, TheSplitShowsTheSourceToItsLeftAndFollowsTheMouse)
{
    const QString path = noiseFile("split.png");
    ASSERT_TRUE(window.loadImageFromPath(path));
    const QImage source = expectedView(path, 0);
    const QImage view = expectedView(path, 2);
    action("compare")->trigger();
    const auto expectSplitAt = [&](int line) {
        const QImage screen = shown();
        const int left = static_cast<int>(preview.transform().imageRect().left());
        for (int x = 0; x < kWidth; ++x) {
            if (std::abs(left + x - line) <= 14) // the line and its handle
                continue;
            const QImage& wanted = left + x < line ? source : view;
            for (int y = 0; y < kHeight; y += 7)
                ASSERT_EQ(screen.pixel(x, y), wanted.pixel(x, y)) << x << " " << y;
        }
    };
    const int middle = preview.width() / 2;
    expectSplitAt(middle);
    mouse(QEvent::MouseButtonPress, {middle + 3.0, 50.0});
    mouse(QEvent::MouseMove, {middle + 30.0, 60.0});
    mouse(QEvent::MouseButtonRelease, {middle + 30.0, 60.0});
    expectSplitAt(middle + 30);
    action("compare")->trigger();
    EXPECT_EQ(shown(), view);
    action("compare")->trigger();
    action("view.source")->trigger(); // nothing to compare
    EXPECT_EQ(shown(), source);
}

TEST_F(Window, TheStatusBarReadsWhatIsUnderTheCursor)
{
    ASSERT_TRUE(window.loadImageFromPath(noiseFile("read.png")));
    shown();
    const QLabel& readout = *window.findChild<QLabel*>("readoutText");
    mouse(QEvent::MouseMove, preview.transform().toView({33.5, 21.5}));
    EXPECT_TRUE(readout.text().startsWith("33, 21   R ")) << qPrintable(readout.text());
    EXPECT_TRUE(readout.text().contains("depth"));
    mouse(QEvent::MouseMove, preview.transform().toView({-5, 21.5}));
    EXPECT_EQ(readout.text(), "");
}

TEST_F(Window, DepthInColorIsForTheScreenOnly)
{
    const QString path = noiseFile("colored.png");
    ASSERT_TRUE(window.loadImageFromPath(path));
    action("depthInColor")->trigger();
    EXPECT_EQ(shown(), expectedView(path, 2));
    action("view.depth")->trigger();
    zre::Image depth;
    ASSERT_TRUE(window.renderCurrentViewFullRes(depth));
    EXPECT_EQ(zre_qt::toQImage(depth).convertToFormat(QImage::Format_RGB32), expectedView(path, 1));
    EXPECT_EQ(shown(), depthInColor(depth));
    action("depthInColor")->trigger();
    EXPECT_EQ(shown(), expectedView(path, 1));
}

TEST_F(Window, EveryTabHasHelpOfItsOwn)
{
    auto& tabs = *window.findChild<ControlPanel*>()->findChild<QTabWidget*>();
    for (int i = 0; i < tabs.count(); ++i) {
        tabs.setCurrentIndex(i);
        action("showTabHelp")->trigger();
        EXPECT_TRUE(script.told.back().startsWith("Help|<h3>" + tabs.tabText(i) + "</h3><h4>"))
            << qPrintable(script.told.back());
    }
    EXPECT_GE(tabs.count(), 4);
    EXPECT_EQ(script.told.removeDuplicates(), 0);
    tabs.setCurrentIndex(0);
}

TEST_F(Window, NoTwoActionsShareAShortcut)
{
    QStringList keys;
    for (const QAction* each : window.findChildren<QAction*>())
        for (const QKeySequence& shortcut : each->shortcuts())
            keys << shortcut.toString();
    EXPECT_EQ(keys.removeDuplicates(), 0) << qPrintable(keys.join(' '));
    EXPECT_FALSE(keys.contains(QString()));
    EXPECT_TRUE(keys.contains("Ctrl+Q") && keys.contains("Ctrl+O") && keys.contains("1"));
}

TEST_F(Window, WorkUnderWayKeepsTheWindowOpen)
{
    window.busyRun([&] { EXPECT_FALSE(window.close()); });
    EXPECT_TRUE(window.close());
}

TEST_F(Window, RunningOutOfMemoryIsAMessage)
{
    EXPECT_FALSE(window.busyRun([] { throw std::bad_alloc(); }));
    EXPECT_EQ(script.warned.size(), 1);
    EXPECT_TRUE(window.busyRun([] {}));
}
