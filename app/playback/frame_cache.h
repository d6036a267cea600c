#pragma once

#include <functional>
#include <vector>

#include <QImage>
#include <QString>

#include "app/export/motion_frame.h"
#include "app/playback/preview_inputs.h"

/// The finished frames of a parallax motion or a flyby as they go to the screen. As many as memory
/// allows are built ahead on several threads; the rest are drawn when they are due.
class FrameCache
{
public:
    struct Order
    {
        QString key;           ///< changes with anything that shapes a frame
        QString imagesKey;     ///< changes with the images and stars, not with the path
        double fraction = 1.0; ///< of full size, for a flyby
        int ramPercent = 80;   ///< of 2 GiB, for the frames
        int threads = 0;       ///< 0 for as many as the machine has
    };

    /// Told of the frames built so far and of all that are to be built; false ends the work.
    using Watch = std::function<bool(int done, int planned)>;

    /// Builds the frames of `inputs`, whose images have to stay as they are while the frames are
    /// used; nothing when they stand under the key. Without images there are no frames, which is no
    /// failure. False, with nothing left, when `watch` ended it.
    bool buildFrameCache(MotionInputs inputs, const Order& order, const Watch& watch);

    /// Draws a frame on the calling thread; null when that fails.
    QImage renderPlaybackFrame(int frame);
    /// The frame as it was built, else drawn now.
    QImage frameAt(int frame);

    int frames() const { return static_cast<int>(m_slots.size()); }
    /// How many of them are built ahead, the first ones.
    int planned() const { return m_planned; }
    /// Pixels of every frame.
    QSize frameSize() const { return m_size; }
    bool isBuilt(int frame) const;
    const MotionInputs& inputs() const { return m_full; }

    /// Lets go of the frames; what they were made of stays for the next.
    void releaseFrames();
    /// Lets go of the smaller copies too.
    void clearScaledPreviewInputs();

    const PreviewBuckets& buckets() const { return m_buckets; }

private:
    bool stands(const QString& key) const;
    void takeImages(const Order& order);
    std::vector<MotionInputs> planSources(std::vector<int>& sourceOf);
    bool fill(const Order& order, const Watch& watch);
    QImage draw(const MotionInputs& source, int frame, zre::Image& picture,
                zre::FlybyScratch* scratch = nullptr) const;

    MotionInputs m_full;
    MotionInputs m_shared; ///< `m_full`, or the scaled inputs
    double m_fraction = 1.0;
    QSize m_size;
    PreviewInputs m_scaled;
    PreviewBuckets m_buckets;
    QString m_imagesKey;
    QString m_key;
    std::vector<QImage> m_slots; ///< one a frame; null while it is not built
    int m_planned = 0;
};
