#include <algorithm>

#include "app/session/output_view.h"
#include "app/session/render_pipeline.h"
#include "tools/render/command_line.h"
#include "tools/render/render_request.h"
#include "tools/render/still_output.h"

namespace zrrender {

/// The view asked for, or null for one that cannot be rendered.
static const OutputView* chosenView(const Invocation& invocation, const Session& session)
{
    const QString key = invocation.value(Option::View);
    const auto* found =
        std::find_if(kOutputViews.begin(), kOutputViews.end(), [&](const OutputView& view) {
            return key.isEmpty() ? view.id == session.outputMode : key == QLatin1String(view.key);
        });
    return found == kOutputViews.end() ? nullptr : found;
}

static void report(const QString& output, const OutputView& view, const zre::Image& image, int bits,
                   const QString& status, const Session& session, Console& console)
{
    const QString stretch = stretchText(session.sourceFile);
    if (!stretch.isEmpty())
        console.warn(
            QStringLiteral("linear data, %1 (--stretch none takes them as they are)").arg(stretch));
    console.made(QStringLiteral("%1: %2").arg(output, status), {{"command", "still"},
                                                                {"output", output},
                                                                {"view", view.key},
                                                                {"width", image.width},
                                                                {"height", image.height},
                                                                {"bits", bits},
                                                                {"status", status}});
}

struct Still
{
    zre::Image image;
    const zre::Wcs* wcs = nullptr; ///< of the session
    QString status;
};

/// Renders at full size and lets the source and every intermediate picture go: writing takes
/// memory again.
static Still renderStill(int view, Session& session, Console& console)
{
    RenderPipeline pipeline(session);
    pipeline.setStageReporter(
        [&, first = pipeline.firstPercent()](int percent, const QString& text) {
            console.progress(percentWithin(percent, first, kWritePercent), text);
        });
    Still still;
    pipeline.renderView(view, {}, still.image, &still.status);
    warnOfFailures(pipeline, console);
    still.wcs = solutionOfStill(session, view, still.image);
    for (zre::Image* image : {&session.source, &session.starless, &session.starsLayer})
        *image = zre::Image();
    return still;
}

Outcome runStill(const Invocation& invocation, RunContext& context)
{
    const QString output = invocation.value(Option::Output);
    const QString bits = invocation.value(Option::Bits);
    Session session;
    Outcome outcome = checkStillPath(output, bits);
    if (outcome.isDone())
        outcome = readParameters(invocation, output, session, context.console);
    const OutputView* view = chosenView(invocation, session);
    if (outcome.isDone() && !view)
        outcome = Outcome::usage(
            QStringLiteral("view %1 of the parameters cannot be rendered; choose one with --view")
                .arg(session.outputMode));
    if (outcome.isDone())
        outcome = openInputs(invocation, session, context.console);
    if (!outcome.isDone())
        return outcome;

    const Still still = renderStill(view->id, session, context.console);
    context.console.progress(kWritePercent, QStringLiteral("Writing..."));
    outcome = writeStaged(output, still.image, still.wcs, bits, context.outputs);
    QString error;
    if (outcome.isDone() && !context.outputs.commit(&error))
        outcome = Outcome::failed(error);
    if (outcome.isDone())
        report(output, *view, still.image, writtenBits(output, bits), still.status, session,
               context.console);
    return outcome;
}

} // namespace zrrender
