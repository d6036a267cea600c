#include <random>

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QSlider>
#include <QTabWidget>

#include <gtest/gtest.h>

#include "app/mainwindow/color_pick_controller.h"
#include "app/mainwindow/main_window.h"
#include "app/mainwindow/preview_view.h"
#include "app/mainwindow/render_controller.h"
#include "app/panel/control_panel.h"
#include "app/persist/appcfg.h"
#include "engine/depth/color_depth_rows.h"
#include "engine/qt/zre_qt.h"
#include "tests/app/mainwindow/fake_host.h"
#include "tests/support/testkit.h"

namespace {

constexpr int kWidth = 96;
constexpr int kHeight = 64;

zre::Image picture()
{
    return zrtest::noise(kWidth, kHeight, 1, 21);
}

/// The window with a picture open.
struct WindowParams : testing::Test
{
    Script script;
    MainWindow window{std::make_unique<ScriptedPrompter>(script)};
    PreviewView& preview = *window.findChild<PreviewView*>();
    ControlPanel& panel = *window.findChild<ControlPanel*>();
    int pictures = 0; ///< shown since the last look

    void SetUp() override
    {
        const QString path =
            QString::fromStdString((zrtest::scratchFolder() / "params.png").string());
        ASSERT_TRUE(zre_qt::toQImage(picture()).save(path));
        window.show();
        ASSERT_TRUE(window.loadImageFromPath(path));
        QObject::connect(&preview, &PreviewView::zoomChanged, &window, [this] { ++pictures; });
    }
    QAction* action(const QString& name) { return window.findChild<QAction*>(name); }
    QSlider& slider(const char* name) { return *panel.findChild<QSlider*>(name); }
    QString status() { return window.findChild<QLabel*>("statusText")->text(); }
    zre::ZRParams params()
    {
        zre::ZRParams out;
        panel.syncParamsFromUi(out);
        return out;
    }

    /// Lets the controls rest until the picture has followed.
    bool settle()
    {
        QElapsedTimer timer;
        timer.start();
        do
            QApplication::processEvents(QEventLoop::WaitForMoreEvents, 20);
        while (status() == "Updating..." && timer.elapsed() < 30000);
        return status() != "Updating...";
    }

    /// The picture as it stands on the screen at 1:1.
    QImage shown()
    {
        action("zoomToPixels")->trigger();
        const QRectF rect = preview.transform().imageRect();
        return preview.grab()
            .toImage()
            .copy({rect.topLeft().toPoint(), rect.size().toSize()})
            .convertToFormat(QImage::Format_RGB32);
    }

    /// What the road without a window makes of the record.
    static QImage expected(const zre::ZRParams& record, const AnaglyphGains& gains = {})
    {
        Session session;
        session.installSource({}, zre_qt::fromQImage(zre_qt::toQImage(picture())), {}, {});
        session.params = record;
        RenderPipeline pipeline(session);
        zre::Image out;
        EXPECT_TRUE(pipeline.renderView(2, gains, out, nullptr));
        return zre_qt::toQImage(out).convertToFormat(QImage::Format_RGB32);
    }
};

} // namespace

TEST_F(WindowParams, ThePictureFollowsASlider)
{
    slider("parallaxAmount").setValue(7);
    EXPECT_EQ(status(), "Updating...");
    ASSERT_TRUE(settle());
    zre::ZRParams wanted;
    wanted.parallaxAmount = 7.0f;
    EXPECT_EQ(shown(), expected(wanted));
    EXPECT_NE(shown(), expected({}));
}

TEST_F(WindowParams, ABurstOfChangesMakesOnePictureAndTheLastStateWins)
{
    pictures = 0;
    slider("parallaxAmount").setSliderDown(true);
    for (int step = 20; step <= 60; ++step) {
        slider("parallaxAmount").setSliderPosition(step);
        QApplication::processEvents(QEventLoop::AllEvents, 1);
    }
    slider("parallaxAmount").setSliderDown(false);
    panel.findChild<QCheckBox*>("swapEyes")->click();
    ASSERT_TRUE(settle());
    EXPECT_EQ(pictures, 1);
    zre::ZRParams wanted;
    wanted.parallaxAmount = 60.0f;
    wanted.swapEyes = true;
    EXPECT_EQ(shown(), expected(wanted));
}

