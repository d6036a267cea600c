#include "app/mainwindow/playback_controller.h"

#include <algorithm>

#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QSlider>
#include <QTest>
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
    void act(char deed)
    {
        switch (deed) {
        case 't':
            return playback.onAnimTick();
        case 'k':
            return playback.onPauseClicked();
        case '.':
            return playback.step(1);
        case ',':
            return playback.step(-1);
        case 'w':
            return QTest::qWait(60); // seven frames of 120 a second
        case 'c':
            host.document.params.wiggleFps ^= 1; // shapes no frame
            playback.refreshPlayback();
            return;
        case 'p':
            return playback.playFlyby();
        case 'x':
            return playback.onStopClicked();
        default:
            timeline().setSliderDown(true);
            timeline().setValue(deed - '0');
            timeline().setSliderDown(false);
        }
    }
    /// Which of `frames` were shown, in order.
    std::string numbers(const std::vector<QImage>& frames) const
    {
        std::string order;
        for (const QImage& picture : shown) {
            const auto match = std::find(frames.begin(), frames.end(), picture);
            EXPECT_EQ(std::count(frames.begin(), frames.end(), picture), 1) << "told apart";
            order += static_cast<char>('0' + (match - frames.begin()));
        }
        return order;
    }
    QString text(const char* label) { return bar.findChild<QLabel*>(label)->text(); }
    QSlider& timeline() { return *bar.findChild<QSlider*>(); }
};

/// What the user does, a letter each: t a tick, k pause or resume, "." and "," a frame on and back,
/// w a while in which a timer could tick, c a change of parameters, a digit the timeline dragged
/// to that frame, p the flyby anew, x stop.
struct Course
{
    bool flyby;
    bool loops;
    const char* script;
    const char* deeds;
    const char* frames; ///< that are shown, the one at the start included
    bool playsOn;
};

TEST_F(Playing, FramesComeInTheOrderThatTheUserSees)
{
    const char* five = "videofps 120\nzoom 1.5\nmoveto 36 24 5\n";
    const char* one = "update\n";
    const Course courses[] = {
        {false, false, five, "tttttt", "0123401", true}, // the parallax motion always loops
        {true, true, five, "tttttt", "0123401", true},
        {true, false, five, "ttttttt", "01234", false},
        {true, false, five, "tx", "01", false},
        {true, false, one, "t", "0", false},
        {true, true, one, "tt", "000", true},
        {true, true, five, "tkw.w,,", "01210", true},
        {true, false, five, ",.", "040", true},    // steps go round and pause
        {true, false, five, "k,kt", "0401", true}, // nothing is left to go on with
        {true, false, five, "k,cw", "044", true},  // paused at the end it stays there
        {true, false, five, "2tt", "0234", false},
        {true, false, five, "4t", "04", false},
        {true, true, five, "4t", "040", true},
        {true, true, five, "kw4w", "04", true},
        {true, true, five, "ttkpt", "01201", true}, // played anew
    };
    for (const Course& course : courses) {
        const std::string name = course.script + std::string(course.deeds);
        appcfg::setFlybyContinuousLoop(course.loops);
        host.document.flybyScript = course.script;
        shown.clear();
        (course.flyby ? flyby : wiggle).setChecked(true);
        const std::vector<QImage> frames = expected(course.flyby);
        for (const char* deed = course.deeds; *deed; ++deed)
            act(*deed);
        EXPECT_EQ(numbers(frames), course.frames) << name;
        EXPECT_EQ(playback.isActive(), course.playsOn) << name;
        if (course.playsOn) {
            const QString place = QString("%1 / %2").arg(timeline().value() + 1);
            EXPECT_EQ(text("transport.frame"), place.arg(frames.size())) << name;
        }
        stills = 0;
        const std::size_t before = shown.size();
        playback.onStopClicked();
        EXPECT_EQ(stills, course.playsOn ? 1 : 0) << name << ": the still view once";
        act('t');
        act('k');
        act('.');
        EXPECT_EQ(shown.size(), before) << "the frames are gone";
        EXPECT_FALSE(timeline().isEnabled());
    }
}

TEST_F(Playing, TheUserIsToldWhatPlays)
{
    struct Row
    {
        bool flyby;
        const char* script;
        int fps;
        const char* status;
    };
    const Row rows[] = {
        {false, "", 40, "Parallax motion playing...  5 frames"},
        {true, "videofps 12\nhold 3", 12, "Flyby playing...  3 frames"},
        {true, "update", 40, "Flyby playing...  1 frame"},
        {true, "", 24, "Flyby playing...  5 frames.  Empty - using the built-in flyby."},
        {true, "fly", 24,
         "Flyby playing...  5 frames.  Line 1: Unknown command 'fly'.  (using built-in)"},
    };
    appcfg::setFlybyContinuousLoop(false);
    for (const Row& row : rows) {
        host.document.flybyScript = row.script;
        (row.flyby ? flyby : wiggle).setChecked(true);
        EXPECT_EQ(host.statuses.back(), row.status);
        EXPECT_EQ(playback.playbackFps(), row.fps);
        EXPECT_EQ(text("transport.rate"), QString("%1 fps").arg(row.fps));
        playback.onPauseClicked();
        EXPECT_EQ(host.statuses.back(), "Paused.");
        playback.onPauseClicked();
        EXPECT_EQ(host.statuses.back(), row.status);
        playback.onStopClicked();
    }
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
    act('t');
    act('t');
    host.document.params.parallaxAmount += 9.0f;
    EXPECT_TRUE(playback.refreshPlayback());
    EXPECT_EQ(shown.back(), expected(false)[2]);
    host.document.params.wiggleFrames = 2;
    EXPECT_TRUE(playback.refreshPlayback());
    EXPECT_EQ(text("transport.frame"), "1 / 2");
    EXPECT_EQ(stills, 0);
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
