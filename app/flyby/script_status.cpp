#include "app/flyby/script_status.h"

#include "app/session/flyby_path.h"
#include "engine/flight/flight3d_path.h"
#include "engine/flight/flyby_script.h"

using Errors = std::vector<zre::ZRFlybyError>;

/// The errors at their places in the script.
static std::vector<ScriptStatus::Complaint> placed(const std::string& script, const Errors& errors)
{
    std::vector<ScriptStatus::Complaint> complaints;
    for (const zre::ZRFlybyError& error : errorsInSource(script, errors))
        complaints.push_back({error.line, QString::fromStdString(error.message)});
    return complaints;
}

static QString errorText(const Errors& errors)
{
    QString text = QStringLiteral("Line %1: %2")
                       .arg(errors.front().line)
                       .arg(QString::fromStdString(errors.front().message));
    if (errors.size() > 1)
        text += QStringLiteral(" (+%1 more)").arg(errors.size() - 1);
    return text;
}

ScriptStatus scriptStatus(const QString& script, const ScriptContext& context)
{
    if (script.trimmed().isEmpty())
        return {"Empty - the built-in push-in loop will play.", {}};
    const std::string text = script.toStdString();
    if (zre::isFlight3DScript(text))
        return {kNo3DFlights, {}};
    if (context.width <= 0 || context.height <= 0)
        return {"Open an image to validate against its size.", {}};
    Errors errors;
    int frames = 0;
    double seconds = 0.0;
    constexpr int kWholeImage = 0;
    if (!zre::ZRFlybyScript::Validate(text, context.width, context.height, context.fps, errors,
                                      &frames, &seconds, kWholeImage, kWholeImage) &&
        !errors.empty())
        return {errorText(errors), placed(text, errors)};
    if (frames == 0)
        return {"Script produced no frames.", {}};
    return {QStringLiteral("Valid: %1 frames (~%2 s).").arg(frames).arg(seconds, 0, 'f', 1), {}};
}
