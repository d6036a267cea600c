#pragma once

#include "app/export/motion_frame.h"
#include "tests/support/testkit.h"

/// A small picture, and a flyby of three frames over it.
struct MovingScene
{
    zre::Image image = zrtest::noise(64, 48, 1, 1);
    zre::Image depth = zrtest::noise(64, 48, 0, 2);
    MotionInputs flyby;

    MovingScene()
    {
        flyby.working = &image;
        flyby.depth = &depth;
        flyby.flyby = true;
        flyby.cameras.resize(3);
        for (std::size_t i = 0; i < 3; ++i) {
            flyby.cameras[i].cx = 20.0 + 10.0 * static_cast<double>(i);
            flyby.cameras[i].cy = 24.0;
            flyby.cameras[i].zoom = 1.0 + 0.4 * static_cast<double>(i);
        }
    }
    MovingScene(const MovingScene&) = delete;
    MovingScene& operator=(const MovingScene&) = delete;

    MotionInputs wiggle(int frames) const
    {
        MotionInputs inputs = flyby;
        inputs.flyby = false;
        inputs.params.wiggleFrames = frames;
        return inputs;
    }
};
