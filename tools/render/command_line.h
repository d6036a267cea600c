#pragma once

#include <utility>
#include <variant>
#include <vector>

#include <QString>
#include <QStringList>

#include "tools/render/command_table.h"

namespace zrrender {

/// A command line that fits the tables.
struct Invocation
{
    const CommandSpec* command = nullptr; ///< null: only options that stand alone
    QString operand;
    std::vector<std::pair<Option, QString>> options; ///< in the order given

    bool has(Option option) const;
    /// The last value given, or an empty text.
    QString value(Option option) const;
    /// Every value given, in order.
    QStringList values(Option option) const;
    /// Whether a pair of images stands in place of the operand.
    bool hasPair() const { return has(Option::Starless) && has(Option::Stars); }
};

/// Reads the arguments after the program's name: a command, its operand and options in any order,
/// values as "--name value", "--name=value", "-o value" or "-ovalue", and operands alone after
/// "--". Otherwise the message of what does not fit, naming the nearest word that would. With
/// `Option::Help` or `Option::Version` present nothing is required.
std::variant<Invocation, QString> parseCommandLine(const QStringList& arguments);

/// The options that `bit` takes, in the order of the table; hidden ones only when asked for.
std::vector<const OptionSpec*> optionsOf(unsigned bit, bool withHidden);

} // namespace zrrender
