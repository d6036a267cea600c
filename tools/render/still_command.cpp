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

    RenderPipeline pipeline(session);
    pipeline.setStageReporter([&](int percent, const QString& text) {
        context.console.progress(percentWithin(percent, kWritePercent), text);
    });
    zre::Image image;
    QString status;
    pipeline.renderView(view->id, {}, image, &status);

    context.console.progress(kWritePercent, QStringLiteral("Writing..."));
    const zre::Wcs* wcs = image.sameSize(session.source) ? &session.wcs : nullptr;
    outcome = writeStaged(output, image, wcs, bits, context.outputs);
    QString error;
    if (outcome.isDone() && !context.outputs.commit(&error))
        outcome = Outcome::failed(error);
    if (outcome.isDone())
        report(output, *view, image, writtenBits(output, bits), status, session, context.console);
    return outcome;
}

} // namespace zrrender
