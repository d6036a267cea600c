#include "tools/render/console.h"

#include <algorithm>
#include <string>

#include <QJsonDocument>

namespace zrrender {

static constexpr const char* kProgram = "zerrith-render: ";

/// Names and texts of files may hold what would steer a terminal.
static std::string oneLine(QString text)
{
    for (QChar& letter : text)
        if (letter == QLatin1Char('\n'))
            letter = QLatin1Char(' ');
        else if (letter.category() == QChar::Other_Control)
            letter = QLatin1Char('?');
    return text.toStdString();
}

Console::Console(std::ostream& results, std::ostream& complaints, bool onTerminal)
    : out(results)
    , err(complaints)
    , terminal(onTerminal)
{
}

void Console::setMode(bool useJson, bool beQuiet)
{
    asJson = useJson;
    quiet = beQuiet;
}

void Console::progress(int percent, const QString& text)
{
    percent = std::clamp(percent, 0, 100);
    if (quiet || (percent == lastPercent && text == lastText))
        return;
    lastPercent = percent;
    lastText = text;
    if (asJson)
        printObject({{"event", "progress"}, {"percent", percent}, {"stage", text}});
    else if (terminal)
        drawBar();
}

void Console::drawBar()
{
    constexpr int kCells = 30;
    const int filled = lastPercent * kCells / 100;
    const std::string bar = std::string(static_cast<std::size_t>(filled), '#') +
                            std::string(static_cast<std::size_t>(kCells - filled), '.');
    err << "\r\033[K[" << bar << "] " << lastPercent << "%  " << lastText.toStdString()
        << std::flush;
    barDrawn = true;
}

void Console::clearBar()
{
    if (barDrawn)
        err << "\r\033[K" << std::flush;
    barDrawn = false;
}

void Console::warn(const QString& text)
{
    if (quiet)
        return;
    clearBar();
    err << kProgram << oneLine(text) << std::endl;
}

void Console::made(const QString& line, const QJsonObject& object)
{
    clearBar();
    if (asJson)
        answer(object);
    else if (!quiet)
        answer(line + QLatin1Char('\n'));
}

void Console::answer(const QString& text)
{
    clearBar();
    out << text.toStdString();
}

void Console::answer(const QJsonObject& object)
{
    QJsonObject result = object;
    result.insert("event", "result");
    printObject(result);
}

void Console::failed(int code, const QString& message)
{
    clearBar();
    if (asJson)
        printObject({{"event", "error"}, {"code", code}, {"message", message}});
    err << kProgram << oneLine(message) << std::endl;
}

void Console::printObject(const QJsonObject& object)
{
    out << QJsonDocument(object).toJson(QJsonDocument::Compact).toStdString() << std::endl;
}

bool Console::flush()
{
    clearBar();
    out.flush();
    return out.good();
}

} // namespace zrrender
