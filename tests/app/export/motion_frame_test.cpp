#include "app/export/motion_frame.h"

#include "app/export/frame_farm.h"
#include "app/export/motion_pictures.h"
#include "app/export/video_plan.h"
#include "engine/flight/flyby_frame.h"
#include "engine/qt/zre_qt.h"
#include "engine/stereo/views.h"
#include "tests/support/testkit.h"

namespace {

using zre::Image;
using zrtest::imagesNear;

struct Scene
{
    Image image = zrtest::noise(41, 30, 1, 1);
    Image depth = zrtest::noise(41, 30, 0, 2);
    MotionInputs inputs;

    Scene()
    {
        inputs.working = &image;
        inputs.depth = &depth;
        inputs.params.autoConvergence = false;
        inputs.params.convergence = 0.3f;
        inputs.params.parallaxAmount = 9.0f;
        inputs.params.wiggleAmplitude = 0.0f;
        inputs.convergence = static_cast<double>(inputs.params.convergence);
    }
    Image frame(int number, int stereo3d) const
    {
        Image out;
        renderMotionFrame(inputs, number, stereo3d, out);
        return out;
    }
};

TEST(MotionFrame, AMotionThatStandsStillIsTheStereoPicture)
{
    Scene scene;
    for (const bool swapped : {false, true}) {
        scene.inputs.params.swapEyes = swapped;
        Image expected;
        zre::renderAnaglyph(scene.image, scene.depth, scene.inputs.params, expected, nullptr, {},
                            nullptr, nullptr, 1.0, 1.0, 1.0);
        EXPECT_TRUE(imagesNear(scene.frame(3, kAnaglyph), expected, 0.0)) << swapped;
        zre::renderSideBySide(scene.image, scene.depth, scene.inputs.params, expected, nullptr, {},
                              nullptr, nullptr);
        EXPECT_TRUE(imagesNear(scene.frame(3, kSideBySide), expected, 0.0)) << swapped;
    }
    EXPECT_TRUE(imagesNear(scene.frame(0, kFlat), scene.image, 0.0));
}

TEST(MotionFrame, EveryFormatHasItsSize)
{
    Scene scene;
    zre::FlybyCamera camera;
    camera.cx = 20.0;
    camera.cy = 15.0;
    for (const bool flyby : {false, true}) {
        scene.inputs.flyby = flyby;
        scene.inputs.cameras = {camera, camera};
        scene.inputs.params.flybyFrameW = 21;
        scene.inputs.params.flybyFrameH = 13;
        const QSize one = scene.inputs.frameSize();
        EXPECT_EQ(one, flyby ? QSize(21, 13) : QSize(41, 30));
        for (const int stereo : {kFlat, kAnaglyph, kSideBySide, kHalfSideBySide, kTopBottom}) {
            const Image out = scene.frame(1, stereo);
            EXPECT_EQ(QSize(out.width, out.height), packedSize(stereo, one)) << flyby << stereo;
        }
    }
    scene.inputs.cameras.clear();
    EXPECT_EQ(scene.inputs.frames(), 0);
    EXPECT_FALSE(scene.frame(0, kFlat).usable());
    scene.inputs.flyby = false;
    scene.inputs.params.wiggleFrames = 0;
    EXPECT_EQ(scene.inputs.frames(), 30);
}

TEST(MotionPictures, MemoryUsedAgainNeverShowsInAPicture)
{
    Scene scene;
    scene.inputs.params.wiggleAmplitude = 1.0f;
    const auto picture = motionPictures(scene.inputs, 2, kFlat, QImage::Format_RGB888);
    FrameFarm farm({12, 3, 12}, picture);
    for (int i = 0; i < 12; ++i) {
        ASSERT_TRUE(farm.waitForNext(20000));
        EXPECT_EQ(farm.takeNext(),
                  zre_qt::toQImage(scene.frame(i + 2, kFlat), QImage::Format_RGB888))
            << i;
    }
    scene.image = {};
    EXPECT_TRUE(picture(0).isNull());
}

} // namespace
