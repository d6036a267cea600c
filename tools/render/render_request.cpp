#include "tools/render/render_request.h"

#include <algorithm>
#include <optional>
#include <utility>

#include <QFile>
#include <QFileInfo>
#include <QStringDecoder>

#include "app/persist/param_table.h"
#include "app/persist/param_text.h"
#include "app/session/open_document.h"
#include "app/session/script_file.h"
#include "engine/inference/ai_depth.h"
#include "engine/inference/starless_ai.h"
#include "engine/params/param_ranges.h"
#include "tools/render/nearest.h"

namespace zrrender {

namespace {

constexpr qint64 kLargestParameterFile = 16 << 20;
constexpr int kSmallestSide = 16;
constexpr int kLargestSide = 32768;

bool sameFile(const QString& a, const QString& b)
{
    const QString path = QFileInfo(a).canonicalFilePath();
    return !path.isEmpty() && path == QFileInfo(b).canonicalFilePath();
}

Outcome checkOutput(const Invocation& invocation, const QString& output)
{
    for (const QString& input :
         {invocation.operand, invocation.value(Option::Starless), invocation.value(Option::Stars),
          invocation.value(Option::DepthMap), invocation.value(Option::ParamsFile),
          invocation.value(Option::StarModel), invocation.value(Option::DepthModel),
          invocation.value(Option::Flyby)})
        if (sameFile(input, output))
            return Outcome::usage(
                QStringLiteral("%1 is read by this command and not overwritten").arg(output));
    return Outcome::done();
}

/// Floats of the record are compared with the bounds as floats: 0.98 as a float lies above 0.98.
template <class Ranges>
Outcome checkRanges(const QString& path, const zre::ZRParams& params, const Ranges& ranges)
{
    for (const zre::ParamRange& range : ranges) {
        const double value = range.get(params);
        const bool inside = value >= static_cast<double>(static_cast<float>(range.min)) &&
                            value <= static_cast<double>(static_cast<float>(range.max));
        if (!inside)
            return Outcome::usage(QStringLiteral("%1: %2 = %3 is out of range (%4 to %5)")
                                      .arg(path, QLatin1String(range.name),
                                           QString::number(value, 'g', 9),
                                           QString::number(range.min), QString::number(range.max)));
    }
    return Outcome::done();
}

bool readsAsItsKind(const zrproj::ParamKey& row, const QString& value)
{
    bool ok = true;
    if (std::holds_alternative<float zre::ZRParams::*>(row.field))
        value.toDouble(&ok);
    else if (std::holds_alternative<int zre::ZRParams::*>(row.field) ||
             std::holds_alternative<bool zre::ZRParams::*>(row.field) ||
             std::holds_alternative<zrproj::OutputView>(row.field))
        value.toInt(&ok);
    return ok;
}

/// The parameter text reads a bad number as 0, which nobody means who wrote "1,5".
Outcome checkNumbers(const QString& path, const QString& text)
{
    for (const QString& line : text.split(QLatin1Char('\n'))) {
        const QString trimmed = line.trimmed();
        const QString key = trimmed.section(QLatin1Char('='), 0, 0);
        const zrproj::ParamKey* row = zrproj::findParamKey(key);
        const QString value = trimmed.mid(key.size() + 1);
        if (row && key.size() < trimmed.size() && !readsAsItsKind(*row, value))
            return Outcome::usage(
                QStringLiteral("%1: %2 = %3 is not a number").arg(path, key, value));
    }
    return Outcome::done();
}

void warnOfUnknownKeys(const QString& path, const QList<QString>& lines, Console& console)
{
    QStringList known;
    for (const zrproj::ParamInfo& info : zrproj::parameterList())
        known << info.name;
    for (const QString& line : lines) {
        const QString key = line.section(QLatin1Char('='), 0, 0);
        console.warn(QStringLiteral("%1: ignored the unknown key %2").arg(path, key) +
                     suggestion(key, known));
    }
}

Outcome readParameterFile(const QString& path, Session& session, Console& console)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return Outcome::failed(QStringLiteral("cannot read %1: %2").arg(path, file.errorString()));
    const QByteArray bytes = file.read(kLargestParameterFile + 1);
    if (file.error() != QFileDevice::NoError)
        return Outcome::failed(QStringLiteral("cannot read %1: %2").arg(path, file.errorString()));
    if (bytes.size() > kLargestParameterFile)
        return Outcome::failed(QStringLiteral("%1 is too large for a parameter file").arg(path));
    QStringDecoder decode(QStringDecoder::Utf8);
    const QString text = decode(bytes);
    if (decode.hasError() || bytes.contains('\0'))
        return Outcome::failed(QStringLiteral("%1 is not a text of key=value lines").arg(path));
    QList<QString> unknownLines;
    zrproj::paramsFromText(text, session.params, session.outputMode, unknownLines);
    warnOfUnknownKeys(path, unknownLines, console);
    Outcome outcome = checkNumbers(path, text);
    if (outcome.isDone())
        outcome = checkRanges(path, session.params, zre::kParamRanges);
    return outcome.isDone() ? checkRanges(path, session.params, zre::kDetectionRanges) : outcome;
}

/// A weight that finds nothing to weigh is told; a model that was asked for must be there.
Outcome useModels(const Invocation& invocation, const Session& session, Console& console)
{
    for (const Option option : {Option::StarModel, Option::DepthModel}) {
        const QString path = invocation.value(option);
        if (invocation.has(option) && !QFileInfo(path).isFile())
            return Outcome::failed(QStringLiteral("cannot read %1: no such file").arg(path));
        const std::string file = QFile::encodeName(path).toStdString();
        if (option == Option::StarModel)
            zre::StarlessAI::setModelPath(file);
        else
            zre::AiDepth::setModelPath(file);
    }
    std::string why;
    const zre::ZRParams& p = session.params;
    if (invocation.has(Option::StarModel) && p.starSeparationEnabled && p.aiStarSeparation &&
        !zre::StarlessAI::available(&why))
        console.warn(
            QStringLiteral("--star-model has no effect: %1").arg(QString::fromStdString(why)));
    if (p.luminanceEnabled && p.aiDepthWeight > 0.0f && !zre::AiDepth::available(&why))
        console.warn(
            QStringLiteral("aiDepthWeight has no effect: %1").arg(QString::fromStdString(why)));
    return Outcome::done();
}

Outcome setOne(const QString& assignment, Session& session)
{
    const qsizetype equals = assignment.indexOf(QLatin1Char('='));
    if (equals < 1)
        return Outcome::usage(QStringLiteral("--set takes KEY=VALUE, not %1").arg(assignment));
    QString error;
    if (!zrproj::setParam(session.params, session.outputMode, assignment.left(equals),
                          assignment.mid(equals + 1), &error))
        return Outcome::usage(QStringLiteral("--set %1: %2").arg(assignment, error));
    return Outcome::done();
}

} // namespace

