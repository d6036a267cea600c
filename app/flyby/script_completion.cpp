#include "app/flyby/script_completion.h"

#include <span>

#include <QRegularExpression>
#include <QSet>

#include "app/flyby/script_words.h"

namespace flybyscript {

namespace {

QString text(std::string_view word)
{
    return QString::fromLatin1(word.data(), static_cast<qsizetype>(word.size()));
}

bool isWordCharacter(QChar c)
{
    return c == '_' || c == '$' || (c.unicode() < 128 && c.isLetterOrNumber());
}

const QRegularExpression& separators()
{
    static const QRegularExpression kSeparators("[ \\t,:]+");
    return kSeparators;
}

/// The line up to the cursor, parted where its words are.
struct Before
{
    QStringList words; ///< finished ones
    QString assigned;  ///< the parameter whose value is under way
    int start = 0;     ///< of the word under way
    bool inComment = false;
};

Before before(const QString& line, int column)
{
    const QString text = line.left(column);
    Before result;
    result.inComment = text.contains('#');
    result.start = static_cast<int>(text.size());
    while (result.start > 0 && isWordCharacter(text[result.start - 1]))
        --result.start;
    QString ahead = text.left(result.start);
    if (ahead.endsWith('=')) {
        static const QRegularExpression kName("([A-Za-z_]+)=$");
        result.assigned = kName.match(ahead).captured(1).toLower();
        if (result.assigned.isEmpty())
            result.assigned = "=";
    }
    result.words = ahead.split(separators(), Qt::SkipEmptyParts);
    return result;
}

std::span<const std::string_view> parametersOf(const QString& command)
{
    if (command == "path_start")
        return zre::script::kStartNames;
    if (command == "waypoint")
        return zre::script::kWaypointNames;
    return {};
}

QStringList texts(std::span<const std::string_view> words)
{
    QStringList all;
    for (const std::string_view word : words)
        all << text(word);
    return all;
}

QStringList valuesOf(const QString& parameter)
{
    if (parameter == "ease")
        return texts(zre::script::kEases);
    return parameter == "move" ? texts(zre::script::kMoves) : QStringList();
}

QStringList unusedParameters(const QString& command, const QString& line)
{
    QStringList names;
    for (const QString& name : texts(parametersOf(command)))
        if (!line.contains(
                QRegularExpression("\\b" + name + "=", QRegularExpression::CaseInsensitiveOption)))
            names << name + "=";
    return names;
}

QStringList commands()
{
    QStringList all;
    for (const Word& word : kWords)
        if (word.kind != WordKind::Move)
            all << word.word;
    return all;
}

QStringList variableNames(const QStringList& own)
{
    QStringList names;
    for (const Name& row : kVariables)
        names << "$" + text(row.name);
    for (const QString& name : own)
        names << "$" + name;
    return names;
}

const Word* findWord(const QString& command)
{
    for (const Word& word : kWords)
        if (command == QLatin1String(word.word) && word.kind != WordKind::Move)
            return &word;
    return nullptr;
}

} // namespace

Completion completionAt(const QString& line, int column, const std::function<QString()>& script)
{
    const Before place = before(line, column);
    Completion completion{place.start, {}};
    if (place.inComment)
        return completion;
    const QString command = place.words.value(0).toLower();
    const bool drawn = !parametersOf(command).empty();
    if (line.mid(place.start, 1) == "$")
        completion.candidates = drawn ? QStringList() : variableNames(variablesOf(script()));
    else if (place.words.isEmpty())
        completion.candidates = commands();
    else if (drawn)
        completion.candidates =
            place.assigned.isEmpty() ? unusedParameters(command, line) : valuesOf(place.assigned);
    else if (command == "ease" && place.words.size() == 1)
        completion.candidates = valuesOf(command);
    return completion;
}

QString tailOf(const QString& candidate)
{
    const Word* word = findWord(candidate);
    if (!word || !*word->arguments)
        return {};
    return word->kind == WordKind::Path || word->kind == WordKind::Program ? " " : ": ";
}

QString hintAt(const QString& line, int column)
{
    const QString code = line.section('#', 0, 0);
    const QString command = code.split(separators(), Qt::SkipEmptyParts).value(0).toLower();
    const Word* word = findWord(command);
    if (!word)
        return {};
    if (!parametersOf(command).empty()) {
        const auto from = code.left(column).lastIndexOf(separators()) + 1;
        const QString name = code.mid(from).section('=', 0, 0).toLower();
        if (const char* explanation = explanationOf(name.toStdString()))
            return name + "=: " + explanation;
    }
    const QString usage = *word->arguments ? command + ": " + word->arguments : command;
    return usage + "  -  " + word->explanation;
}

QStringList variablesOf(const QString& script)
{
    static const QRegularExpression kAssignment("^[ \\t]*\\$([A-Za-z_]\\w*)[ \\t]*=",
                                                QRegularExpression::MultilineOption);
    QStringList names;
    QSet<QString> known;
    auto matches = kAssignment.globalMatch(script);
    while (matches.hasNext()) {
        const QString name = matches.next().captured(1).toLower();
        if (known.contains(name))
            continue;
        known << name;
        names << name;
    }
    return names;
}

} // namespace flybyscript
