#include "app/video/spatial_dialog.h"

#include <QComboBox>
#include <QLabel>
#include <QRadioButton>

#include <gtest/gtest.h>

namespace {

QRadioButton& radio(SpatialDialog& dialog, const QString& name)
{
    return *dialog.findChild<QRadioButton*>(name);
}

} // namespace

TEST(SpatialDialog, WhatIsChosenComesBackAndTheSizeBelongsToVideosOnly)
{
    SpatialDialog dialog(kVr180Words, {{6000, 4000}, {1920, 1080}}, nullptr);
    auto& size = *dialog.findChild<QComboBox*>("spatialSize");
    EXPECT_EQ(dialog.windowTitle(), "Export VR180");
    EXPECT_FALSE(dialog.choice().isVideo());
    EXPECT_EQ(dialog.choice().width, 0) << "a picture keeps its size";
    EXPECT_FALSE(size.isEnabled());

    radio(dialog, "spatialStill.mp4").setChecked(true);
    EXPECT_TRUE(dialog.choice().isVideo());
    EXPECT_EQ(dialog.choice().width, 8192) << "12000 pixels are more than players show";
    EXPECT_EQ(dialog.findChild<QLabel*>("spatialOutcome")->text(), "8192 x 2730 pixels");

    radio(dialog, "spatialContent.2").setChecked(true);
    EXPECT_EQ(dialog.choice().content, SpatialContent::Flyby);
    EXPECT_FALSE(radio(dialog, "spatialStill.png").isEnabled());
    EXPECT_EQ(dialog.findChild<QLabel*>("spatialOutcome")->text(), "3840 x 1080 pixels")
        << "no frame is enlarged";
}

TEST(SpatialDialog, AppleKnowsVideosOnlyAndAFlightHasToBeThere)
{
    SpatialDialog dialog(kAppleSpatialWords, {{601, 401}, {}}, nullptr);
    dialog.show();
    EXPECT_EQ(dialog.findChild<QLabel*>("spatialOutcome")->text(), "1202 x 400 pixels") << "even";
    EXPECT_TRUE(dialog.choice().isVideo());
    EXPECT_EQ(dialog.choice().still, SpatialStill::Mp4);
    EXPECT_FALSE(radio(dialog, "spatialContent.2").isVisible());
    EXPECT_FALSE(radio(dialog, "spatialStill.jpg").isVisible());
    EXPECT_EQ(dialog.findChild<QComboBox*>("spatialSize")->currentIndex(), 0);
}
