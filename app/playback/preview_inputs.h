#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <vector>

#include <QSize>

#include "app/export/motion_frame.h"

/// What the frames of a flyby are made of, on a smaller scale.
struct PreviewInputs
{
    double scale = 1.0; ///< of full size
    zre::Image working; ///< empty at full size, where nothing is copied, as are the next two
    zre::Image depth;
    std::vector<zre::Star> stars;
    std::vector<zre::FlybyCamera> cameras;
    zre::ZRParams params;
};

/// From this share of full size on, frames are drawn from the full inputs.
inline constexpr double kFullScale = 0.999;

/// Scales the images and stars of `full`, whose images are there, and then its path. A side has at
/// least two pixels.
void buildScaledPreviewInputs(const MotionInputs& full, double scale, PreviewInputs& out);

/// The cameras and the parameters of `full` at the scale of `inputs`, whose images stay: what only
/// moves the camera needs no image anew.
void refreshBucketPath(const MotionInputs& full, PreviewInputs& inputs);

/// `inputs` as what frames are drawn from, for as long as they and the images of `full` stay as
/// they are; the rest is as in `full`.
MotionInputs motionOf(const PreviewInputs& inputs, const MotionInputs& full);

/// Copies of one picture at scales of their own, for frames that zoom in: at most four, and at most
/// 512 MiB together. The one not used for longest makes room.
class PreviewBuckets
{
public:
    static constexpr std::size_t kMost = 4;
    static constexpr std::int64_t kMostBytes = 536870912;

    /// The copy at `scale` (at most 1), with the path of `full`; null when `full` has no images.
    /// Valid while it is held, which a further copy can end.
    const PreviewInputs* bucketFor(const MotionInputs& full, double scale);

    /// For each frame the copy it is drawn from; empty when none zooms beyond `fraction`, or when
    /// not all that are needed can be held at once.
    std::vector<const PreviewInputs*> planFrameBuckets(const MotionInputs& full, double fraction,
                                                       int frames);

    void clearBuckets();
    std::vector<double> scales() const;
    std::int64_t bytes() const;

private:
    struct Bucket
    {
        PreviewInputs inputs;
        std::int64_t lastUsed = 0;
        std::int64_t bytes = 0;
    };

    void makeRoom(std::int64_t bytes);
    bool holds(const PreviewInputs* inputs) const;

    std::deque<std::unique_ptr<Bucket>> m_buckets;
    std::int64_t m_stamp = 0;
};
