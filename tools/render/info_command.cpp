#include "app/session/open_document.h"
#include "tools/render/command_line.h"
#include "tools/render/program.h"
#include "tools/render/render_request.h"
#include "tools/render/solution_report.h"

namespace zrrender {

static QJsonObject infoObject(const Session& session, const std::optional<SolutionReport>& solution)
{
    const zre::ImageFileInfo& info = session.sourceFile.info;
    const zre::MidtonesStretch& stretch = session.sourceFile.stretch;
    QJsonObject object{{"command", "info"},
                       {"file", session.sourcePath},
                       {"format", QString::fromStdString(info.container)},
                       {"sampleFormat", QString::fromStdString(info.sampleFormat)},
                       {"bitDepth", info.bitDepth},
                       {"width", session.source.width},
                       {"height", session.source.height},
                       {"channels", session.source.channels},
                       {"linear", info.linear},
                       {"stretch", QJsonValue()},
                       {"solution", QJsonValue()}};
    if (!stretch.isIdentity())
        object["stretch"] =
            QJsonObject{{"shadows", stretch.shadows}, {"midtones", stretch.midtones}};
    if (solution)
        object["solution"] = toJson(*solution);
    return object;
}

static QString infoText(const Session& session, const std::optional<SolutionReport>& solution)
{
    const zre::ImageFileInfo& info = session.sourceFile.info;
    const auto line = [](const char* label, const QString& text) {
        return QStringLiteral("%1%2\n").arg(QLatin1String(label), -14).arg(text);
    };
    const QString stretch = stretchText(session.sourceFile);
    QString text = line("file", session.sourcePath);
    text += line("format", QStringLiteral("%1, %2, %3 bits")
                               .arg(QString::fromStdString(info.container),
                                    QString::fromStdString(info.sampleFormat))
                               .arg(info.bitDepth));
    text += line("size", QStringLiteral("%1 x %2, %3")
                             .arg(session.source.width)
                             .arg(session.source.height)
                             .arg(session.source.channels >= 3 ? "colour" : "grey"));
    text += line("data", info.linear ? "linear" : "ready to be shown");
    if (!stretch.isEmpty())
        text += line("shown", stretch);
    return text + (solution ? toText(*solution) : line("solution", "none"));
}

Outcome runInfo(const Invocation& invocation, RunContext& context)
{
    Session session;
    Outcome outcome = openInputs(invocation, session, context.console);
    if (!outcome.isDone())
        return outcome;
    const auto solution =
        describeSolution(session.wcs, session.source.width, session.source.height);
    if (context.console.json())
        context.console.answer(infoObject(session, solution));
    else
        context.console.answer(infoText(session, solution));
    return Outcome::done();
}

} // namespace zrrender
