#include <set>

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QSlider>

#include <gtest/gtest.h>

#include "app/panel/control_panel.h"
#include "app/panel/param_history.h"
#include "app/panel/row_limits.h"

namespace {

struct StarControls : testing::Test
{
    ControlPanel panel;
    QSignalSpy edits{&panel, &ControlPanel::paramsEdited};

    template <class Control>
    Control& get(const char* name)
    {
        return *panel.findChild<Control*>(name);
    }
    zre::ZRParams params()
    {
        zre::ZRParams out;
        panel.syncParamsFromUi(out);
        return out;
    }
    void load(void (*change)(zre::ZRParams&))
    {
        zre::ZRParams all;
        change(all);
        panel.syncUiFromParams(all);
    }
    void type(const char* box, const QString& text)
    {
        get<QLineEdit>(box).setText(text);
        emit get<QLineEdit>(box).editingFinished();
    }
};

struct Grey
{
    bool separation;
    bool ai;
    bool aiFound;
    bool starsLayer;
    bool threshold;
    bool radius;
    bool scale;
};

} // namespace

TEST_F(StarControls, AreGreyWhereTheSourceOfTheStarsIgnoresThemAndSayWhy)
{
    constexpr std::array kCases{
        Grey{false, true, true, false, false, false, false},
        Grey{true, false, false, false, true, true, true},
        Grey{true, true, false, false, true, true, true}, // no model: found on the picture
        Grey{true, true, true, false, true, false, false},
        Grey{true, false, true, false, true, true, true},
        Grey{true, false, false, true, true, false, false},
    };
    for (const Grey& each : kCases) {
        zre::ZRParams all;
        all.starSeparationEnabled = each.separation;
        all.aiStarSeparation = each.ai;
        panel.syncUiFromParams(all);
        panel.updateStarControlsEnabled(each.aiFound, each.starsLayer);
        const auto i = &each - kCases.data();
        EXPECT_EQ(get<QSlider>("thresholdSigma").isEnabled(), each.threshold) << i;
        EXPECT_EQ(get<QSlider>("maxRadius").isEnabled(), each.radius) << i;
        EXPECT_EQ(get<QLineEdit>("backgroundScale.box").isEnabled(), each.scale) << i;
        EXPECT_EQ(get<QSlider>("maxRadius").toolTip().contains("Off now"), !each.radius) << i;
        for (const char* name : {"starSeparationEnabled", "starClusterSplit"})
            EXPECT_TRUE(get<QCheckBox>(name).isEnabled() == each.separation ||
                        QString(name) == "starSeparationEnabled");
        EXPECT_EQ(get<QComboBox>("starDepthModel").isEnabled(), each.separation) << i;
        EXPECT_EQ(get<QPushButton>("starProfile").isEnabled(), each.separation) << i;
    }
}

TEST_F(StarControls, ARealDepthModelSurvivesAPanelThatCannotOfferIt)
{
    load([](zre::ZRParams& all) { all.starDepthModel = 3; });
    auto& combo = get<QComboBox>("starDepthModel");
    EXPECT_EQ(combo.currentIndex(), -1);
    EXPECT_EQ(combo.placeholderText(), "Real Star depth");
    get<QSlider>("starPlane").setValue(40);
    EXPECT_EQ(params().starDepthModel, 3);
    emit combo.activated(1);
    EXPECT_EQ(params().starDepthModel, 1);
    EXPECT_EQ(combo.currentText(), "Brightness");
}

TEST_F(StarControls, MaxStarsReachesFromOneToAllThatWereFound)
{
    auto& slider = get<QSlider>("starMaxRendered");
    auto& box = get<QLineEdit>("starMaxRendered.box");
    EXPECT_EQ(box.text(), "All");
    EXPECT_EQ(get<QLabel>("starCount").text(), "No image is open.");
    panel.setImageGatedSectionsEnabled(true);
    panel.updateMaxStarsRange(12345);
    EXPECT_EQ(slider.minimum(), 0);
    slider.setValue(1);
    EXPECT_EQ(params().starMaxRendered, 1);
    slider.setValue(slider.maximum());
    EXPECT_EQ(params().starMaxRendered, 12345);
    EXPECT_EQ(get<QLabel>("starCount").text(), "12,345 stars found");
    type("starMaxRendered.box", "5017");
    panel.updateMaxStarsRange(300); // fewer are found now, what was chosen stays
    EXPECT_EQ(params().starMaxRendered, 5017);
    EXPECT_EQ(slider.value(), slider.maximum());
    type("starMaxRendered.box", "all");
    EXPECT_EQ(params().starMaxRendered, 0);
    EXPECT_EQ(slider.value(), 0);
    type("starMaxRendered.box", "-4");
    EXPECT_EQ(box.text(), "All");
    type("starMaxRendered.box", "7.6");
    EXPECT_EQ(params().starMaxRendered, 8);
}

