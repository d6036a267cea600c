#include "app/mainwindow/playback_controller.h"

#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QSlider>
#include <QToolButton>
#include <QWidget>

#include <gtest/gtest.h>

#include "app/export/video_plan.h"
#include "app/persist/appcfg.h"
#include "app/playback/build_dialog.h"
#include "app/playback/transport_bar.h"
#include "app/session/motion.h"
#include "engine/qt/zre_qt.h"
#include "tests/app/mainwindow/fake_host.h"
#include "tests/support/testkit.h"

namespace {

constexpr int kFrames = 5;

struct Playing : testing::Test
{
    FakeHost host;
    QWidget window;
    QAction wiggle;
    QAction flyby;
    std::vector<QImage> shown;
    int stills = 0;
    PlaybackController playback{host,
                                window,
                                {[this](QImage frame) { shown.push_back(std::move(frame)); },
                                 [] { return QSize(); }, [] {},
                                 [this] {
                                     if (!playback.refreshPlayback())
                                         ++stills;
                                 },
                                 [] {}}};
    TransportBar& bar = playback.buildTransportBar(&window);

    void SetUp() override
    {
        appcfg::setFlybyContinuousLoop(true);
        for (QAction* action : {&wiggle, &flyby})
            action->setCheckable(true);
        QObject::connect(&wiggle, &QAction::toggled,
                         [this](bool on) { playback.onPlayWiggleToggled(on); });
        QObject::connect(&flyby, &QAction::toggled,
                         [this](bool on) { playback.onPlayFlybyToggled(on); });
        playback.setActions({&wiggle, &flyby});
        host.document.installSource("a", zrtest::noise(60, 40, 1, 9), {}, {});
        host.document.params.wiggleFrames = kFrames;
        host.document.params.wiggleFps = 40;
        host.document.flybyScript = "videofps 12\nmoveto 30 20 3\nzoomto 2 2\n";
    }
    std::vector<QImage> expected(bool asFlyby)
    {
        const MotionInputs inputs =
            motionInputs(host.document, host.pipeline(), asFlyby,
                         {appcfg::ongoingFlybyWiggle(), appcfg::flybyContinuousLoop()});
        std::vector<QImage> frames;
        for (int i = 0; i < inputs.frames(); ++i) {
            zre::Image out;
            renderMotionFrame(inputs, i, kFlat, out);
            frames.push_back(zre_qt::toQImage(out).convertToFormat(QImage::Format_RGB32));
        }
        return frames;
    }
    void tick(int times)
    {
        for (int i = 0; i < times; ++i)
            playback.onAnimTick();
    }
    QString text(const char* label) { return bar.findChild<QLabel*>(label)->text(); }
    QSlider& timeline() { return *bar.findChild<QSlider*>(); }
};

TEST_F(Playing, TheParallaxMotionLoopsUntilItIsStopped)
{
    const std::vector<QImage> frames = expected(false);
    wiggle.setChecked(true); // the first frame comes at once
    EXPECT_EQ(text("transport.frame"), "1 / 5");
    EXPECT_EQ(text("transport.rate"), "40 fps");
    EXPECT_TRUE(host.statuses.back().startsWith("Parallax motion playing..."));
    tick(6);
    ASSERT_EQ(shown.size(), 7u);
    for (std::size_t i = 0; i < shown.size(); ++i)
        EXPECT_EQ(shown[i], frames[i % kFrames]) << i;
    EXPECT_EQ(timeline().value(), 1);
    playback.onStopClicked();
    EXPECT_FALSE(wiggle.isChecked());
    EXPECT_EQ(stills, 1);
    tick(3);
    EXPECT_EQ(shown.size(), 7u) << "the frames are gone";
    EXPECT_FALSE(timeline().isEnabled());
}

TEST_F(Playing, AFlybyEndsAtItsLastFrameUnlessItLoops)
{
    const std::vector<QImage> frames = expected(true);
    ASSERT_GE(frames.size(), 5u);
    flyby.setChecked(true);
    EXPECT_EQ(playback.playbackFps(), 12) << "by the script";
    tick(static_cast<int>(frames.size()));
    EXPECT_EQ(shown.back(), frames.front());
    EXPECT_TRUE(flyby.isChecked());
    playback.onStopClicked();

    appcfg::setFlybyContinuousLoop(false);
    shown.clear();
    flyby.setChecked(true);
    tick(20);
    EXPECT_EQ(shown, expected(true)) << "each frame once, in order";
    EXPECT_FALSE(flyby.isChecked());
}

TEST_F(Playing, OneMotionTakesThePlaceOfTheOther)
{
    wiggle.setChecked(true);
    flyby.setChecked(true);
    EXPECT_FALSE(wiggle.isChecked());
    EXPECT_EQ(stills, 0);
    EXPECT_EQ(shown.back(), expected(true).front());
    playback.stopPlayback("opening an image");
    EXPECT_EQ(host.statuses.back(), "Playback stopped: opening an image.");
    EXPECT_EQ(stills, 1);
    playback.onPlayClicked();
    EXPECT_TRUE(flyby.isChecked()) << "what was played last";
}

TEST_F(Playing, AChangeOfParametersGoesOnWithNewFrames)
{
    wiggle.setChecked(true);
    tick(2);
    host.document.params.parallaxAmount += 9.0f;
    EXPECT_TRUE(playback.refreshPlayback());
    EXPECT_EQ(shown.back(), expected(false)[2]);
    host.document.params.wiggleFrames = 2;
    EXPECT_TRUE(playback.refreshPlayback());
    EXPECT_EQ(text("transport.frame"), "1 / 2");
    EXPECT_EQ(stills, 0);
}

TEST_F(Playing, TheTimelineShowsTheFrameUnderIt)
{
    const std::vector<QImage> frames = expected(false);
    wiggle.setChecked(true);
    bar.findChild<QToolButton*>("transport.play")->click();
    timeline().setValue(3);
    EXPECT_EQ(shown.back(), frames[3]);
    EXPECT_EQ(text("transport.frame"), "4 / 5");
    tick(1);
    EXPECT_EQ(shown.back(), frames[4]) << "it goes on from there";
}

TEST_F(Playing, CancellingTheBuildIsAsIfNothingWasAskedFor)
{
    host.document.installSource("b", zrtest::noise(1500, 1000, 1, 3), {}, {});
    host.document.params.wiggleFrames = 120;
    window.show();
    QTimer canceller;
    QObject::connect(&canceller, &QTimer::timeout, [&] {
        if (auto* dialog = window.findChild<BuildDialog*>(); dialog && dialog->isVisible()) {
            EXPECT_EQ(dialog->windowTitle(), "Preparing parallax motion");
            EXPECT_EQ(dialog->findChild<QLabel*>("buildText")->text(), "Building preview...");
            EXPECT_TRUE(host.isBusy()) << "nothing ticks meanwhile";
            dialog->reject();
        }
    });
    canceller.start(5);
    wiggle.setChecked(true);
    EXPECT_FALSE(wiggle.isChecked());
    EXPECT_FALSE(playback.isActive());
    EXPECT_TRUE(shown.empty());
    EXPECT_EQ(host.statuses.back(), "Playback cancelled.");
}

TEST_F(Playing, WithoutAPictureNothingPlays)
{
    host.document.clear();
    for (QAction* action : {&wiggle, &flyby}) {
        action->setChecked(true);
        EXPECT_FALSE(action->isChecked());
    }
}

} // namespace