Outcome readParameters(const Invocation& invocation, const QString& output, Session& session,
                       Console& console)
{
    Outcome outcome = checkOutput(invocation, output);
    if (outcome.isDone() && invocation.has(Option::ParamsFile))
        outcome = readParameterFile(invocation.value(Option::ParamsFile), session, console);
    if (invocation.has(Option::DepthMap))
        switchDepthMapOn(session.params);
    if (invocation.has(Option::NoStars))
        session.params.starSeparationEnabled = false;
    for (const QString& assignment : invocation.values(Option::Set))
        if (outcome.isDone())
            outcome = setOne(assignment, session);
    return outcome.isDone() ? useModels(invocation, session, console) : outcome;
}

static Outcome openDocument(const Invocation& invocation, StretchMode stretch, Session& session)
{
    QString error;
    if (invocation.hasPair()) {
        const QString starless = invocation.value(Option::Starless);
        const QString stars = invocation.value(Option::Stars);
        if (openPair(stars, starless, stretch, session, nullptr, &error))
            return Outcome::done();
        return Outcome::failed(QStringLiteral("%1, %2: %3").arg(starless, stars, error));
    }
    if (openSource(invocation.operand, stretch, session, nullptr, &error))
        return Outcome::done();
    return Outcome::failed(QStringLiteral("%1: %2").arg(invocation.operand, error));
}

Outcome openInputs(const Invocation& invocation, Session& session, Console& console)
{
    const StretchMode stretch = invocation.value(Option::Stretch) == QLatin1String("none")
                                    ? StretchMode::None
                                    : StretchMode::Auto;
    console.progress(0, QStringLiteral("Loading image..."));
    Outcome outcome = openDocument(invocation, stretch, session);
    if (!outcome.isDone())
        return outcome;
    QString error;
    const QString map = invocation.value(Option::DepthMap);
    if (!map.isEmpty() && !openDepthMap(map, session, &error))
        return Outcome::failed(QStringLiteral("%1: %2").arg(map, error));
    console.progress(kReadPercent, QStringLiteral("Loading image..."));
    return Outcome::done();
}

void warnOfFailures(const RenderPipeline& pipeline, Console& console)
{
    for (const QString& failure : {pipeline.starSeparationFailure(), pipeline.aiDepthFailure()})
        if (!failure.isEmpty())
            console.warn(failure);
}

static bool readSide(const QString& text, int& side)
{
    bool ok = false;
    side = text.toInt(&ok);
    return ok && side >= kSmallestSide && side <= kLargestSide;
}

Outcome readSize(const Invocation& invocation, int& width, int& height, Option option)
{
    const QString size = invocation.value(option);
    const QStringList sides = size.toLower().split(QLatin1Char('x'));
    int wide = 0;
    int high = 0;
    if (sides.size() != 2 || !readSide(sides[0], wide) || !readSide(sides[1], high))
        return Outcome::usage(
            QStringLiteral("--%1 takes WxH, %2 to %3 a side, not %4")
                .arg(QLatin1String(option == Option::Size ? "size" : "script-size"))
                .arg(kSmallestSide)
                .arg(kLargestSide)
                .arg(size));
    width = wide;
    height = high;
    return Outcome::done();
}

Outcome readScript(const QString& path, QString& text)
{
    if (std::optional<QString> script = flybyscript::readScript(path)) {
        text = std::move(*script);
        return Outcome::done();
    }
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return Outcome::failed(QStringLiteral("cannot read %1: %2").arg(path, file.errorString()));
    return Outcome::failed(QStringLiteral("%1 is not a flyby script").arg(path));
}

QString stretchText(const DecodedFile& file)
{
    if (file.stretch.isIdentity())
        return {};
    return QStringLiteral("stretched from shadows %1 with midtones %2")
        .arg(QString::number(file.stretch.shadows, 'g', 4),
             QString::number(file.stretch.midtones, 'g', 4));
}

int percentWithin(int pipelinePercent, int first, int end)
{
    const int within = std::clamp(pipelinePercent, first, 100) - first;
    return kReadPercent + within * (end - kReadPercent) / (100 - first);
}

} // namespace zrrender
