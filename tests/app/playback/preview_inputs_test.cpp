#include "app/playback/preview_inputs.h"

#include "tests/app/playback/moving_scene.h"

namespace {

TEST(PreviewBuckets, TheFifthTakesThePlaceOfTheOneNotUsedForLongest)
{
    const MovingScene scene;
    PreviewBuckets buckets;
    for (const double scale : {0.1, 0.2, 0.3, 0.4})
        ASSERT_TRUE(buckets.bucketFor(scene.flyby, scale));
    buckets.bucketFor(scene.flyby, 0.1); // used again, so that 0.2 is the oldest
    EXPECT_EQ(buckets.scales().size(), 4u);
    buckets.bucketFor(scene.flyby, 0.5);
    EXPECT_EQ(buckets.scales(), (std::vector<double>{0.1, 0.3, 0.4, 0.5}));
    buckets.clearBuckets();
    EXPECT_EQ(buckets.bytes(), 0);
    EXPECT_FALSE(buckets.bucketFor({}, 0.5)) << "there is nothing to copy";
}

TEST(PreviewBuckets, BytesBoundThemToo)
{
    const zre::Image wide = zrtest::noise(8192, 2048, 0, 1); // 256 MiB at full size
    MotionInputs inputs;
    inputs.working = inputs.depth = &wide;
    PreviewBuckets buckets;
    for (const double scale : {0.9, 0.95, 0.98}) {
        buckets.bucketFor(inputs, scale);
        EXPECT_LE(buckets.bytes(), PreviewBuckets::kMostBytes);
    }
    EXPECT_EQ(buckets.scales(), (std::vector<double>{0.95, 0.98}));
}

TEST(PreviewBuckets, EveryFrameGetsTheSharpnessOfItsZoom)
{
    MovingScene scene;
    const double zooms[] = {1.0, 1.9, 2.1, 1.0, 9.0};
    scene.flyby.cameras.resize(5);
    for (std::size_t i = 0; i < 5; ++i)
        scene.flyby.cameras[i].zoom = zooms[i];
    PreviewBuckets buckets;
    const auto plan = buckets.planFrameBuckets(scene.flyby, 0.25, 5);
    ASSERT_EQ(plan.size(), 5u);
    const double scales[] = {0.25, 0.5, 1.0, 0.25, 1.0};
    for (std::size_t i = 0; i < 5; ++i)
        EXPECT_DOUBLE_EQ(plan[i]->scale, scales[i]) << i;
    EXPECT_EQ(plan[0], plan[3]);
    EXPECT_EQ(motionOf(*plan[2], scene.flyby).working, &scene.image) << "full size is not copied";

    EXPECT_TRUE(buckets.planFrameBuckets(scene.flyby, 0.999, 5).empty());
    EXPECT_TRUE(buckets.planFrameBuckets(scene.flyby, 0.25, 6).empty()) << "more than cameras";
    EXPECT_TRUE(buckets.planFrameBuckets(scene.flyby, 0.25, 1).empty()) << "nothing zooms";
    scene.flyby.cameras = std::vector<zre::FlybyCamera>(5);
    double fraction = 0.05; // wants 0.05, 0.1, 0.2, 0.4 and 0.8: more than are held at once
    for (std::size_t i = 0; i < 5; ++i, fraction *= 2)
        scene.flyby.cameras[i].zoom = fraction / 0.05;
    EXPECT_TRUE(buckets.planFrameBuckets(scene.flyby, 0.05, 5).empty());
}

TEST(PreviewBuckets, APathCanMoveWithoutNewImages)
{
    MovingScene scene;
    scene.flyby.params.flybyFrameW = 31;
    PreviewBuckets buckets;
    const PreviewInputs* bucket = buckets.bucketFor(scene.flyby, 0.5);
    EXPECT_EQ(bucket->working.width, 32);
    EXPECT_EQ(bucket->params.flybyFrameW, 16) << "halves are rounded up";
    const float* pixels = bucket->working.data.data();
    scene.flyby.cameras[0].cx = 12.0;
    scene.flyby.params.parallaxAmount = 8.0f;
    scene.flyby.params.maxDisparity = 6.0f;
    bucket = buckets.bucketFor(scene.flyby, 0.5);
    EXPECT_EQ(bucket->working.data.data(), pixels);
    EXPECT_DOUBLE_EQ(bucket->cameras[0].cx, 6.0);
    EXPECT_FLOAT_EQ(bucket->params.parallaxAmount, 4.0f);
    EXPECT_FLOAT_EQ(bucket->params.maxDisparity, 3.0f);
}

} // namespace
