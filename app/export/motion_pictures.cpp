#include "app/export/motion_pictures.h"

#include <cstring>
#include <memory>

#include "app/export/image_pool.h"
#include "app/export/video_plan.h"
#include "engine/qt/zre_qt.h"

/// Both eyes beside each other, made one after the other: the pair as floats would take four times
/// the memory, on every thread.
static QImage drawPair(const MotionInputs& inputs, int frame, zre::Image& image,
                       MotionScratch& scratch, QImage::Format format)
{
    QImage pair;
    for (const Eye eye : {Eye::Left, Eye::Right}) {
        renderMotionEye(inputs, frame, eye, image, scratch);
        const QImage picture = zre_qt::toQImage(image, format);
        if (pair.isNull())
            pair = QImage(picture.width() * 2, picture.height(), format);
        if (picture.isNull() || pair.isNull())
            return {};
        const auto rowBytes = static_cast<std::size_t>(picture.width()) *
                              static_cast<std::size_t>(picture.depth() / 8);
        for (int y = 0; y < picture.height(); ++y)
            std::memcpy(pair.scanLine(y) + (eye == Eye::Left ? 0 : rowBytes),
                        picture.constScanLine(y), rowBytes);
    }
    return pair;
}

std::function<QImage(int frame)> motionPictures(const MotionInputs& inputs, int first, int stereo3d,
                                                QImage::Format format)
{
    auto pool = std::make_shared<ImagePool>();
    return [&inputs, first, stereo3d, format, pool](int frame) {
        ImagePool::Loan image(*pool);
        if (stereo3d == kSideBySide)
            return drawPair(inputs, first + frame, *image, image.scratch(), format);
        renderMotionFrame(inputs, first + frame, stereo3d, *image, &image.scratch());
        return zre_qt::toQImage(*image, format);
    };
}
