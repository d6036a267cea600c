#include <algorithm>
#include <cmath>
#include <unordered_set>

#include <QTemporaryDir>

#include "app/export/still_file.h"
#include "app/main/diagnostics/checks.h"
#include "app/main/diagnostics/diagnostics.h"
#include "app/session/open_document.h"
#include "app/session/render_pipeline.h"
#include "engine/demo/demo_scene.h"

static constexpr int kSceneWidth = 600;
static constexpr int kSceneHeight = 400;

static zre::DemoScene scene()
{
    zre::DemoSceneOptions options;
    options.width = kSceneWidth;
    options.height = kSceneHeight;
    return zre::makeDemoScene(options);
}

static std::size_t levels(const zre::Image& plane)
{
    return std::unordered_set<float>(plane.data.begin(), plane.data.end()).size();
}

int diag::depthResolution(const QStringList&)
{
    constexpr std::size_t kByteLevels = 256;
    constexpr float kSixteenBitStep = 1.0f / 65535.0f;
    Checks checks;
    Session session;
    session.installSource({}, scene().picture, {}, {});
    RenderPipeline pipeline(session);
    const zre::Image& depth = *pipeline.cachedDepth();
    checks.that(depth.sameSize(session.source) && depth.channels == 1,
                "the depth map has a value for every pixel");
    checks.that(levels(depth) > 16 * kByteLevels, QString("%1 levels of depth").arg(levels(depth)));

    const QTemporaryDir folder;
    const QString path = folder.filePath("depth.tif");
    QString error;
    const bool written = writeStill(path, depth, {}, &error);
    checks.that(written, "written with 16 bits " + error);
    const bool reopened = openDepthMap(path, session, &error);
    checks.that(reopened, "opened as a depth map " + error);
    const zre::Image& back = session.externalDepth;
    float worst = back.data.size() == depth.data.size() ? 0.0f : INFINITY;
    for (std::size_t i = 0; i < back.data.size() && std::isfinite(worst); ++i)
        worst = std::max(worst, std::fabs(back.data[i] - depth.data[i]));
    checks.that(worst <= kSixteenBitStep && levels(back) > kByteLevels,
                QString("%1 levels come back, within %2").arg(levels(back)).arg(worst));
    return checks.verdict();
}

/// Counts the pixels of `frame` that no part of the picture reached: every warped pixel is a source
/// pixel or a mixture of some, so what is darker than all of them is a hole that was not filled.
/// Not counted are the corners, `corner` pixels a side: a slanting shift leaves them without a
/// neighbour to be filled from.
static std::size_t specks(const zre::Image& frame, float darkest, int corner)
{
    constexpr float kRounding = 1e-5f;
    std::size_t found = 0;
    for (int y = 0; y < frame.height; ++y)
        for (int x = 0; x < frame.width; ++x) {
            const bool inCorner = std::min(x, frame.width - 1 - x) < corner &&
                                  std::min(y, frame.height - 1 - y) < corner;
            const std::size_t i =
                static_cast<std::size_t>(y) * static_cast<std::size_t>(frame.width) +
                static_cast<std::size_t>(x);
            if (!inCorner && !(frame.data[i] >= darkest - kRounding))
                ++found;
        }
    return found;
}

int diag::warpComb(const QStringList&)
{
    constexpr float kLift = 0.25f; // so that a hole is darker than any sky
    Checks checks;
    Session session;
    zre::Image lifted = scene().picture;
    for (float& v : lifted.data)
        v = kLift + (1.0f - kLift) * v;
    const float darkest = *std::min_element(lifted.data.begin(), lifted.data.end());
    session.installSource({}, std::move(lifted), {}, {});
    RenderPipeline pipeline(session);

    const int shift = static_cast<int>(
        std::ceil(session.params.wiggleAmplitude * session.params.parallaxAmount / 2.0f));
    zre::Image frame;
    const bool paired = pipeline.renderView(3, {}, frame, nullptr);
    const std::size_t inPair = specks(frame, darkest, 0);
    checks.that(paired && inPair == 0, QString("stereo pair: %1 specks").arg(inPair));
    for (const bool circular : {false, true})
        for (const float angle : {0.0f, 37.0f, 90.0f}) {
            session.params.wiggleCircular = circular;
            session.params.wigglePathAngle = angle;
            std::size_t found = 0;
            bool rendered = true;
            for (int i = 0; i < session.params.wiggleFrames; i += 5) {
                rendered = pipeline.renderWiggle(i, frame) && rendered;
                found += specks(frame, darkest, shift);
            }
            checks.that(rendered && found == 0, QString("%1 at %2 degrees: %3 specks")
                                                    .arg(circular ? "orbit" : "sweep")
                                                    .arg(angle)
                                                    .arg(found));
        }
    return checks.verdict();
}
