#include "app/panel/control_panel.h"

#include <cmath>
#include <map>
#include <set>

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalSpy>
#include <QSlider>
#include <QTabWidget>
#include <QWheelEvent>
#include <QtTest/qtestspontaneevent.h>

#include <gtest/gtest.h>

#include "app/persist/appcfg.h"
#include "tests/app/panel/random_params.h"

namespace {

/// What one step of a slider is worth, by the names of the parameters.
const std::map<std::string, std::set<std::string>> kSteps{
    {"0.01", {"luminanceWeight",  "structureWeight",   "aiDepthWeight",    "narrowbandWeight",
              "edgePreservation", "depthGamma",        "colorDepthWeight", "colorDepthGamma",
              "depthMapBlend",    "paintedGamma",      "convergence",      "postBlack",
              "postWhite",        "postGamma",         "postBrightness",   "postContrast",
              "postTemperature",  "postTint",          "postSaturation",   "postVibrance",
              "minPeak",          "starCompanionWipe", "starPlane",        "starDepthRange",
              "starFloatation",   "starPop",           "starOcclusion",    "manualAnchorDepth",
              "objectFit",        "objectThickness"}},
    {"0.1",
     {"thresholdSigma", "backgroundScale", "structureScale", "smoothness", "colorDepthSmoothness",
      "colorDepthGaussian", "paintedSmoothness", "wiggleAmplitude"}},
    {"1",
     {"parallaxAmount", "maxDisparity", "postHue", "maxRadius", "wiggleFrames", "wiggleFps",
      "wigglePathAngle"}},
};

struct Panel : testing::Test
{
    ControlPanel panel;
    QSignalSpy edits{&panel, &ControlPanel::paramsEdited};

    void SetUp() override
    {
        panel.resize(360, 640);
        panel.show();
        QApplication::processEvents();
    }
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
    void showTab(const QString& title)
    {
        auto& tabs = *panel.findChild<QTabWidget*>();
        for (int i = 0; i < tabs.count(); ++i)
            if (tabs.tabText(i) == title)
                tabs.setCurrentIndex(i);
        QApplication::processEvents();
    }
    void type(const char* name, const QString& text)
    {
        auto& box = get<QLineEdit>(name);
        box.setText(text);
        emit box.editingFinished();
    }
};

} // namespace

TEST_F(Panel, SlidersReachTheirLimitsAndNoMore)
{
    std::size_t checked = 0;
    for (const auto& [step, names] : kSteps)
        for (const std::string& name : names) {
            const zre::ParamRange& range = *zre::findParamRange(name);
            auto* slider = panel.findChild<QSlider*>(QString::fromStdString(name));
            ASSERT_TRUE(slider) << name;
            EXPECT_EQ(slider->minimum(), std::lround(range.min / std::stod(step))) << name;
            EXPECT_EQ(slider->maximum(), std::lround(range.max / std::stod(step))) << name;
            slider->setValue(slider->minimum());
            EXPECT_EQ(static_cast<float>(range.get(params())), static_cast<float>(range.min));
            slider->setValue(slider->maximum());
            EXPECT_EQ(static_cast<float>(range.get(params())), static_cast<float>(range.max));
            slider->setValue(slider->maximum() - 3);
            EXPECT_NEAR(range.get(params()), range.max - 3 * std::stod(step), 1e-5) << name;
            ++checked;
        }
    std::size_t ranged = 0;
    for (const QSlider* slider : panel.findChildren<QSlider*>())
        ranged += zre::findParamRange(slider->objectName().toStdString()) ? 1 : 0;
    EXPECT_EQ(checked, ranged) << "a slider has a parameter that this test does not know";
}

TEST_F(Panel, ARecordThatNobodyTouchedComesBackBitForBit)
{
    std::mt19937 random(4);
    for (int i = 0; i < 100; ++i) {
        const zre::ZRParams loaded = randomParams(random);
        panel.syncUiFromParams(loaded);
        zre::ZRParams back = loaded;
        panel.syncParamsFromUi(back);
        ASSERT_TRUE(back == loaded) << "record " << i;
    }
    EXPECT_TRUE(edits.isEmpty());
}