TEST_F(WindowParams, ARenderAskedForAtOnceTakesThePendingChangeAlong)
{
    slider("parallaxAmount").setValue(33);
    pictures = 0;
    action("view.anaglyph")->trigger();
    EXPECT_EQ(pictures, 1);
    zre::ZRParams wanted;
    wanted.parallaxAmount = 33.0f;
    EXPECT_EQ(shown(), expected(wanted));
    pictures = 0;
    QElapsedTimer timer;
    for (timer.start(); timer.elapsed() < 2 * RenderController::kDelayMs;)
        QApplication::processEvents(QEventLoop::AllEvents, 10);
    EXPECT_EQ(pictures, 0) << "the timer of the change went on";
}

TEST_F(WindowParams, FiftyRandomEditsAreUndoneAndRedoneToTheSamePictures)
{
    std::mt19937 random(17);
    QList<QSlider*> sliders;
    for (QSlider* each : panel.findChildren<QSlider*>())
        if (!each->objectName().startsWith("tint."))
            sliders << each;
    std::vector<zre::ZRParams> states{params()};
    while (states.size() <= 50) {
        QSlider& each =
            *sliders[static_cast<int>(random() % static_cast<unsigned>(sliders.size()))];
        const int value =
            each.minimum() +
            static_cast<int>(random() % static_cast<unsigned>(each.maximum() - each.minimum() + 1));
        if (value == each.value())
            continue;
        each.setValue(value);
        states.push_back(params());
    }
    const auto expectState = [&](std::size_t i) {
        ASSERT_TRUE(params() == states[i]) << i;
        if (i % 10 == 0) {
            window.renderNow();
            ASSERT_EQ(shown(), expected(states[i])) << i;
        }
    };
    for (std::size_t i = 50; i > 0; --i) {
        action("undo")->trigger();
        expectState(i - 1);
    }
    EXPECT_FALSE(action("undo")->isEnabled());
    for (std::size_t i = 1; i <= 50; ++i) {
        action("redo")->trigger();
        expectState(i);
    }
}

TEST_F(WindowParams, AnotherDocumentHasNoPast)
{
    slider("parallaxAmount").setValue(33);
    EXPECT_EQ(action("undo")->text(), "&Undo Stereo depth: Parallax amount");
    action("newDocument")->trigger();
    EXPECT_FALSE(action("undo")->isEnabled());
    EXPECT_TRUE(params() == zre::ZRParams());
    EXPECT_FALSE(slider("parallaxAmount").isEnabled());
    slider("tint.balance").setValue(10); // without a picture nothing waits for one
    slider("tint.balance").setValue(0);
    EXPECT_NE(status(), "Updating...");
}

TEST_F(WindowParams, TheTintReachesTheScreenAndNoFile)
{
    const QImage neutral = expected({});
    slider("tint.balance").setValue(60);
    ASSERT_TRUE(settle());
    AnaglyphGains gains;
    appcfg::anaglyphTrim(gains.r, gains.g, gains.b);
    EXPECT_EQ(shown(), expected({}, gains));
    EXPECT_NE(shown(), neutral);
    zre::Image file;
    ASSERT_TRUE(window.renderCurrentViewFullRes(file));
    EXPECT_EQ(zre_qt::toQImage(file).convertToFormat(QImage::Format_RGB32), neutral);
    panel.findChild<QAbstractButton*>("tint.reset")->click();
}