TEST(SliderSteps, GrowFromOneToTheEndWithoutRepeating)
{
    for (const int most : {0, 1, 2, 99, 100, 101, 20000, 2000000}) {
        const SliderSteps steps = SliderSteps::growing(most);
        EXPECT_EQ(steps.valueAt(0), 0.0);
        EXPECT_EQ(steps.valueAt(steps.highest()), most);
        EXPECT_LT(steps.highest(), 400);
        for (int i = 0; i <= steps.highest(); ++i) {
            EXPECT_EQ(steps.stepOf(steps.valueAt(i)), i) << most;
            const double last = steps.valueAt(std::max(0, i - 1));
            EXPECT_LE(steps.valueAt(i), std::max(last + 1.0, last * 1.16)) << most;
        }
    }
}

TEST_F(StarControls, ProfilingCountsAtOnceAndIsOneStepThatCancelTakesBack)
{
    zre::ZRParams live;
    live.starEdgeGlow = 1.7f;
    panel.syncUiFromParams(live);
    ParamHistory history([](const zre::ZRParams&) {});
    QObject::connect(&panel, &ControlPanel::paramsEdited, &panel, [&](const QString& label, int g) {
        const zre::ZRParams before = live;
        panel.syncParamsFromUi(live);
        history.record(before, live, label, g);
    });
    const zre::ZRParams initial = live;
    const auto edit = [&](const char* end) {
        get<QPushButton>("starProfile").click();
        auto* dialog = panel.window()->findChild<QDialog*>("starProfileDialog");
        dialog->findChild<QSlider*>("starEdgeGlow")->setValue(250);
        EXPECT_FLOAT_EQ(live.starEdgeGlow, 2.5f);
        dialog->findChild<QCheckBox*>("starSoftEdges")->click();
        EXPECT_FALSE(live.starSoftEdges);
        EXPECT_FALSE(dialog->findChild<QSlider*>("starEdgeSoftness")->isEnabled());
        for (QPushButton* button : dialog->findChildren<QPushButton*>())
            if (button->text().remove('&') == end)
                button->click();
        if (dialog->isVisible())
            dialog->accept();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    };
    edit("Cancel");
    EXPECT_TRUE(live == initial);
    EXPECT_EQ(history.stack().count(), 0);
    edit("OK");
    EXPECT_FLOAT_EQ(live.starEdgeGlow, 2.5f);
    EXPECT_EQ(history.stack().count(), 1);
    panel.syncUiFromParams(live = initial);
    edit("Defaults");
    EXPECT_EQ(live.starEdgeGlow, 1.0f);
    EXPECT_TRUE(live.starSoftEdges);
}

TEST_F(StarControls, TheAnchorNeedsASwitchAPictureWithoutStarsAndADepth)
{
    auto& fit = get<QSlider>("objectFit");
    EXPECT_FALSE(fit.isEnabled());
    load([](zre::ZRParams& all) { all.resolveDistance = true; });
    EXPECT_FALSE(fit.isEnabled());
    EXPECT_TRUE(get<QCheckBox>("manualAnchorOn").isEnabled());
    load([](zre::ZRParams& all) { all.resolveDistance = all.manualAnchorOn = true; });
    EXPECT_TRUE(fit.isEnabled());
    EXPECT_FALSE(get<QSlider>("backgroundFloor").isEnabled());
    get<QCheckBox>("floorAuto").click();
    EXPECT_TRUE(get<QSlider>("backgroundFloor").isEnabled());
    EXPECT_EQ(get<QSlider>("backgroundFloor").maximum(), 98);
    get<QCheckBox>("starSeparationEnabled").click();
    EXPECT_FALSE(fit.isEnabled());
    EXPECT_TRUE(fit.toolTip().contains("Star separation"));
}
