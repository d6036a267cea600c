#include <utility>

#include <QJsonArray>
#include <QJsonObject>

#include "app/session/flyby_path.h"
#include "tools/render/command_line.h"
#include "tools/render/program.h"
#include "tools/render/render_request.h"

namespace zrrender {

namespace {

struct Script
{
    int width = 1600;
    int height = 1067;
    FlybyPath path;
};

Outcome compile(const Invocation& invocation, Script& script)
{
    QString text;
    Outcome outcome = readScript(invocation.operand, text);
    if (outcome.isDone() && invocation.has(Option::Size))
        outcome = readSize(invocation, script.width, script.height);
    if (outcome.isDone())
        script.path = compileFlyby(text, {}, script.width, script.height, {});
    script.path.errors = errorsInSource(text.toStdString(), std::move(script.path.errors));
    return outcome;
}

Outcome failure(const QString& file, const FlybyPath& path)
{
    const zre::ZRFlybyError& first = path.errors.front();
    return Outcome::failed(QStringLiteral("%1: %2, the first in line %3: %4")
                               .arg(file)
                               .arg(path.errors.size() == 1
                                        ? QStringLiteral("1 error")
                                        : QStringLiteral("%1 errors").arg(path.errors.size()))
                               .arg(first.line)
                               .arg(QString::fromStdString(first.message)));
}

QJsonObject errorObject(const zre::ZRFlybyError& error)
{
    return {{"line", error.line}, {"message", QString::fromStdString(error.message)}};
}

QJsonObject cameraObject(int frame, const zre::FlybyCamera& camera)
{
    return {{"frame", frame},        {"cx", camera.cx},     {"cy", camera.cy},
            {"zoom", camera.zoom},   {"warp", camera.warp}, {"roll", camera.roll},
            {"sway", camera.sway},   {"amp", camera.amp},   {"period", camera.period},
            {"phase", camera.phase}, {"fps", camera.fps},   {"waypoint", camera.waypoint},
            {"line", camera.line}};
}

QString cameraLine(const QJsonObject& camera)
{
    QStringList fields;
    for (auto field = camera.begin(); field != camera.end(); ++field)
        fields << field.key() + QLatin1Char('=') +
                      QString::number(field.value().toDouble(), 'g', 9);
    return fields.join(QLatin1Char(' ')) + QLatin1Char('\n');
}

} // namespace

Outcome runScriptCheck(const Invocation& invocation, RunContext& context)
{
    Script script;
    Outcome outcome = compile(invocation, script);
    if (!outcome.isDone())
        return outcome;
    const FlybyPath& path = script.path;
    QJsonArray errors;
    QString lines;
    for (const zre::ZRFlybyError& error : path.errors) {
        errors << errorObject(error);
        lines += QStringLiteral("%1:%2: %3\n")
                     .arg(invocation.operand)
                     .arg(error.line)
                     .arg(QString::fromStdString(error.message));
    }
    const bool ok = path.errors.empty();
    const int frames = ok ? static_cast<int>(path.cameras.size()) : 0;
    const double seconds = frames > 0 ? static_cast<double>(frames) / path.cameras.front().fps : 0;
    if (context.console.json())
        context.console.answer(QJsonObject{{"errors", errors},
                                           {"frames", frames},
                                           {"seconds", seconds},
                                           {"builtIn", path.builtIn && ok}});
    else
        context.console.answer(ok ? QStringLiteral("%1: %2 frames, %3 seconds%4\n")
                                        .arg(invocation.operand)
                                        .arg(frames)
                                        .arg(seconds, 0, 'f', 2)
                                        .arg(path.builtIn ? "  -  " + path.status : QString())
                                  : lines);
    return ok ? Outcome::done() : failure(invocation.operand, path);
}

Outcome runScriptFrames(const Invocation& invocation, RunContext& context)
{
    Script script;
    Outcome outcome = compile(invocation, script);
    if (outcome.isDone() && !script.path.errors.empty())
        outcome = failure(invocation.operand, script.path);
    if (!outcome.isDone())
        return outcome;
    int frame = 0;
    for (const zre::FlybyCamera& camera : script.path.cameras) {
        const QJsonObject object = cameraObject(frame++, camera);
        if (context.console.json())
            context.console.answer(object);
        else
            context.console.answer(cameraLine(object));
    }
    return Outcome::done();
}

} // namespace zrrender
