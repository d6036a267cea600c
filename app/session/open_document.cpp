#include "app/session/open_document.h"

#include <algorithm>
#include <utility>

bool openSource(const QString& path, StretchMode stretch, Session& session, QImage* preview,
                QString* error)
{
    QImage picture;
    zre::Image image;
    zre::Wcs solution;
    DecodedFile file;
    if (!decodeImageFile(path, picture, image, solution, nullptr, error, stretch, &file))
        return false;
    session.installSource(path, std::move(image), std::move(solution), std::move(file));
    if (preview)
        *preview = std::move(picture);
    return true;
}

bool openDepthMap(const QString& path, Session& session, QString* error)
{
    QImage picture;
    zre::Image image;
    zre::Wcs solution;
    if (!decodeImageFile(path, picture, image, solution, nullptr, error, StretchMode::None,
                         nullptr))
        return false;
    session.installExternalDepth(path, depthPlane(std::move(image)));
    return true;
}

void switchDepthMapOn(zre::ZRParams& params)
{
    params.depthMapEnabled = true;
    if (params.depthMapBlend == 0.0f)
        params.depthMapBlend = 1.0f;
}

static bool isGrey(const zre::Image& picture)
{
    const float* red = picture.plane(0);
    const float* redEnd = red + picture.pixelCount();
    return std::equal(red, redEnd, picture.plane(1)) && std::equal(red, redEnd, picture.plane(2));
}

zre::Image depthPlane(zre::Image picture)
{
    if (!picture.usable())
        return picture;
    if (picture.channels >= 3 && !isGrey(picture)) {
        float* red = picture.plane(0);
        const float* green = picture.plane(1);
        const float* blue = picture.plane(2);
        for (std::size_t i = 0; i < picture.pixelCount(); ++i)
            red[i] = static_cast<float>(0.299 * static_cast<double>(red[i]) +
                                        0.587 * static_cast<double>(green[i]) +
                                        0.114 * static_cast<double>(blue[i]));
    }
    picture.data.resize(picture.pixelCount());
    picture.data.shrink_to_fit();
    picture.channels = 1;
    picture.colorModel = 0;
    return picture;
}
