#include "app/playback/frame_cache.h"

#include <string>
#include <type_traits>
#include <utility>
#include <variant>

#include "app/export/video_plan.h"
#include "app/persist/param_table.h"
#include "app/playback/frame_cache_key.h"
#include "app/session/motion.h"
#include "app/session/render_pipeline.h"
#include "app/session/session.h"
#include "engine/qt/zre_qt.h"
#include "tests/app/playback/moving_scene.h"

namespace {

bool goOn(int, int)
{
    return true;
}

QImage expectedFrame(const MotionInputs& inputs, int frame)
{
    zre::Image out;
    renderMotionFrame(inputs, frame, kFlat, out);
    return zre_qt::toQImage(out).convertToFormat(QImage::Format_RGB32);
}

TEST(FrameCache, HoldsTheFramesThatTheExportDraws)
{
    const MovingScene scene;
    for (const MotionInputs& inputs : {scene.flyby, scene.wiggle(4), scene.wiggle(0)}) {
        FrameCache cache;
        ASSERT_TRUE(cache.buildFrameCache(inputs, {"k", "i", 1.0, 80, 3}, goOn));
        ASSERT_EQ(cache.frames(), inputs.frames());
        for (int i = 0; i < cache.frames(); ++i) {
            ASSERT_TRUE(cache.isBuilt(i));
            EXPECT_EQ(cache.frameAt(i), expectedFrame(inputs, i)) << i;
        }
        EXPECT_TRUE(cache.buckets().scales().empty());
    }
    FrameCache cache;
    cache.buildFrameCache(scene.wiggle(0), {"k", "i"}, goOn);
    EXPECT_EQ(cache.frames(), 30);
}

TEST(FrameCache, WithoutMemoryTheMotionKeepsItsLength)
{
    const MovingScene scene;
    zre::Image wide = zrtest::noise(11000, 5000, 0, 3); // 220 million bytes a frame
    MotionInputs inputs = scene.wiggle(4);
    inputs.working = inputs.depth = &wide;
    FrameCache cache;
    ASSERT_TRUE(cache.buildFrameCache(inputs, {"k", "i", 1.0, 20, 0}, goOn)); // 429 million bytes
    EXPECT_EQ(cache.frames(), 4);
    EXPECT_EQ(cache.planned(), 1);
    EXPECT_TRUE(cache.isBuilt(0));
    EXPECT_FALSE(cache.isBuilt(3));
    EXPECT_EQ(cache.frameAt(3), expectedFrame(inputs, 3));
    int asked = 0;
    const auto count = [&](int, int) { return ++asked > 0; };
    EXPECT_TRUE(cache.buildFrameCache(inputs, {"k", "i", 1.0, 20, 0}, count));
    EXPECT_EQ(asked, 0) << "all that fit stood already";
}

TEST(FrameCache, ACancelledBuildLeavesNothing)
{
    const MovingScene scene;
    for (const int after : {0, 1, 5}) {
        FrameCache cache;
        const auto cancel = [&](int done, int) { return done < after; };
        EXPECT_FALSE(cache.buildFrameCache(scene.wiggle(60), {"k", "i", 1.0, 80, 2}, cancel));
        EXPECT_EQ(cache.frames(), 0);
        EXPECT_TRUE(cache.renderPlaybackFrame(0).isNull());
        EXPECT_TRUE(cache.buildFrameCache(scene.wiggle(3), {"k", "i"}, goOn));
        EXPECT_EQ(cache.frames(), 3);
    }
    FrameCache cache;
    EXPECT_TRUE(cache.buildFrameCache({}, {"k", "i"}, goOn)) << "no picture, no frames, no failure";
    EXPECT_EQ(cache.frames(), 0);
}

TEST(FrameCache, ASmallerFlybyKeepsOneSizeAndSharpensWhereItZooms)
{
    MovingScene scene;
    scene.flyby.params.flybyFrameW = 40;
    FrameCache cache;
    ASSERT_TRUE(cache.buildFrameCache(scene.flyby, {"k", "i", 0.5, 80, 2}, goOn));
    EXPECT_EQ(cache.frameSize(), QSize(20, 24));
    EXPECT_EQ(cache.buckets().scales(), (std::vector<double>{0.5, 1.0}));
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(cache.frameAt(i).size(), QSize(20, 24));
        EXPECT_EQ(cache.frameAt(i), cache.renderPlaybackFrame(i)) << "built and drawn when due";
    }
    MotionInputs moved = scene.flyby;
    moved.cameras[0].cx = 44.0;
    const QImage before = cache.frameAt(0);
    ASSERT_TRUE(cache.buildFrameCache(moved, {"k2", "i", 0.5, 80, 2}, goOn));
    EXPECT_NE(cache.frameAt(0), before);
    scene.image = zrtest::noise(64, 48, 1, 77);
    const QImage old = cache.frameAt(0);
    ASSERT_TRUE(cache.buildFrameCache(moved, {"k3", "i2", 0.5, 80, 2}, goOn));
    EXPECT_NE(cache.frameAt(0), old) << "the smaller copies followed the picture";
}

/// Gives a parameter another value; false for a key that holds none.
template <class Field>
bool turn(zre::ZRParams& params, Field field)
{
    if constexpr (std::is_same_v<Field, float zre::ZRParams::*>)
        params.*field = params.*field * 0.9f + 0.01f;
    else if constexpr (std::is_same_v<Field, int zre::ZRParams::*>)
        params.*field += 1;
    else if constexpr (std::is_same_v<Field, bool zre::ZRParams::*>)
        params.*field = !(params.*field);
    else if constexpr (std::is_same_v<Field, std::string zre::ZRParams::*>)
        params.*field += "x";
    else
        return false;
    return true;
}

TEST(FrameCacheKey, ChangesWithAllThatShapesFrames)
{
    Session session;
    session.installSource("a", zrtest::noise(40, 30, 1, 4), {}, {});
    RenderPipeline pipeline(session);
    FlybyOptions options;
    double fraction = 0.5;
    bool flyby = true;
    const auto key = [&] {
        const MotionInputs inputs = motionInputs(session, pipeline, flyby, options);
        return frameCacheKey(session, pipeline, inputs, options, fraction);
    };
    const QString first = key();
    EXPECT_EQ(key(), first);
    const zre::ZRParams params = session.params;
    zrproj::forEachKey([&](const zrproj::ParamKey& row) {
        session.params = params;
        const bool turned = std::visit([&](auto field) { return turn(session.params, field); }, //
                                       row.field);
        const bool derived = row.name == std::string("starInputMode"); // by the images there are
        EXPECT_EQ(key() != first, turned && !derived) << row.name;
    });
    session.params = params;
    EXPECT_EQ(key(), first);
    const auto changes = [&](auto& place, auto value) {
        const auto kept = std::exchange(place, value);
        EXPECT_NE(key(), first);
        place = kept;
        EXPECT_EQ(key(), first);
    };
    changes(session.flybyScript, QString("hold 10"));
    changes(options.ongoingWiggle, false);
    changes(options.continuousLoop, false);
    changes(fraction, 0.25);
    changes(flyby, false);
    changes(session.generation, session.generation + 1);
}

} // namespace
