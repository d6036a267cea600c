#include "app/session/flyby_path.h"

#include "engine/flight/flight3d_path.h"

static std::vector<zre::FlybyCamera> builtInFlyby(const zre::ZRParams& params, int width,
                                                  int height)
{
    constexpr int kUsualFrames = 60;
    std::vector<zre::FlybyCamera> cameras;
    zre::makeSimpleFlyby(params.wiggleFrames < 1 ? kUsualFrames : params.wiggleFrames, width,
                         height, cameras);
    return cameras;
}

static QString statusOf(const QString& script, const FlybyPath& path)
{
    if (script.trimmed().isEmpty())
        return QStringLiteral("Empty - using the built-in flyby.");
    if (!path.errors.empty()) {
        const zre::ZRFlybyError& first = path.errors.front();
        QString text = QStringLiteral("Line %1: %2  (using built-in)")
                           .arg(first.line)
                           .arg(QString::fromStdString(first.message));
        if (path.errors.size() > 1)
            text += QStringLiteral(" (+%1 more)").arg(path.errors.size() - 1);
        return text;
    }
    if (path.cameras.empty())
        return QStringLiteral("Script produced no frames - using the built-in flyby.");
    return QStringLiteral("Compiled: %1 frames.").arg(path.cameras.size());
}

std::vector<zre::ZRFlybyError> errorsInSource(const std::string& script,
                                              std::vector<zre::ZRFlybyError> errors)
{
    std::string expanded;
    std::vector<zre::ZRFlybyError> structural;
    std::vector<zre::ZRFlybySrcRef> refs;
    if (!zre::ZRFlybyScript::ExpandGraphicBlock(script, expanded, structural, &refs))
        return errors; // they stand where they are: nothing was written out
    for (zre::ZRFlybyError& error : errors)
        if (error.line > 0 && static_cast<std::size_t>(error.line) <= refs.size())
            error.line = refs[static_cast<std::size_t>(error.line) - 1].line;
    return errors;
}

FlybyPath compileFlyby(const QString& script, const zre::ZRParams& params, int width, int height,
                       const FlybyOptions& options)
{
    constexpr int kUsualFps = 24;
    constexpr int kUsualPeriod = 12;
    const double amplitude =
        options.ongoingWiggle ? static_cast<double>(params.wiggleAmplitude) : 0.0;
    FlybyPath path;
    const std::string text = script.toStdString();
    if (zre::isFlight3DScript(text)) {
        path.cameras = builtInFlyby(params, width, height);
        path.builtIn = true;
        path.status = QStringLiteral("%1  (using built-in)").arg(kNo3DFlights);
        return path;
    }
    zre::ZRFlybyCompiled compiled = zre::ZRFlybyScript::Compile(
        text, width, height, params.wiggleFps < 1 ? kUsualFps : params.wiggleFps, path.errors,
        params.wiggleFrames > 0 ? params.wiggleFrames : kUsualPeriod,
        options.continuousLoop ? amplitude : -1.0, params.flybyFrameW, params.flybyFrameH);
    if (compiled.ok)
        path.cameras = std::move(compiled.frames);
    path.status = statusOf(script, path);
    path.builtIn = path.cameras.empty();
    if (path.builtIn)
        path.cameras = builtInFlyby(params, width, height);
    return path;
}
