#include "engine/flight/flyby_frame.h"

#include <cmath>
#include <limits>
#include <numbers>
#include <thread>

#include "engine/stereo/eye.h"
#include "tests/support/testkit.h"

namespace {

using zre::FlybyCamera;
using zre::Image;
using zre::ZRParams;
using zrtest::imagesNear;
using zrtest::noise;

struct Scene
{
    Image image = noise(60, 40, 1, 1);
    Image depth = noise(60, 40, 0, 2);
    ZRParams params;
    bool ongoing = true;

    Scene() { params.parallaxAmount = 8.0f; }

    Image frame(const FlybyCamera& cam, double offsetX = 0.0, int outW = 0, int outH = 0,
                zre::FlybyScratch* scratch = nullptr) const
    {
        Image out;
        zre::renderFlybyFrame(image, depth, cam, ongoing, 0.4, params, out, nullptr, nullptr,
                              nullptr, offsetX, outW, outH, scratch);
        return out;
    }
    Image eye(double dx, double dy, double zoom = 0.0) const
    {
        Image out = image;
        zre::renderEye(image, depth, out, 8.0, 0.4, dx, dy, 0.0, zoom, 30.0, 20.0, zoom != 0.0,
                       nullptr);
        return out;
    }
};

FlybyCamera camera(double phase = 0.0)
{
    FlybyCamera cam;
    cam.cx = 30.0;
    cam.cy = 20.0;
    cam.phase = phase;
    return cam;
}

TEST(FlybyFrame, TheWiggleComesFromTheCameraOrTheSession)
{
    constexpr double kQuarter = std::numbers::pi / 2.0;
    Scene scene;
    scene.params.wiggleAmplitude = 1.5f;
    scene.params.wigglePathAngle = 90.0f;
    FlybyCamera cam = camera(kQuarter);
    const double down = std::sin(kQuarter) * 1.5 * std::sin(kQuarter);
    const double aside = std::sin(kQuarter) * 1.5 * std::cos(kQuarter);
    EXPECT_TRUE(imagesNear(scene.frame(cam), scene.eye(aside, down), 0.0));
    cam.sway = 0.0;
    EXPECT_TRUE(imagesNear(scene.frame(cam), scene.eye(1.5, 0.0), 0.0));
    EXPECT_TRUE(imagesNear(scene.frame(cam, -1.0), scene.eye(0.5, 0.0), 0.0));
    scene.params.swapEyes = true;
    EXPECT_TRUE(imagesNear(scene.frame(cam), scene.eye(-1.5, -0.0), 0.0));
    scene.params.swapEyes = false;
    cam.amp = 0.0;
    EXPECT_TRUE(imagesNear(scene.frame(cam), scene.image, 0.0));
    cam.amp = -1.0;
    scene.ongoing = false;
    EXPECT_TRUE(imagesNear(scene.frame(cam), scene.image, 0.0));
    cam.amp = 2.0;
    scene.params.wiggleCircular = true;
    cam.phase = 0.3;
    EXPECT_TRUE(
        imagesNear(scene.frame(cam), scene.eye(2.0 * std::cos(0.3), 2.0 * std::sin(0.3)), 0.0));
    cam.amp = 0.0;
    cam.warp = 0.25;
    EXPECT_TRUE(imagesNear(scene.frame(cam), scene.eye(0.0, 0.0, 0.25), 0.0));
}

/// Bilinear at (x, y), edges repeated; written for one pixel at a time.
double sample(const Image& img, int c, double x, double y)
{
    const auto at = [&](double px, double py) {
        const int ix = static_cast<int>(std::min(std::max(px, 0.0), img.width - 1.0));
        const int iy = static_cast<int>(std::min(std::max(py, 0.0), img.height - 1.0));
        return static_cast<double>(img.plane(c)[iy * img.width + ix]);
    };
    const double x0 = std::floor(x);
    const double y0 = std::floor(y);
    const double fx = x - x0;
    const double fy = y - y0;
    return (at(x0, y0) * (1 - fx) + at(x0 + 1, y0) * fx) * (1 - fy) +
           (at(x0, y0 + 1) * (1 - fx) + at(x0 + 1, y0 + 1) * fx) * fy;
}

TEST(FlybyFrame, TheWindowIsCutOutAndBoundToTheImage)
{
    const struct
    {
        int frameW, frameH;
        double zoom, cx, cy;
        int outW, outH;
        double left, top, width, height; ///< expected window
        int wantW, wantH;
    } cases[] = {
        {0, 0, 1.0, 30, 20, 0, 0, 0, 0, 60, 40, 60, 40},
        {60, 40, 1.0, 5, 5, 0, 0, 0, 0, 60, 40, 60, 40},
        {30, 20, 1.0, 30, 20, 0, 0, 15, 10, 30, 20, 30, 20},
        {30, 20, 2.0, 30, 20, 30, 20, 22.5, 15, 15, 10, 30, 20},
        {0, 0, 2.0, 60, 0, 0, 0, 30, 0, 30, 20, 30, 20},
        {30, 20, 1.5, -100, 1000, 11, 7, 0, 40 - 20 / 1.5, 20, 20 / 1.5, 11, 7},
        {61, 20, 0.5, 3, 3, 0, 0, 0, 0, 60, 40, 60, 40},
        {0, 0, 3.0, std::nan(""), 20, 0, 0, 0, 20 - 40 / 6.0, 20, 40 / 3.0, 20, 13},
        {0, 0, std::nan(""), 9, 9, 0, 0, 0, 0, 60, 40, 60, 40},
    };
    for (const auto& c : cases) {
        Scene scene;
        scene.params.flybyFrameW = c.frameW;
        scene.params.flybyFrameH = c.frameH;
        FlybyCamera cam = camera();
        cam.zoom = c.zoom;
        cam.cx = c.cx;
        cam.cy = c.cy;
        const Image out = scene.frame(cam, 0.0, c.outW, c.outH);
        ASSERT_EQ(out.width, c.wantW);
        ASSERT_EQ(out.height, c.wantH);
        for (int i = 0; i < out.width * out.height; ++i) {
            const double sx = (i % out.width + 0.5) / out.width * c.width + c.left - 0.5;
            const double sy = (i / out.width + 0.5) / out.height * c.height + c.top - 0.5;
            ASSERT_NEAR(static_cast<double>(out.plane(1)[i]), sample(scene.image, 1, sx, sy), 1e-6)
                << i;
        }
    }
}

TEST(FlybyFrame, ARollTurnsThePictureAndFillsItsCorners)
{
    Scene scene;
    scene.image = noise(40, 40, 1, 3);
    scene.depth = noise(40, 40, 0, 4);
    for (float& value : scene.image.data)
        value = 0.25f + value / 2.0f;
    FlybyCamera cam = camera();
    cam.roll = 90.0;
    const Image turned = scene.frame(cam);
    for (int y = 1; y < 39; ++y)
        for (int x = 1; x < 39; ++x)
            ASSERT_NEAR(turned.plane(0)[y * 40 + x], scene.image.plane(0)[x * 40 + 39 - y], 1e-5f);
    cam.roll = 45.0;
    const Image corner = scene.frame(cam);
    for (const float value : corner.data)
        EXPECT_TRUE(value > 0.25f && value < 0.75f) << value; // never black
    cam.roll = std::numeric_limits<double>::infinity();
    EXPECT_EQ(scene.frame(cam).width, 40); // nonsense shows something
}

TEST(FlybyFrame, ANearWindowShowsItsPartOfTheWholeEyeWhateverTheScratchHeldBefore)
{
    const Scene scene;
    zre::FlybyScratch scratch{noise(60, 40, 1, 8), {}};
    for (const double zoom : {3.0, 6.0, 1.0})
        for (const double warp : {0.0, 0.4})
            for (const double sway : {0.0, 90.0})
                for (const double roll : {0.0, 20.0, -90.0}) {
                    FlybyCamera cam = camera(std::numbers::pi / 2.0);
                    cam.zoom = zoom;
                    cam.warp = warp;
                    cam.amp = 2.0;
                    cam.sway = sway;
                    cam.roll = roll;
                    const Image out = scene.frame(cam, 0.0, 24, 16, &scratch);
                    EXPECT_TRUE(imagesNear(scene.frame(cam, 0.0, 24, 16), out, 0.0));
                    const double way = sway * std::numbers::pi / 180.0;
                    const Image eye = scene.eye(2.0 * std::cos(way), 2.0 * std::sin(way), warp);
                    const double c = std::cos(roll * std::numbers::pi / 180.0);
                    const double s = std::sin(roll * std::numbers::pi / 180.0);
                    for (int i = 0; i < 24 * 16; ++i) {
                        const double u = ((i % 24 + 0.5) / 24 - 0.5) * 60 / zoom;
                        const double v = ((i / 24 + 0.5) / 16 - 0.5) * 40 / zoom;
                        const double x = c * u - s * v + 29.5;
                        const double y = s * u + c * v + 19.5;
                        if (!(x >= 0.0 && x <= 59.0 && y >= 0.0 && y <= 39.0))
                            continue; // beyond the eye, where a turned window shows something soft
                        ASSERT_NEAR(double(out.plane(2)[i]), sample(eye, 2, x, y), 1e-6)
                            << zoom << ' ' << warp << ' ' << roll << ' ' << i;
                    }
                }
}

TEST(FlybyFrame, FramesOnTwoThreadsAreTheSame)
{
    const Scene scene;
    FlybyCamera cam = camera(1.0);
    cam.zoom = 1.7;
    cam.warp = 0.1;
    const Image alone = scene.frame(cam);
    Image first;
    Image second;
    std::thread other([&] { first = scene.frame(cam); });
    second = scene.frame(cam);
    other.join();
    EXPECT_TRUE(imagesNear(first, alone, 0.0));
    EXPECT_TRUE(imagesNear(second, alone, 0.0));
}

} // namespace
