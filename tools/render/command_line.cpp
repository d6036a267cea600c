#include "tools/render/command_line.h"

#include <algorithm>

#include "tools/render/nearest.h"

namespace zrrender {

bool Invocation::has(Option option) const
{
    return std::any_of(options.begin(), options.end(),
                       [&](const auto& given) { return given.first == option; });
}

QString Invocation::value(Option option) const
{
    const QStringList all = values(option);
    return all.isEmpty() ? QString() : all.last();
}

QStringList Invocation::values(Option option) const
{
    QStringList all;
    for (const auto& [given, value] : options)
        if (given == option)
            all << value;
    return all;
}

std::vector<const OptionSpec*> optionsOf(unsigned bit, bool withHidden)
{
    std::vector<const OptionSpec*> found;
    for (const OptionSpec& option : kOptions)
        if ((option.commands & bit) && (withHidden || option.help))
            found.push_back(&option);
    return found;
}

namespace {

/// Takes the arguments one by one until the first that does not fit.
class Parser
{
public:
    explicit Parser(const QStringList& arguments)
        : left(arguments)
    {
    }

    std::variant<Invocation, QString> parse();

private:
    void takeLong(const QString& text);
    void takeShort(const QString& text);
    void takeWord(const QString& word);
    void takeCommand(const QString& word);
    void take(const OptionSpec& option, const QString& given, bool attached, QString value);
    void checkChoice(const OptionSpec& option, const QString& given, const QString& value);
    void checkComplete();
    void checkDocument();
    unsigned bit() const { return result.command ? result.command->bit : kNoCommand; }
    QString see() const;

    QStringList left;
    QString group; ///< the first word of a command of two, until the second is there
    Invocation result;
    QString error;
};

std::variant<Invocation, QString> Parser::parse()
{
    bool optionsEnded = false;
    while (!left.isEmpty() && error.isEmpty()) {
        const QString argument = left.takeFirst();
        if (!optionsEnded && argument == QLatin1String("--"))
            optionsEnded = true;
        else if (!optionsEnded && argument.startsWith(QLatin1String("--")))
            takeLong(argument.mid(2));
        else if (!optionsEnded && argument.startsWith(QLatin1Char('-')) && argument.size() > 1)
            takeShort(argument.mid(1));
        else
            takeWord(argument);
    }
    if (error.isEmpty() && !result.has(Option::Help) && !result.has(Option::Version))
        checkComplete();
    if (!error.isEmpty())
        return error;
    return result;
}

/// " (see zerrith-render still --help)"
QString Parser::see() const
{
    return QStringLiteral(" (see zerrith-render%1 --help)")
        .arg(result.command ? QStringLiteral(" ") + QLatin1String(result.command->name)
                            : QString());
}

void Parser::takeLong(const QString& text)
{
    const qsizetype equals = text.indexOf(QLatin1Char('='));
    const QString name = equals < 0 ? text : text.left(equals);
    QStringList known;
    for (const OptionSpec* option : optionsOf(bit(), true)) {
        if (name == QLatin1String(option->name)) {
            take(*option, QStringLiteral("--") + name, equals >= 0, text.mid(equals + 1));
            return;
        }
        if (option->help)
            known << QStringLiteral("--") + QLatin1String(option->name);
    }
    const QString given = QStringLiteral("--") + name;
    error = QStringLiteral("unknown option %1").arg(given) + suggestion(given, known) + see();
}

void Parser::takeShort(const QString& text)
{
    for (const OptionSpec* option : optionsOf(bit(), true)) {
        if (option->letter && text[0] == QLatin1Char(option->letter) &&
            (text.size() == 1 || !option->isSwitch())) {
            take(*option, QStringLiteral("-") + text[0], text.size() > 1, text.mid(1));
            return;
        }
    }
    error = QStringLiteral("unknown option -%1").arg(text) + see();
}

void Parser::take(const OptionSpec& option, const QString& given, bool attached, QString value)
{
    if (option.isSwitch()) {
        if (attached)
            error = QStringLiteral("option %1 takes no value").arg(given);
    } else if (!attached) {
        if (left.isEmpty()) {
            error = QStringLiteral("option %1 needs a value").arg(given) + see();
            return;
        }
        value = left.takeFirst();
    }
    checkChoice(option, given, value);
    if (!option.repeats && result.has(option.id))
        error = QStringLiteral("option %1 is given twice").arg(given);
    result.options.emplace_back(option.id, value);
}

void Parser::checkChoice(const OptionSpec& option, const QString& given, const QString& value)
{
    QStringList choices;
    for (const char* choice : option.choices)
        choices << QLatin1String(choice);
    if (!choices.isEmpty() && !choices.contains(value))
        error = QStringLiteral("option %1 takes %2, not %3")
                    .arg(given, choices.join(QLatin1String(", ")), value) +
                suggestion(value, choices);
}

void Parser::takeWord(const QString& word)
{
    if (!result.command) {
        takeCommand(word);
        return;
    }
    if (!result.command->operand || !result.operand.isEmpty())
        error = QStringLiteral("%1 does not fit behind %2")
                    .arg(word, QLatin1String(result.command->name)) +
                see();
    else if (word.isEmpty())
        error = QStringLiteral("%1 is empty").arg(QLatin1String(result.command->operand));
    else
        result.operand = word;
}

void Parser::takeCommand(const QString& word)
{
    const QString given = group.isEmpty() ? word : group + QLatin1Char(' ') + word;
    QStringList known;
    bool begins = false;
    for (const CommandSpec& command : kCommands) {
        known << QLatin1String(command.name);
        if (given == known.last()) {
            result.command = &command;
            return;
        }
        begins = begins || known.last().startsWith(given + QLatin1Char(' '));
    }
    if (begins)
        group = given;
    else
        error = QStringLiteral("unknown command %1").arg(given) + suggestion(given, known) + see();
}

void Parser::checkComplete()
{
    if (!result.command) {
        if (!result.has(Option::Man) && !result.has(Option::Completion))
            error = (group.isEmpty() ? QStringLiteral("no command is given")
                                     : group + QStringLiteral(" needs a second word")) +
                    see();
        return;
    }
    checkDocument();
    if (!error.isEmpty())
        return;
    for (const OptionSpec* option : optionsOf(bit(), false))
        if (option->required && result.value(option->id).isEmpty())
            error = QStringLiteral("%1 needs --%2 %3")
                        .arg(QLatin1String(result.command->name), QLatin1String(option->name),
                             QLatin1String(option->value)) +
                    see();
}

/// What is read: the operand, or a pair in its place.
void Parser::checkDocument()
{
    const bool starless = result.has(Option::Starless);
    const bool stars = result.has(Option::Stars);
    if (starless != stars)
        error = QStringLiteral("--%1 needs --%2 FILE beside it")
                    .arg(QLatin1String(starless ? "starless" : "stars"),
                         QLatin1String(starless ? "stars" : "starless")) +
                see();
    else if (starless && !result.operand.isEmpty())
        error =
            QStringLiteral("%1 does not fit beside --starless and --stars, which take its place")
                .arg(result.operand) +
            see();
    else if (!starless && result.command->operand && result.operand.isEmpty())
        error =
            QStringLiteral("%1 needs a file to read, %2")
                .arg(QLatin1String(result.command->name), QLatin1String(result.command->operand)) +
            see();
}

} // namespace

std::variant<Invocation, QString> parseCommandLine(const QStringList& arguments)
{
    return Parser(arguments).parse();
}

} // namespace zrrender