TEST_F(Panel, EveryControlShowsTheRecordAndNoneFollowsAnother)
{
    std::mt19937 random(5);
    const zre::ZRParams wanted = randomParams(random);
    panel.syncUiFromParams(wanted);
    zre::ZRParams shown; // through a record of defaults: what a control left out would stay there
    panel.syncParamsFromUi(shown);
    for (const auto& [step, names] : kSteps)
        for (const std::string& name : names)
            EXPECT_EQ(zre::findParamRange(name)->get(shown), zre::findParamRange(name)->get(wanted))
                << name;
    for (const char* name : {"nearChannel", "farChannel", "depthMapMode", "anaglyphMode",
                             "starDepthModel", "starEdgeGlow", "starEdgeSoftness"})
        EXPECT_EQ(zre::findParamRange(name)->get(shown), zre::findParamRange(name)->get(wanted))
            << name;
    EXPECT_EQ(shown.backgroundFloor, wanted.backgroundFloor);
    using Flag = bool zre::ZRParams::*;
    for (const Flag flag : {&zre::ZRParams::starSeparationEnabled, &zre::ZRParams::starClusterSplit,
                            &zre::ZRParams::aiStarSeparation, &zre::ZRParams::starSoftEdges,
                            &zre::ZRParams::resolveDistance, &zre::ZRParams::manualAnchorOn,
                            &zre::ZRParams::floorAuto})
        EXPECT_EQ(shown.*flag, wanted.*flag);
    EXPECT_EQ(shown.luminanceEnabled, wanted.luminanceEnabled);
    EXPECT_EQ(shown.narrowbandEnabled, wanted.narrowbandEnabled);
    EXPECT_EQ(shown.colorDepthEnabled, wanted.colorDepthEnabled);
    EXPECT_EQ(shown.depthMapEnabled, wanted.depthMapEnabled);
    EXPECT_EQ(shown.invertDepth, wanted.invertDepth);
    EXPECT_EQ(shown.autoConvergence, wanted.autoConvergence);
    EXPECT_EQ(shown.swapEyes, wanted.swapEyes);
    EXPECT_EQ(shown.postEnabled, wanted.postEnabled);
}

TEST_F(Panel, NumbersThatAreNoneOrTooLargeAreBound)
{
    zre::ZRParams wild;
    wild.smoothness = NAN;
    wild.parallaxAmount = INFINITY;
    wild.depthGamma = -1e30f;
    wild.anaglyphMode = 99;
    wild.nearChannel = -7;
    panel.syncUiFromParams(wild);
    const zre::ZRParams bound = params();
    EXPECT_EQ(bound.smoothness, 2.0f);
    EXPECT_EQ(bound.parallaxAmount, 100.0f);
    EXPECT_EQ(bound.depthGamma, 0.1f);
    EXPECT_EQ(bound.anaglyphMode, 3);
    EXPECT_EQ(bound.nearChannel, 0);
}

TEST_F(Panel, ADragIsOneGestureAndTheNextOneAnother)
{
    auto& slider = get<QSlider>("smoothness");
    for (int drag = 0; drag < 2; ++drag) {
        slider.setSliderDown(true);
        for (int step = 0; step < 4; ++step)
            slider.setSliderPosition(slider.value() + 5);
        slider.setSliderDown(false);
    }
    get<QSlider>("depthGamma").setValue(150);
    ASSERT_EQ(edits.size(), 9);
    std::set<int> first;
    for (int i = 0; i < 4; ++i)
        first.insert(edits[i][1].toInt());
    EXPECT_EQ(first.size(), 1U);
    EXPECT_EQ(edits[3][1].toInt() + 1, edits[4][1].toInt());
    EXPECT_EQ(edits[4][1], edits[7][1]);
    EXPECT_NE(edits[7][1], edits[8][1]);
    EXPECT_FLOAT_EQ(params().smoothness, 6.0f);
}

TEST_F(Panel, TypedValuesKeepWhatTheSliderCannotShow)
{
    type("parallaxAmount.box", "20.25 px");
    EXPECT_EQ(params().parallaxAmount, 20.25f);
    EXPECT_EQ(get<QSlider>("parallaxAmount").value(), 20);
    type("postWhite.box", "37.5");
    EXPECT_FLOAT_EQ(params().postWhite, 0.375f);
    type("postBlack.box", "-3 %");
    EXPECT_EQ(params().postBlack, 0.0f);
    EXPECT_EQ(edits.size(), 2); // the last one was bound to what stood there
    for (const char* nonsense : {"", "much", "nan", "1e999"}) {
        type("smoothness.box", nonsense);
        EXPECT_EQ(get<QLineEdit>("smoothness.box").text(), "2.0 px");
    }
    EXPECT_EQ(edits.size(), 2);
}

