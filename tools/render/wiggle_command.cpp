#include <QDir>
#include <QFileInfo>

#include "app/session/render_pipeline.h"
#include "tools/render/command_line.h"
#include "tools/render/render_request.h"
#include "tools/render/still_output.h"

namespace zrrender {

static constexpr const char* kDefaultFrameBits =
    "8"; // what encoders take, and a quarter of the time

static constexpr int kFramesPercent = 40; // the depth map is there, and the frames begin

static QString framePath(const QString& folder, int frame)
{
    return QDir(folder).filePath(
        QStringLiteral("frame_%1.png").arg(frame, 4, 10, QLatin1Char('0')));
}

static Outcome checkFolder(const QString& folder)
{
    const QFileInfo info(folder);
    if (info.exists() && !info.isDir())
        return Outcome::failed(QStringLiteral("%1 is not a folder").arg(folder));
    if (!QDir(folder).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::System |
                              QDir::NoDotAndDotDot) &&
        info.exists())
        return Outcome::failed(QStringLiteral("the folder %1 is not empty").arg(folder));
    return Outcome::done();
}

static Outcome renderFrames(const QString& folder, const QString& bits, Session& session,
                            RunContext& context)
{
    RenderPipeline pipeline(session);
    pipeline.setStageReporter(
        [&, first = pipeline.firstPercent()](int percent, const QString& text) {
            context.console.progress(percentWithin(percent, first, kFramesPercent), text);
        });
    pipeline.cachedDepth();
    warnOfFailures(pipeline, context.console);
    pipeline.setStageReporter({});
    const int frames = session.params.wiggleFrames;
    zre::Image image;
    for (int frame = 0; frame < frames; ++frame) {
        context.console.progress(
            kFramesPercent + (100 - kFramesPercent) * frame / frames,
            QStringLiteral("Rendering frame %1 of %2...").arg(frame + 1).arg(frames));
        pipeline.renderWiggle(frame, image);
        Outcome outcome =
            writeStaged(framePath(folder, frame), image, nullptr, bits, context.outputs);
        if (!outcome.isDone())
            return outcome;
    }
    QString error;
    return context.outputs.commit(&error, StagedOutputs::Existing::Kept) ? Outcome::done()
                                                                         : Outcome::failed(error);
}

Outcome runWiggle(const Invocation& invocation, RunContext& context)
{
    const QString folder = invocation.value(Option::Output);
    const QString bits = invocation.has(Option::Bits) ? invocation.value(Option::Bits)
                                                      : QLatin1String(kDefaultFrameBits);
    Session session;
    QString error;
    Outcome outcome = checkFolder(folder);
    if (outcome.isDone())
        outcome = readParameters(invocation, folder, session, context.console);
    if (outcome.isDone())
        outcome = openInputs(invocation, session, context.console);
    if (outcome.isDone() && !context.outputs.makeFolder(folder, &error))
        outcome = Outcome::failed(error);
    if (outcome.isDone())
        outcome = renderFrames(folder, bits, session, context);
    if (!outcome.isDone())
        return outcome;

    const zre::ZRParams& p = session.params;
    context.console.made(QStringLiteral("%1: %2 frames  -  %3 x %4  -  %5 frames a second")
                             .arg(folder)
                             .arg(p.wiggleFrames)
                             .arg(session.source.width)
                             .arg(session.source.height)
                             .arg(p.wiggleFps),
                         {{"command", "wiggle"},
                          {"output", folder},
                          {"frames", p.wiggleFrames},
                          {"framesPerSecond", p.wiggleFps},
                          {"width", session.source.width},
                          {"height", session.source.height},
                          {"bits", bits.toInt()}});
    return Outcome::done();
}

} // namespace zrrender
