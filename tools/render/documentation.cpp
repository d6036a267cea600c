#include "tools/render/documentation.h"

#include <array>
#include <map>

#include <QStringList>

#include "tools/render/command_line.h"
#include "tools/render/outcome.h"

namespace zrrender {

namespace {

struct ExitMeaning
{
    ExitCode code;
    const char* meaning;
};
constexpr std::array kExitMeanings{
    ExitMeaning{kDone, "done"},
    ExitMeaning{kFailed, "failed; no partial file is left"},
    ExitMeaning{kUsage, "the command line or a parameter is wrong"},
    ExitMeaning{kInterrupted, "interrupted; no partial file is left"},
};

constexpr const char* kPurpose =
    "turns one astrophotograph into a three-dimensional picture, without a window";
constexpr int kLineWidth = 79;
constexpr int kHelpColumn = 24;

QString latin(const char* text)
{
    return QString::fromLatin1(text);
}

/// `text` in lines of at most `kLineWidth`, the second and later ones indented; `used` columns of
/// the first are taken.
QString wrapped(const QString& text, int used, int indent)
{
    QString lines;
    int column = used;
    for (const QString& word : text.split(QLatin1Char(' '))) {
        const int width = static_cast<int>(word.size());
        const bool starts = column == used && lines.isEmpty();
        if (!starts && column + 1 + width > kLineWidth) {
            lines += QLatin1Char('\n') + QString(indent, QLatin1Char(' '));
            column = indent;
        } else if (!starts) {
            lines += QLatin1Char(' ');
            ++column;
        }
        lines += word;
        column += width;
    }
    return lines;
}

QString choiceList(const OptionSpec& option)
{
    QStringList choices;
    for (const char* choice : option.choices)
        choices << latin(choice);
    return choices.join(QLatin1String(", "));
}

/// "-o, --output OUT"
QString spelling(const OptionSpec& option)
{
    QString text = option.letter ? QStringLiteral("-%1, ").arg(QLatin1Char(option.letter))
                                 : QStringLiteral("    ");
    text += QStringLiteral("--") + latin(option.name);
    return option.value ? text + QLatin1Char(' ') + latin(option.value) : text;
}

QString meaning(const OptionSpec& option)
{
    const QString choices = choiceList(option);
    return choices.isEmpty()
               ? latin(option.help)
               : QStringLiteral("one of ") + choices + QStringLiteral(": ") + latin(option.help);
}

/// Two columns: `left` and the wrapped `right`, on a line of its own when `left` is long.
QString row(const QString& left, const QString& right)
{
    QString text = QStringLiteral("  ") + left;
    const int room = kHelpColumn - 2;
    text += text.size() > room ? QLatin1Char('\n') + QString(kHelpColumn, QLatin1Char(' '))
                               : QString(kHelpColumn - text.size(), QLatin1Char(' '));
    return text + wrapped(right, kHelpColumn, kHelpColumn) + QLatin1Char('\n');
}

/// "zerrith-render still IN -o OUT"
QString synopsis(const CommandSpec& command)
{
    QString text = QStringLiteral("zerrith-render ") + latin(command.name);
    if (command.operand)
        text += QLatin1Char(' ') + latin(command.operand);
    for (const OptionSpec* option : optionsOf(command.bit, false))
        if (option->required)
            text += QStringLiteral(" -%1 ").arg(QLatin1Char(option->letter)) + latin(option->value);
    return text;
}

QString exitCodes()
{
    QString text;
    for (const ExitMeaning& exit : kExitMeanings)
        text += row(QString::number(exit.code), latin(exit.meaning));
    return text;
}

QString programHelp()
{
    QString text =
        QStringLiteral("zerrith-render %1\n%2.\n\nusage: zerrith-render COMMAND "
                       "[OPTION]...\n\nCommands:\n")
            .arg(latin(programVersion()), latin(kPurpose).replace(0, 1, QLatin1Char('T')));
    for (const CommandSpec& command : kCommands)
        text +=
            row(command.operand ? latin(command.name) + QLatin1Char(' ') + latin(command.operand)
                                : latin(command.name),
                latin(command.summary));
    text += QStringLiteral("\nOptions:\n");
    for (const OptionSpec* option : optionsOf(kNoCommand, false))
        text += row(spelling(*option), meaning(*option));
    return text + QStringLiteral("\nExit codes:\n") + exitCodes() +
           QStringLiteral("\n`zerrith-render COMMAND --help` tells the options of one command.\n");
}

/// Roff takes some signs at the start of a line, and minus and backslash anywhere, for its own.
QString roff(QString text)
{
    text.replace(QLatin1Char('\\'), QLatin1String("\\e"));
    text.replace(QLatin1Char('-'), QLatin1String("\\-"));
    if (text.startsWith(QLatin1Char('.')) || text.startsWith(QLatin1Char('\'')))
        text.prepend(QLatin1String("\\&"));
    return text;
}

QString manOption(const OptionSpec& option)
{
    QString name = QStringLiteral("\\fB") + roff(QStringLiteral("--") + latin(option.name)) +
                   QStringLiteral("\\fR");
    if (option.letter)
        name.prepend(QStringLiteral("\\fB\\-%1\\fR, ").arg(QLatin1Char(option.letter)));
    if (option.value)
        name += QStringLiteral(" \\fI") + roff(latin(option.value)) + QStringLiteral("\\fR");
    return QStringLiteral(".TP\n%1\n%2\n").arg(name, roff(meaning(option)));
}

/// `text` as a completion's word list.
QString words(const std::vector<const OptionSpec*>& options)
{
    QStringList names;
    for (const OptionSpec* option : options) {
        names << QStringLiteral("--") + latin(option->name);
        if (option->letter)
            names << QStringLiteral("-%1").arg(QLatin1Char(option->letter));
    }
    return names.join(QLatin1Char(' '));
}

QString completionOfValue(const OptionSpec& option)
{
    switch (option.completes) {
    case Completes::Files:
        return QStringLiteral("_zerrith_render_files -f");
    case Completes::Folders:
        return QStringLiteral("_zerrith_render_files -d");
    case Completes::Choices:
        return QStringLiteral("COMPREPLY=($(compgen -W '%1' -- \"$word\"))")
            .arg(choiceList(option).remove(QLatin1Char(',')));
    case Completes::Parameters:
        return QStringLiteral("_zerrith_render_parameters");
    case Completes::Nothing:
        break;
    }
    return QStringLiteral(":");
}

QString completionCase(const CommandSpec& command)
{
    const std::vector<const OptionSpec*> options = optionsOf(command.bit, false);
    QString text =
        QStringLiteral("    '%1')\n        case $previous in\n").arg(latin(command.name));
    for (const OptionSpec* option : options) {
        if (option->isSwitch())
            continue;
        QString pattern = QStringLiteral("--") + latin(option->name);
        if (option->letter)
            pattern += QStringLiteral(" | -%1").arg(QLatin1Char(option->letter));
        text +=
            QStringLiteral("        %1) %2; return ;;\n").arg(pattern, completionOfValue(*option));
    }
    text += QStringLiteral("        esac\n        options='%1'\n").arg(words(options));
    if (command.operand)
        text += QStringLiteral("        operands=1\n");
    return text + QStringLiteral("        ;;\n");
}

} // namespace

const char* programVersion()
{
    return ZR_VERSION;
}

QString helpText(const CommandSpec* command)
{
    if (!command)
        return programHelp();
    QString text = QStringLiteral("usage: ") + synopsis(*command) +
                   QStringLiteral(" [OPTION]...\n\n") + wrapped(latin(command->details), 0, 0) +
                   QStringLiteral("\n\nOptions:\n");
    for (const OptionSpec* option : optionsOf(command->bit, false))
        text += row(spelling(*option), meaning(*option));
    return text;
}

QString manPage()
{
    QString text = QStringLiteral(".TH ZERRITH\\-RENDER 1 \"\" \"zerrith\\-render %1\"\n.SH NAME\n"
                                  "zerrith\\-render \\- %2\n.SH SYNOPSIS\n")
                       .arg(latin(programVersion()), roff(latin(kPurpose)));
    for (const CommandSpec& command : kCommands)
        text += QStringLiteral(".B %1\n[\\fIOPTION\\fR]...\n.br\n").arg(roff(synopsis(command)));
    text += QStringLiteral(".SH OPTIONS OF EVERY COMMAND\n");
    for (const OptionSpec* option : optionsOf(kNoCommand, false))
        text += manOption(*option);
    text += QStringLiteral(".SH COMMANDS\n");
    for (const CommandSpec& command : kCommands) {
        text += QStringLiteral(".SS %1\n%2\n")
                    .arg(roff(latin(command.name)), roff(latin(command.details)));
        for (const OptionSpec* option : optionsOf(command.bit, false))
            if (!(option->commands & kNoCommand))
                text += manOption(*option);
    }
    text += QStringLiteral(".SH EXIT STATUS\n");
    for (const ExitMeaning& exit : kExitMeanings)
        text +=
            QStringLiteral(".TP\n\\fB%1\\fR\n%2\n").arg(exit.code).arg(roff(latin(exit.meaning)));
    return text;
}

constexpr const char* kCompletionFrame = R"bash(# bash completion of zerrith-render
_zerrith_render_files()
{
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen "$1" -- "$word")
}