TEST_F(Panel, LeavingABoxUntouchedChangesNothing)
{
    zre::ZRParams fine;
    fine.smoothness = 2.03456789f;
    panel.syncUiFromParams(fine);
    emit get<QLineEdit>("smoothness.box").editingFinished();
    EXPECT_EQ(params().smoothness, fine.smoothness);
    EXPECT_TRUE(edits.isEmpty());
}

TEST_F(Panel, ABoxKeepsTheUndoKeysOnlyWhileSomethingIsTyped)
{
    auto& box = get<QLineEdit>("smoothness.box");
    const auto keepsUndo = [&box] {
        QKeyEvent key(QEvent::ShortcutOverride, Qt::Key_Z, Qt::ControlModifier);
        key.ignore();
        QApplication::sendEvent(&box, &key);
        return key.isAccepted();
    };
    EXPECT_FALSE(keepsUndo());
    QKeyEvent typed(QEvent::KeyPress, Qt::Key_7, Qt::NoModifier, "7");
    QApplication::sendEvent(&box, &typed);
    EXPECT_TRUE(keepsUndo());
    emit box.editingFinished();
    EXPECT_FALSE(keepsUndo());
}

TEST_F(Panel, RawNumbersComeAndGoWithTheSetting)
{
    appcfg::setShowValuesAsPercent(false);
    panel.refreshValueTexts();
    EXPECT_EQ(get<QLineEdit>("edgePreservation.box").text(), "0.50");
    type("edgePreservation.box", "0.25");
    appcfg::setShowValuesAsPercent(true);
    panel.refreshValueTexts();
    EXPECT_EQ(get<QLineEdit>("edgePreservation.box").text(), "25 %");
    EXPECT_EQ(params().edgePreservation, 0.25f);
}

TEST_F(Panel, ConvergenceIsGreyWhileItIsFoundAutomatically)
{
    EXPECT_FALSE(get<QSlider>("convergence").isEnabled());
    EXPECT_FALSE(get<QLineEdit>("convergence.box").isEnabled());
    get<QCheckBox>("autoConvergence").click();
    EXPECT_TRUE(get<QSlider>("convergence").isEnabled());
    zre::ZRParams automatic;
    panel.syncUiFromParams(automatic);
    EXPECT_FALSE(get<QSlider>("convergence").isEnabled());
}

TEST_F(Panel, SectionsThatNeedAnImageWaitForOne)
{
    panel.setImageGatedSectionsEnabled(false);
    for (const char* name : {"smoothness", "parallaxAmount", "postGamma", "color0.depth"})
        EXPECT_FALSE(get<QSlider>(name).isEnabled()) << name;
    EXPECT_TRUE(get<QSlider>("tint.balance").isEnabled());
    EXPECT_TRUE(get<QComboBox>("anaglyphMode").isEnabled());
    panel.setImageGatedSectionsEnabled(true);
    EXPECT_TRUE(get<QSlider>("smoothness").isEnabled());
    EXPECT_FALSE(get<QSlider>("convergence").isEnabled()) << "its own gate stays";
}

TEST_F(Panel, DefaultsComeBackForOneControlASectionAndTheGrade)
{
    std::mt19937 random(6);
    panel.syncUiFromParams(randomParams(random));
    const zre::ZRParams defaults;
    const zre::ZRParams before = params();
    QMouseEvent twice(QEvent::MouseButtonDblClick, {2, 2}, {2, 2}, Qt::LeftButton, Qt::LeftButton,
                      Qt::NoModifier);
    for (QLabel* label : panel.findChildren<QLabel*>())
        if (label->buddy() == &get<QSlider>("smoothness"))
            QApplication::sendEvent(label, &twice);
    EXPECT_EQ(params().smoothness, defaults.smoothness);
    EXPECT_EQ(params().depthGamma, before.depthGamma);
    get<QAbstractButton>("reset.Depth filters").click();
    EXPECT_EQ(params().depthGamma, defaults.depthGamma);
    EXPECT_EQ(params().structureWeight, before.structureWeight);
    get<QAbstractButton>("post.reset").click();
    EXPECT_EQ(params().postHue, 0.0f);
    EXPECT_EQ(params().postWhite, 1.0f);
    EXPECT_EQ(params().postEnabled, before.postEnabled);
    EXPECT_EQ(edits.size(), 3);
}

