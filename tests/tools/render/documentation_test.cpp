#include "tools/render/documentation.h"

#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>

#include "tests/support/testkit.h"
#include "tests/tools/render/spawn.h"
#include "tools/render/command_line.h"

namespace zrrender {
namespace {

using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::Not;

TEST(Help, NamesEveryOptionOfItsCommandAndNoOther)
{
    for (const CommandSpec& command : kCommands) {
        const std::string help = helpText(&command).toStdString();
        for (const OptionSpec& option : kOptions) {
            const std::string spelled = "--" + std::string(option.name);
            if (option.help && (option.commands & command.bit)) {
                EXPECT_THAT(help, HasSubstr(spelled)) << command.name;
            } else if (!option.help) {
                EXPECT_THAT(help, Not(HasSubstr(spelled))) << command.name;
            }
        }
        for (const QString& line : helpText(&command).split('\n'))
            EXPECT_LE(line.size(), 79) << line.toStdString();
        EXPECT_THAT(helpText(nullptr).toStdString(), HasSubstr(command.name));
    }
}

std::string writeText(const char* name, const QString& text)
{
    const std::string path = (zrtest::scratchFolder() / name).string();
    std::ofstream(path) << text.toStdString();
    return path;
}

TEST(ManPage, SetsWithoutAWarningAndNamesEveryOption)
{
    const char* groff = "/usr/bin/groff";
    if (!std::filesystem::exists(groff))
        GTEST_SKIP() << "groff is not installed";
    const zrtest::Ended set = zrtest::runProgramFile(
        groff, {"-ww", "-man", "-Tascii", "-P-c", writeText("page.1", manPage())});
    EXPECT_EQ(set.code, 0);
    EXPECT_EQ(set.errors, "");
    for (const OptionSpec& option : kOptions) {
        if (!option.help)
            continue;
        EXPECT_THAT(manPage().toStdString(),
                    HasSubstr(QString("\\-\\-%1\\fR")
                                  .arg(QString(option.name).replace('-', "\\-"))
                                  .toStdString()));
    }
}

/// What bash offers for the last of `words`.
std::vector<std::string> offered(const QStringList& words)
{
    const std::string folder = std::filesystem::path(ZR_RENDER_PROGRAM).parent_path().string();
    const QString script =
        bashCompletion() + QString("COMP_WORDS=(%1)\nCOMP_CWORD=%2\n_zerrith_render\n"
                                   "printf '%s\\n' \"${COMPREPLY[@]}\"\n")
                               .arg("'" + words.join("' '") + "'")
                               .arg(words.size() - 1);
    const zrtest::Ended ended = zrtest::runProgramFile(
        "/bin/bash", {writeText("completion.sh", script)}, {"PATH=" + folder + ":/usr/bin:/bin"});
    EXPECT_EQ(ended.code, 0) << ended.errors;
    std::vector<std::string> replies;
    for (const QString& line : QString::fromStdString(ended.output).split('\n', Qt::SkipEmptyParts))
        replies.push_back(line.toStdString());
    return replies;
}

TEST(Completion, OffersTheCommandsAndEachCommandsOwnOptions)
{
    if (!std::filesystem::exists("/bin/bash"))
        GTEST_SKIP() << "bash is not installed";
    std::vector<std::string> commands;
    for (const CommandSpec& command : kCommands) {
        const QStringList name = QString(command.name).split(' ');
        commands.push_back(name[0].toStdString());
        if (name.size() > 1) {
            EXPECT_THAT(offered({"zerrith-render", name[0], ""}),
                        testing::Contains(name[1].toStdString()));
        }
        std::vector<std::string> options;
        for (const OptionSpec* option : optionsOf(command.bit, false))
            options.push_back("--" + std::string(option->name));
        EXPECT_THAT(offered(QStringList{"zerrith-render"} + name + QStringList{"--"}),
                    ElementsAreArray(options));
    }
    for (const std::string& command : commands)
        EXPECT_THAT(offered({"zerrith-render", ""}), testing::Contains(command));
}

TEST(Completion, OffersValuesWhereTheyAreKnown)
{
    if (!std::filesystem::exists("/bin/bash"))
        GTEST_SKIP() << "bash is not installed";
    EXPECT_THAT(offered({"zerrith-render", "still", "a.png", "--view", "s"}),
                ElementsAreArray({"source", "sbs", "starless", "stars", "stars-over-starless"}));
    EXPECT_THAT(offered({"zerrith-render", "still", "a.png", "--view", "=", "s"}),
                ElementsAreArray({"source", "sbs", "starless", "stars", "stars-over-starless"}));
    EXPECT_THAT(offered({"zerrith-render", "still", "a.png", "--stretch", "="}),
                ElementsAreArray({"auto", "none"}));
    EXPECT_THAT(offered({"zerrith-render", "wiggle", "--bits", ""}), ElementsAreArray({"8", "16"}));
    EXPECT_THAT(offered({"zerrith-render", "wiggle", "a.png", "--set", "wiggleF"}),
                ElementsAreArray({"wiggleFrames=", "wiggleFps="}));
    EXPECT_THAT(offered({"zerrith-render", "demo-scene", "--seed", ""}), testing::IsEmpty());
}

} // namespace
} // namespace zrrender
