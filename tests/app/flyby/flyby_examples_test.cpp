#include "app/flyby/flyby_examples.h"

#include <set>

#include <gtest/gtest.h>

#include "app/session/flyby_path.h"

namespace {

FlybyPath compiled(const FlybyExample& example, QSize image)
{
    return compileFlyby(flybyExampleScript(example, image), {}, image.width(), image.height(), {});
}

TEST(FlybyExamples, EachFliesOverPicturesOfAnySize)
{
    std::set<QString> texts;
    for (const FlybyExample& example : kFlybyExamples) {
        const QString text = flybyExampleScript(example, kExampleSize);
        texts.insert(text);
        EXPECT_TRUE(text.section('\n', 1, 1).startsWith("# For ")) << example.title;
        const FlybyPath original = compiled(example, kExampleSize);
        for (const QSize image : {kExampleSize, QSize(300, 200), QSize(1000, 1500),
                                  QSize(9576, 6388), QSize(2048, 2048)}) {
            const FlybyPath path = compiled(example, image);
            ASSERT_TRUE(path.errors.empty())
                << example.title << ": " << path.errors.front().message;
            EXPECT_FALSE(path.builtIn);
            ASSERT_EQ(path.cameras.size(), original.cameras.size()) << example.title;
            EXPECT_GE(path.cameras.size(), 96u) << "four seconds";
            for (std::size_t i = 0; i < path.cameras.size(); ++i) {
                // The same place of the picture, but for the rounding to whole pixels.
                const double x = original.cameras[i].cx / kExampleSize.width() * image.width();
                const double y = original.cameras[i].cy / kExampleSize.height() * image.height();
                ASSERT_NEAR(path.cameras[i].cx, x, 0.51) << example.title << " frame " << i;
                ASSERT_NEAR(path.cameras[i].cy, y, 0.51) << example.title << " frame " << i;
            }
        }
    }
    EXPECT_EQ(texts.size(), kFlybyExamples.size());
}

TEST(FlybyExamples, TheRoundTripComesBack)
{
    for (const char* resource : {":/flyby/loop.zrsc", ":/flyby/portrait.zrsc"}) {
        const FlybyPath path = compiled({"", resource}, {3000, 2000});
        const zre::FlybyCamera& first = path.cameras.front();
        const zre::FlybyCamera& last = path.cameras.back();
        EXPECT_NEAR(first.cx, last.cx, 1.0);
        EXPECT_NEAR(first.cy, last.cy, 1.0);
        EXPECT_NEAR(first.zoom, last.zoom, 0.01);
        EXPECT_NEAR(first.warp, last.warp, 0.01);
    }
}

} // namespace