TEST_F(WindowParams, AColorIsTakenFromThePixelThatIsClicked)
{
    panel.findChild<QCheckBox*>("colorDepthEnabled")->click();
    shown(); // at 1:1
    const QPoint pixel(40, 20);
    const auto click = [&](QPointF at) {
        const QPointF on = preview.transform().toView(at) / preview.devicePixelRatioF();
        QMouseEvent press(QEvent::MouseButtonPress, on, preview.mapToGlobal(on), Qt::LeftButton,
                          Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&preview, &press);
        QMouseEvent release(QEvent::MouseButtonRelease, on, preview.mapToGlobal(on), Qt::LeftButton,
                            Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(&preview, &release);
    };
    panel.findChild<QAbstractButton*>("color2.pick")->click();
    click({-5.0, 20.0}); // beside the picture: still waiting
    click({40.5, 20.5});
    std::vector<zre::ColorDepthRow> rows;
    zre::parseColorDepthRows(params().colorDepthEntries, rows);
    ASSERT_EQ(rows.size(), 10U);
    const std::optional<QColor> wanted =
        colorAbout(zre_qt::fromQImage(zre_qt::toQImage(picture())), pixel);
    ASSERT_TRUE(wanted);
    EXPECT_TRUE(rows[2].enabled);
    EXPECT_NEAR(rows[2].r, wanted->redF(), 1e-4f);
    EXPECT_NEAR(rows[2].b, wanted->blueF(), 1e-4f);
    const zre::ZRParams before = params();
    click({10.5, 10.5});
    EXPECT_TRUE(params() == before) << "one click, one color";
}

TEST(WindowEnd, AHalfTypedNumberDoesNoHarmWhenTheWindowGoes)
{
    Script script;
    auto window = std::make_unique<MainWindow>(std::make_unique<ScriptedPrompter>(script));
    window->setImageGatedSectionsEnabled(true);
    window->show();
    window->activateWindow();
    QApplication::processEvents();
    auto* box = window->findChild<QLineEdit*>("smoothness.box");
    window->findChild<QTabWidget*>()->setCurrentIndex(1);
    box->setFocus();
    EXPECT_TRUE(box->hasFocus());
    box->setText("33"); // leaving the box now would take it
    window.reset();
}

TEST(ColorAbout, IsTheMeanOfTheNeighboursThatExist)
{
    zre::Image image(4, 3, 0);
    for (std::size_t i = 0; i < image.data.size(); ++i)
        image.data[i] = static_cast<float>(i) / 16.0f;
    EXPECT_NEAR(colorAbout(image, {1, 1})->redF(), 5.0f / 16.0f, 1e-4f);
    EXPECT_NEAR(colorAbout(image, {0, 0})->greenF(), (0 + 1 + 4 + 5) / 64.0f, 1e-4f);
    EXPECT_NEAR(colorAbout(image, {3, 2})->blueF(), (6 + 7 + 10 + 11) / 64.0f, 1e-4f);
    for (const QPoint outside : {QPoint(-1, 0), QPoint(4, 0), QPoint(0, 3)})
        EXPECT_FALSE(colorAbout(image, outside));
    EXPECT_FALSE(colorAbout({}, {0, 0}));
}

namespace {

struct HeavyRender : testing::Test
{
    FakeHost host;
    int rows = 4;
    RenderController render{host, {[](QImage, bool) {}, [] {}, [this] { return rows; }}};

    int dialogs() const { return static_cast<int>(host.statuses.count("Building depth map...")); }
};

} // namespace

TEST_F(HeavyRender, ManyColorsShowTheirStagesOnceADepth)
{
    host.document.installSource({}, picture(), {}, {});
    host.document.params.colorDepthEnabled = true;
    host.document.params.colorDepthWeight = 0.5f;
    render.renderNow();
    EXPECT_EQ(dialogs(), 1);
    render.renderNow(); // the depth stands
    EXPECT_EQ(dialogs(), 1);
    host.document.params.smoothness = 3.0f;
    rows = 3;
    render.renderNow();
    EXPECT_EQ(dialogs(), 1);
    rows = 4;
    host.document.params.smoothness = 4.0f;
    render.onOutputModeChanged(0); // needs no depth
    EXPECT_EQ(dialogs(), 1);
    render.onOutputModeChanged(1);
    EXPECT_EQ(dialogs(), 2);
}
