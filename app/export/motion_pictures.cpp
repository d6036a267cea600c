#include "app/export/motion_pictures.h"

#include <memory>

#include "app/export/image_pool.h"
#include "engine/qt/zre_qt.h"

std::function<QImage(int frame)> motionPictures(const MotionInputs& inputs, int first, int stereo3d,
                                                QImage::Format format)
{
    auto pool = std::make_shared<ImagePool>();
    return [&inputs, first, stereo3d, format, pool](int frame) {
        ImagePool::Loan image(*pool);
        renderMotionFrame(inputs, first + frame, stereo3d, *image, &image.flyby());
        return zre_qt::toQImage(*image, format);
    };
}
