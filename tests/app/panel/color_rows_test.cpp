#include <random>

#include <QAbstractButton>
#include <QCheckBox>
#include <QSignalSpy>
#include <QSlider>

#include <gtest/gtest.h>

#include "app/panel/control_panel.h"
#include "engine/depth/color_depth_rows.h"

namespace {

struct ColorRows : testing::Test
{
    ControlPanel panel;
    QSignalSpy edits{&panel, &ControlPanel::paramsEdited};

    void load(const std::string& text)
    {
        zre::ZRParams params;
        params.colorDepthEnabled = true;
        params.colorDepthEntries = text;
        panel.syncUiFromParams(params);
    }
    std::string text()
    {
        zre::ZRParams params;
        panel.syncParamsFromUi(params);
        return params.colorDepthEntries;
    }
    std::vector<zre::ColorDepthRow> rows()
    {
        std::vector<zre::ColorDepthRow> out;
        zre::parseColorDepthRows(text(), out);
        return out;
    }
    QAbstractButton& button(const char* name) { return *panel.findChild<QAbstractButton*>(name); }
    QSlider& slider(const char* name) { return *panel.findChild<QSlider*>(name); }
};

std::string twelveRows()
{
    std::string text;
    for (int i = 0; i < 12; ++i)
        text +=
            std::to_string(i % 2) + ",0.1234,0.5,0." + std::to_string(10 + i) + "00,0.3333,0.6667;";
    text.pop_back();
    return text;
}

} // namespace

TEST_F(ColorRows, ATextThatNobodyTouchedStaysAsItWas)
{
    for (const std::string& each : {std::string(), std::string("1,0.5,0.25,0.125,1.5,0.3"),
                                    std::string("nonsense;;1,2"), twelveRows()}) {
        load(each);
        EXPECT_EQ(text(), each);
    }
    EXPECT_TRUE(edits.isEmpty());
}

TEST_F(ColorRows, AChangeTouchesItsFieldAlone)
{
    load(twelveRows());
    const std::vector<zre::ColorDepthRow> before = rows();
    slider("color3.depth").setValue(12);
    slider("color7.tolerance").setValue(99);
    button("color0.enabled").click();
    std::vector<zre::ColorDepthRow> wanted = before;
    wanted[3].depth = 0.12f;
    wanted[7].tolerance = 0.99f;
    wanted[0].enabled = true;
    EXPECT_EQ(text(), zre::colorDepthRowsText(wanted)); // the rows beyond the panel's among them
    EXPECT_EQ(edits.size(), 3);
}

TEST_F(ColorRows, FewRowsGrowToTheTenOfThePanelOnceOneChanges)
{
    load("1,1,0,0,0.2,0.9");
    EXPECT_EQ(panel.activeColorRows(), 1);
    panel.setPickedColor(4, QColor::fromRgbF(0.25f, 0.5f, 0.75f));
    const std::vector<zre::ColorDepthRow> after = rows();
    ASSERT_EQ(after.size(), 10U);
    EXPECT_EQ(panel.activeColorRows(), 2);
    EXPECT_TRUE(after[4].enabled);
    EXPECT_NEAR(after[4].r, 0.25f, 1e-4f);
    EXPECT_NEAR(after[4].g, 0.5f, 1e-4f);
    EXPECT_NEAR(after[4].b, 0.75f, 1e-4f);
    EXPECT_EQ(after[0].depth, 0.9f);
    panel.setPickedColor(10, Qt::red);
    panel.setPickedColor(-1, Qt::red);
    EXPECT_EQ(edits.size(), 1);
}

TEST_F(ColorRows, AskingForAColorNamesTheRow)
{
    load("1,1,0,0,0.2,0.9");
    QSignalSpy pick(&panel, &ControlPanel::pickColorRequested);
    QSignalSpy choose(&panel, &ControlPanel::chooseColorRequested);
    button("color6.pick").click();
    button("color0.swatch").click();
    ASSERT_EQ(pick.size(), 1);
    EXPECT_EQ(pick[0][0].toInt(), 6);
    ASSERT_EQ(choose.size(), 1);
    EXPECT_EQ(choose[0][0].toInt(), 0);
    EXPECT_EQ(choose[0][1].value<QColor>(), QColor(Qt::red));
    EXPECT_TRUE(edits.isEmpty());
}

TEST_F(ColorRows, ValuesBeyondTheSlidersDoNoHarm)
{
    load("1,5,9e30,-4,-1,1e30");
    EXPECT_EQ(slider("color0.tolerance").value(), 0);
    EXPECT_EQ(slider("color0.depth").value(), 100);
    panel.setPickedColor(0, QColor());
    slider("color0.depth").setValue(50);
    EXPECT_EQ(rows().at(0).depth, 0.5f);
}
