#pragma once

#include <ostream>

#include <QJsonObject>
#include <QString>

namespace zrrender {

/// Where a run speaks: results on one stream, progress and complaints on the other; with JSON each
/// of these is one object a line on the first.
class Console
{
public:
    /// `terminal` says that `err` is a screen, which gets a progress bar.
    Console(std::ostream& out, std::ostream& err, bool terminal);

    void setMode(bool json, bool quiet);
    bool json() const { return asJson; }

    /// Percent, 0 to 100, of the whole run and what is being done; a repeated report is dropped.
    void progress(int percent, const QString& text);
    /// A note that is no failure: one line of the error stream.
    void warn(const QString& text);
    /// What a command made: `line` for a person, `object` (with "event": "result" added) as JSON.
    void made(const QString& line, const QJsonObject& object);
    /// What a command was asked to tell: never silenced.
    void answer(const QString& text);
    void answer(const QJsonObject& object);
    void failed(int code, const QString& message);

    /// False when the result stream did not take everything.
    bool flush();

private:
    void printObject(const QJsonObject& object);
    void drawBar();
    void clearBar();

    std::ostream& out;
    std::ostream& err;
    bool terminal;
    bool asJson = false;
    bool quiet = false;
    int lastPercent = -1;
    QString lastText;
    bool barDrawn = false;
};

} // namespace zrrender