_zerrith_render_parameters()
{
    compopt -o nospace 2>/dev/null
    local names=$("${COMP_WORDS[0]}" params --text 2>/dev/null | cut -d= -f1)
    COMPREPLY=($(compgen -S = -W "$names" -- "$word"))
}

_zerrith_render()
{
    local word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local command= options='%1' operands= group= i
    COMPREPLY=()
    # bash makes a word of its own of the = in --name=value
    if [[ $word == = ]]; then
        word=
    elif [[ $previous == = && COMP_CWORD -gt 1 ]]; then
        previous=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    for ((i = 1; i < COMP_CWORD; i++)); do
        case "$group${COMP_WORDS[i]}" in
        %2) command=$group${COMP_WORDS[i]}; break ;;
%5        esac
    done
    case ${command:-$group} in
%3%6    '') options+=' %4' ;;
    esac
    if [[ $word == -* || -z $operands ]]; then
        COMPREPLY=($(compgen -W "$options" -- "$word"))
    else
        _zerrith_render_files -f
    fi
}
complete -F _zerrith_render zerrith-render
)bash";

QString bashCompletion()
{
    QString cases;
    QStringList quoted;
    QStringList first;                     // words of every command
    std::map<QString, QStringList> second; // of the commands of two
    for (const CommandSpec& command : kCommands) {
        const QStringList name = latin(command.name).split(QLatin1Char(' '));
        quoted << QLatin1Char('\'') + latin(command.name) + QLatin1Char('\'');
        cases += completionCase(command);
        if (!first.contains(name[0]))
            first << name[0];
        if (name.size() > 1)
            second[name[0]] << name[1];
    }
    QString groups;
    QString groupCases;
    for (const auto& [group, names] : second) {
        groups += QStringLiteral("        %1) group='%1 ' ;;\n").arg(group);
        groupCases +=
            QStringLiteral("    '%1 ') options='%2' ;;\n").arg(group, names.join(QLatin1Char(' ')));
    }
    return latin(kCompletionFrame)
        .arg(words(optionsOf(kNoCommand, false)), quoted.join(QLatin1String(" | ")), cases,
             first.join(QLatin1Char(' ')), groups, groupCases);
}

} // namespace zrrender
