#include "app/panel/flyby_frame_boxes.h"

#include <QComboBox>
#include <QPushButton>
#include <QSpinBox>

#include <gtest/gtest.h>

#include "app/panel/control_panel.h"

namespace {

struct FlybyFrame : testing::Test
{
    ControlPanel panel;
    QSpinBox& width = *panel.findChild<QSpinBox*>("flybyFrameW");
    QSpinBox& height = *panel.findChild<QSpinBox*>("flybyFrameH");
    QComboBox& ratio = *panel.findChild<QComboBox*>("flybyFrameRatio");
    int edits = 0;

    FlybyFrame()
    {
        panel.refreshFlybyFrameBoxes(6000, 4000);
        QObject::connect(&panel, &ControlPanel::paramsEdited, [this] { ++edits; });
    }
    QSize stored() const
    {
        zre::ZRParams params;
        panel.syncParamsFromUi(params);
        return {params.flybyFrameW, params.flybyFrameH};
    }
    void load(int w, int h)
    {
        zre::ZRParams params;
        params.flybyFrameW = w;
        params.flybyFrameH = h;
        panel.syncUiFromParams(params);
    }
    void choose(const char* label)
    {
        ratio.setCurrentText(label);
        emit ratio.activated(ratio.currentIndex());
    }
};

TEST_F(FlybyFrame, TheBoxesShowWhatAFlybyMakesOfTheParameters)
{
    struct Row
    {
        int w, h, shownW, shownH;
        const char* ratio;
    };
    for (const Row& row :
         {Row{0, 0, 6000, 4000, "Source size"}, Row{1920, 1080, 1920, 1080, "16:9"},
          Row{9000, 1080, 6000, 1080, ""}, Row{1000, -3, 1000, 4000, ""},
          Row{3200, 4000, 3200, 4000, "4:5"}, Row{7, 7, 7, 7, "1:1"}}) {
        load(row.w, row.h);
        EXPECT_EQ(width.value(), row.shownW);
        EXPECT_EQ(height.value(), row.shownH);
        EXPECT_EQ(ratio.currentText(), row.ratio);
        EXPECT_EQ(stored(), QSize(row.w, row.h)) << "as it was loaded";
    }
    EXPECT_EQ(edits, 0);
}

TEST_F(FlybyFrame, ARatioGivesTheLargestFrameThatFits)
{
    const std::pair<const char*, QSize> rows[] = {{"16:9", {6000, 3375}}, {"4:3", {5333, 4000}},
                                                  {"1:1", {4000, 4000}},  {"4:5", {3200, 4000}},
                                                  {"9:16", {2250, 4000}}, {"Source size", {0, 0}}};
    for (const auto& [label, frame] : rows) {
        choose(label);
        EXPECT_EQ(stored(), frame) << label;
        EXPECT_EQ(ratio.currentText(), label);
    }
    EXPECT_EQ(edits, 6);
    width.setValue(1234);
    EXPECT_EQ(stored(), QSize(1234, 0)) << "the other side stays the picture's";
    panel.findChild<QPushButton*>("flybyFrameReset")->click();
    EXPECT_EQ(stored(), QSize(0, 0));
    EXPECT_EQ(width.value(), 6000);
    EXPECT_EQ(edits, 8);
    EXPECT_EQ(largestFrame(16, 9, {1, 1}), QSize(1, 1));
    EXPECT_EQ(largestFrame(16, 9, {}), QSize(0, 0));
}

TEST_F(FlybyFrame, AnotherPictureMovesTheLimits)
{
    load(1920, 1080);
    panel.refreshFlybyFrameBoxes(800, 600);
    EXPECT_EQ(width.maximum(), 800);
    EXPECT_EQ(width.value(), 800);
    EXPECT_EQ(stored(), QSize(1920, 1080)) << "nobody edited it";
}

} // namespace