TEST_F(Panel, TheWheelScrollsThePanelUnlessAControlHasTheFocus)
{
    panel.resize(360, 200);
    QApplication::processEvents();
    showTab("Depth");
    auto& slider = get<QSlider>("smoothness");
    QScrollBar& bar = *qobject_cast<QScrollArea*>(panel.findChild<QTabWidget*>()->currentWidget())
                           ->verticalScrollBar();
    const auto wheel = [&] {
        QWheelEvent event({4, 4}, slider.mapToGlobal(QPointF(4, 4)), {}, {0, -120}, Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QSpontaneKeyEvent::setSpontaneous(
            &event);                   // as from a hand: others do not go on to the parent
        qApp->notify(&slider, &event); // sendEvent would take the mark off
    };
    slider.clearFocus();
    wheel();
    EXPECT_EQ(slider.value(), 20);
    EXPECT_GT(bar.value(), 0);
    slider.setFocus();
    wheel();
    EXPECT_LT(slider.value(), 20);
}

TEST_F(Panel, TheKeyboardWalksFromTopToBottom)
{
    auto& tabs = *panel.findChild<QTabWidget*>();
    for (int tab = 0; tab < tabs.count(); ++tab) {
        tabs.setCurrentIndex(tab);
        QApplication::processEvents();
        const QWidget* page = tabs.currentWidget();
        int last = -1;
        int walked = 0;
        for (const QWidget* each = page->nextInFocusChain(); each && each != page;
             each = each->nextInFocusChain()) {
            if (!page->isAncestorOf(each) || !(each->focusPolicy() & Qt::TabFocus) ||
                !each->isVisible())
                continue;
            const QPoint at = each->mapTo(page, each->rect().center());
            EXPECT_GE(at.y(), last - each->height()) << qPrintable(each->objectName());
            last = std::max(last, at.y());
            ++walked;
        }
        EXPECT_GT(walked, 10) << tab;
    }
}

TEST_F(Panel, EveryControlExplainsItselfAndHasAName)
{
    for (const QWidget* each : panel.findChildren<QWidget*>()) {
        const bool control =
            qobject_cast<const QSlider*>(each) || qobject_cast<const QLineEdit*>(each) ||
            qobject_cast<const QComboBox*>(each) || qobject_cast<const QAbstractButton*>(each);
        const bool own = each->objectName().startsWith("qt_") ||
                         each->parentWidget()->inherits("QTabBar") || each->inherits("QScrollBar");
        if (!control || own)
            continue;
        EXPECT_FALSE(each->toolTip().isEmpty()) << qPrintable(each->objectName());
        const auto* button = qobject_cast<const QAbstractButton*>(each);
        EXPECT_FALSE(each->accessibleName().isEmpty() && (!button || button->text().isEmpty()))
            << qPrintable(each->objectName());
    }
    EXPECT_TRUE(get<QSlider>("smoothness").toolTip().contains("0.0 px to 50.0 px; default 2.0 px"));
}

TEST_F(Panel, TheTintIsTheUsersAndNoParameter)
{
    QSignalSpy tint(&panel, &ControlPanel::glassesTintChanged);
    const zre::ZRParams before = params();
    get<QSlider>("tint.balance").setValue(40);
    get<QSlider>("tint.cyanHue").setValue(-25);
    EXPECT_EQ(appcfg::anaglyphBalance(), 0.4);
    EXPECT_EQ(appcfg::anaglyphCyanHue(), -0.25);
    EXPECT_EQ(ControlPanel().findChild<QSlider*>("tint.balance")->value(), 40);
    get<QAbstractButton>("tint.reset").click();
    EXPECT_EQ(appcfg::anaglyphBalance(), 0.0);
    EXPECT_EQ(appcfg::anaglyphCyanHue(), 0.0);
    EXPECT_EQ(tint.size(), 4);
    EXPECT_TRUE(edits.isEmpty());
    EXPECT_TRUE(params() == before);
}

TEST_F(Panel, OnlyASectionWithControlsOffersToResetThem)
{
    EXPECT_TRUE(get<QAbstractButton>("reset.Depth and disparity").isHidden());
    for (const char* section : {"reset.Star separation", "reset.Stereo depth", "reset.Anaglyph"})
        EXPECT_FALSE(get<QAbstractButton>(section).isHidden()) << section;
}

// Settings of another version may hold a number, or a tab that this one has not.
TEST_F(Panel, TheTabInFrontIsKeptByItsTitle)
{
    panel.findChild<QTabWidget*>()->setCurrentIndex(3);
    EXPECT_EQ(ControlPanel().currentTab(), panel.currentTab());
    for (const QString kept : {"3", "Flight", ""}) {
        appcfg::setLastTab(kept);
        EXPECT_EQ(ControlPanel().currentTab(), "Stars");
    }
}
