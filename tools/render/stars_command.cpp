#include <QFileInfo>

#include "app/session/star_csv.h"
#include "tools/render/command_line.h"
#include "tools/render/render_request.h"
#include "tools/render/still_output.h"

namespace zrrender {

/// Another suffix would be mistaken for a picture.
static Outcome checkTablePath(const QString& path)
{
    if (QFileInfo(path).suffix().toLower() != QLatin1String("csv"))
        return Outcome::usage(
            QStringLiteral("%1 has no suffix that can be written (.csv)").arg(path));
    QString error;
    return StagedOutputs::isWritable(path, &error) ? Outcome::done() : Outcome::failed(error);
}

Outcome runStars(const Invocation& invocation, RunContext& context)
{
    const QString output = invocation.value(Option::Output);
    Session session;
    Outcome outcome = checkTablePath(output);
    if (outcome.isDone())
        outcome = readParameters(invocation, output, session, context.console);
    if (outcome.isDone())
        outcome = openInputs(invocation, session, context.console);
    if (!outcome.isDone())
        return outcome;

    RenderPipeline pipeline(session);
    pipeline.setStageReporter(
        [&, first = pipeline.firstPercent()](int percent, const QString& text) {
            context.console.progress(percentWithin(percent, first, kWritePercent), text);
        });
    pipeline.prepareStars();
    warnOfFailures(pipeline, context.console);
    if (!pipeline.starDepthText().isEmpty())
        context.console.warn(pipeline.starDepthText());
    outcome =
        writeTextStaged(output, starsCsv(pipeline.stars(), session.wcs).toUtf8(), context.outputs);
    QString error;
    if (outcome.isDone() && !context.outputs.commit(&error))
        outcome = Outcome::failed(error);
    if (!outcome.isDone())
        return outcome;

    const int found = static_cast<int>(pipeline.stars().size());
    const QString detector = pipeline.starDetector();
    context.console.made(QStringLiteral("%1: %2 stars (%3)  -  %4 drawn")
                             .arg(output)
                             .arg(found)
                             .arg(detector.isEmpty() ? QStringLiteral("none looked for") : detector)
                             .arg(pipeline.starsShown()),
                         {{"command", "stars"},
                          {"output", output},
                          {"stars", found},
                          {"drawn", pipeline.starsShown()},
                          {"detector", detector},
                          {"solution", session.wcs.valid}});
    return Outcome::done();
}

} // namespace zrrender
