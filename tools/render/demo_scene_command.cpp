#include <algorithm>
#include <array>
#include <cstdint>

#include <QDir>
#include <QStringList>

#include "engine/demo/demo_scene.h"
#include "tools/render/command_line.h"
#include "tools/render/program.h"
#include "tools/render/render_request.h"
#include "tools/render/still_output.h"

namespace zrrender {

namespace {

Outcome readSceneOptions(const Invocation& invocation, zre::DemoSceneOptions& options)
{
    if (invocation.has(Option::Size)) {
        Outcome outcome = readSize(invocation, options.width, options.height);
        if (!outcome.isDone())
            return outcome;
    }
    if (invocation.has(Option::Seed)) {
        bool ok = false;
        options.seed = invocation.value(Option::Seed).toULongLong(&ok);
        if (!ok)
            return Outcome::usage(QStringLiteral("--seed takes a whole number from 0, not %1")
                                      .arg(invocation.value(Option::Seed)));
    }
    return Outcome::done();
}

QByteArray starTable(const std::vector<zre::DemoStar>& stars)
{
    QByteArray text = "x,y,peak,sigma,depth,r,g,b\n";
    for (const zre::DemoStar& star : stars) {
        const std::array<double, 8> fields{star.x,     star.y, star.peak, star.sigma,
                                           star.depth, star.r, star.g,    star.b};
        for (std::size_t i = 0; i < fields.size(); ++i)
            text += QByteArray::number(fields[i], 'g', 9) + (i + 1 < fields.size() ? ',' : '\n');
    }
    return text;
}

Outcome writeTruth(const QString& folder, const zre::DemoScene& scene, StagedOutputs& outputs)
{
    QString error;
    if (!outputs.makeFolder(folder, &error))
        return Outcome::failed(error);
    const QDir dir(folder);
    Outcome outcome = writeStaged(dir.filePath("depth.xisf"), scene.depth, &scene.wcs, {}, outputs);
    if (outcome.isDone())
        outcome =
            writeStaged(dir.filePath("starless.xisf"), scene.starless, &scene.wcs, {}, outputs);
    if (outcome.isDone())
        outcome = writeTextStaged(dir.filePath("stars.csv"), starTable(scene.stars), outputs);
    return outcome;
}

} // namespace

Outcome runDemoScene(const Invocation& invocation, RunContext& context)
{
    const QString output = invocation.value(Option::Output);
    zre::DemoSceneOptions options;
    Outcome outcome = checkStillPath(output, {});
    if (outcome.isDone())
        outcome = readSceneOptions(invocation, options);
    if (!outcome.isDone())
        return outcome;

    const zre::DemoScene scene = zre::makeDemoScene(options, [&](double fraction) {
        context.console.progress(static_cast<int>(fraction * kWritePercent),
                                 QStringLiteral("Painting..."));
    });
    context.console.progress(kWritePercent, QStringLiteral("Writing..."));
    outcome = writeStaged(output, scene.picture, &scene.wcs, {}, context.outputs);
    if (outcome.isDone() && invocation.has(Option::Truth))
        outcome = writeTruth(invocation.value(Option::Truth), scene, context.outputs);
    QString error;
    if (outcome.isDone() && !context.outputs.commit(&error))
        outcome = Outcome::failed(error);
    if (!outcome.isDone())
        return outcome;

    const int stars = static_cast<int>(scene.stars.size());
    context.console.made(QStringLiteral("%1: built-in scene  -  %2 x %3  -  seed %4  -  %5 stars")
                             .arg(output)
                             .arg(scene.picture.width)
                             .arg(scene.picture.height)
                             .arg(options.seed)
                             .arg(stars),
                         {{"command", "demo-scene"},
                          {"output", output},
                          {"width", scene.picture.width},
                          {"height", scene.picture.height},
                          {"seed", QString::number(options.seed)},
                          {"stars", stars}});
    return Outcome::done();
}

} // namespace zrrender
