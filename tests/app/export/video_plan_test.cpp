#include "app/export/video_plan.h"

#include <gtest/gtest.h>

namespace {

TEST(VideoPlan, FitsFramesIntoTheBox)
{
    const QString crop = "crop=trunc(iw/2)*2:trunc(ih/2)*2";
    const struct
    {
        QSize frame;
        QSize box;
        int stereo3d;
        bool stars;
        QString filter;
    } cases[] = {
        {{901, 601}, {}, kFlat, true, crop},
        {{640, 360},
         {1920, 1080},
         kFlat,
         true,
         "scale=640:360:flags=lanczos,pad=1920:1080:640:360:color=black"},
        {{3840, 2560},
         {1920, 1080},
         kFlat,
         false,
         "scale=1620:1080:flags=lanczos,pad=1920:1080:150:0:color=black"},
        {{3840, 2560},
         {1920, 1080},
         kFlat,
         true,
         "scale=1620:1080:flags=area,pad=1920:1080:150:0:color=black"},
        {{1920, 1080},
         {1920, 1080},
         kFlat,
         true,
         "scale=1920:1080:flags=lanczos,pad=1920:1080:0:0:color=black"},
        {{1920, 1080},
         {960, 540},
         kSideBySide,
         false,
         "scale=1920:540:flags=lanczos,pad=1920:540:0:0:color=black"},
        {{1001, 601},
         {500, 300},
         kHalfSideBySide,
         false,
         "scale=498:300:flags=lanczos,pad=500:300:1:0:color=black"},
        {{100000, 3},
         {640, 360},
         kFlat,
         false,
         "scale=640:2:flags=lanczos,pad=640:360:0:179:color=black"},
    };
    for (const auto& c : cases) {
        VideoPlan plan;
        plan.frame = c.frame;
        plan.box = c.box;
        plan.stereo3d = c.stereo3d;
        plan.hasStars = c.stars;
        EXPECT_EQ(videoFilter(plan), c.filter) << c.filter.toStdString();
    }
}

TEST(VideoPlan, ArgumentsKeepTheirOrder)
{
    VideoPlan plan;
    plan.frame = {101, 50};
    plan.stereo3d = kHalfSideBySide;
    plan.fps = 30;
    const QString text = encoderArguments(plan, "/tmp/out file.mp4").join('|');
    EXPECT_TRUE(text.startsWith("-y|-f|rawvideo|-pix_fmt|rgb24|-s|100x50|-r|30|-i|-|-vf|crop="))
        << text.toStdString();
    EXPECT_TRUE(text.contains("|-c:v|libx264|-pix_fmt|yuv420p|-crf|18|-preset|medium|"));
    EXPECT_TRUE(text.endsWith("|/tmp/out file.mp4"));
    plan.format = kGif;
    const QString gif = encoderArguments(plan, "a.gif").join('|');
    EXPECT_TRUE(
        gif.endsWith(",split[a][b];[a]palettegen=stats_mode=diff[p];[b][p]paletteuse=dither="
                     "bayer:bayer_scale=3|a.gif"));
    EXPECT_FALSE(gif.contains("-c:v"));
    EXPECT_EQ(stereoFormatFor(kGif, kTopBottom), kAnaglyph);
    EXPECT_EQ(stereoFormatFor(kGif, kFlat), kFlat);
    EXPECT_EQ(stereoFormatFor(kMp4, kTopBottom), kTopBottom);
    const QStringList pairs = sideBySideArguments({200, 50}, {400, 100}, 24, {"-x", "y"}, "p.mp4");
    EXPECT_TRUE(pairs.join('|').endsWith("|-x|y|p.mp4"));
    EXPECT_TRUE(pairs.join('|').contains("|scale=400:100:flags=lanczos"));
}

TEST(VideoPlan, ABatchHoldsAbout256MiB)
{
    EXPECT_EQ(frameBatch({1920, 1080}, 1000), 43);
    EXPECT_EQ(frameBatch({1920, 1080}, 7), 7);
    EXPECT_EQ(frameBatch({20000, 20000}, 100), 4);
    EXPECT_EQ(frameBatch({16, 16}, 1000), 128);
    EXPECT_EQ(frameBatch({}, 1000), 64);
}

} // namespace
