#include "tools/render/command_line.h"

#include <gmock/gmock.h>

#include "tools/render/nearest.h"

namespace zrrender {
namespace {

using testing::HasSubstr;

QStringList split(const char* line)
{
    return QString(line).split(' ', Qt::SkipEmptyParts);
}

TEST(CommandLine, TakesEverySpellingOfAnOptionAnywhere)
{
    const char* const lines[] = {
        "still in.png -o out.png --view sbs --set a=1 --set b=2 --json",
        "still -o out.png --set a=1 in.png --set b=2 --view=sbs --json",
        "--json still -oout.png --set=a=1 --view sbs --set b=2 -- in.png",
        "still --output out.png --view=sbs --set a=1 --json --set b=2 in.png",
    };
    for (const char* line : lines) {
        const auto parsed = parseCommandLine(split(line));
        ASSERT_TRUE(std::holds_alternative<Invocation>(parsed)) << line;
        const Invocation& invocation = std::get<Invocation>(parsed);
        EXPECT_EQ(invocation.command->bit, kStill);
        EXPECT_EQ(invocation.operand, "in.png");
        EXPECT_EQ(invocation.value(Option::Output), "out.png");
        EXPECT_EQ(invocation.value(Option::View), "sbs");
        EXPECT_EQ(invocation.values(Option::Set), QStringList({"a=1", "b=2"})) << line;
        EXPECT_TRUE(invocation.has(Option::Json));
    }
}

TEST(CommandLine, LeavesFileNamesThatLookLikeOptionsAlone)
{
    const auto parsed = parseCommandLine({"info", "--", "--help"});
    ASSERT_TRUE(std::holds_alternative<Invocation>(parsed));
    EXPECT_EQ(std::get<Invocation>(parsed).operand, "--help");
    EXPECT_FALSE(std::get<Invocation>(parsed).has(Option::Help));
}

TEST(CommandLine, APairStandsInPlaceOfTheOperand)
{
    for (const CommandSpec& command : kCommands) {
        if (!(command.bit & kRendering))
            continue;
        const auto parsed =
            parseCommandLine({command.name, "--stars", "b", "-o", "o", "--starless=c"});
        ASSERT_TRUE(std::holds_alternative<Invocation>(parsed)) << command.name;
        EXPECT_TRUE(std::get<Invocation>(parsed).hasPair());
    }
}

TEST(CommandLine, HelpNeedsNothingElse)
{
    for (const CommandSpec& command : kCommands)
        EXPECT_TRUE(std::holds_alternative<Invocation>(parseCommandLine({command.name, "-h"})));
}

struct Misfit
{
    const char* line;
    const char* message;
};

class MisfitLine : public testing::TestWithParam<Misfit>
{
};

TEST_P(MisfitLine, IsRefusedWithTheWordThatWouldFit)
{
    const auto parsed = parseCommandLine(split(GetParam().line));
    ASSERT_TRUE(std::holds_alternative<QString>(parsed)) << GetParam().line;
    EXPECT_THAT(std::get<QString>(parsed).toStdString(), HasSubstr(GetParam().message));
}

INSTANTIATE_TEST_SUITE_P(
    Lines, MisfitLine,
    testing::Values(Misfit{"", "no command is given"}, Misfit{"--json", "no command is given"},
                    Misfit{"stil in.png", "unknown command stil; did you mean still?"},
                    Misfit{"render in.png", "unknown command render (see"},
                    Misfit{"still in.png -o a.png --veiw sbs", "--veiw; did you mean --view?"},
                    Misfit{"still in.png -o a.png --seed 3", "unknown option --seed"},
                    Misfit{"still --man", "unknown option --man"},
                    Misfit{"still in.png -o a.png --view anaglif", "did you mean anaglyph?"},
                    Misfit{"still in.png -o a.png --bits 12", "--bits takes 8, 16, 32, not 12"},
                    Misfit{"wiggle in.png -o a --bits 32", "--bits takes 8, 16, not 32"},
                    Misfit{"still in.png -o a.png -x", "unknown option -x"},
                    Misfit{"still in.png -qx -o a.png", "unknown option -qx"},
                    Misfit{"still in.png -o a.png --json=1", "--json takes no value"},
                    Misfit{"still in.png -o", "-o needs a value"},
                    Misfit{"still in.png -o a.png -o b.png", "-o is given twice"},
                    Misfit{"still -o a.png", "still needs a file to read"},
                    Misfit{"still in.png", "still needs --output OUT"},
                    Misfit{"stars --starless a.png -o s.csv", "--starless needs --stars FILE"},
                    Misfit{"still in.png --stars b.png -o a.png", "--stars needs --starless FILE"},
                    Misfit{"still in.png --stars b.png --starless c.png -o a.png",
                           "in.png does not fit beside --starless and --stars"},
                    Misfit{"still in.png --output= ", "still needs --output OUT"},
                    Misfit{"demo-scene", "demo-scene needs --output OUT"},
                    Misfit{"info a.png b.png", "b.png does not fit behind info"},
                    Misfit{"params wiggleFrames", "wiggleFrames does not fit behind params"}));

TEST(NearestName, FindsSlipsOfTheFingerAndNothingElse)
{
    const QStringList names{"still", "wiggle", "wiggleFrames", "wiggleFps", "postHue"};
    const std::pair<const char*, const char*> cases[] = {
        {"wigle", "wiggle"},
        {"WIGGLEFRAMES", "wiggleFrames"},
        {"wiggelFps", "wiggleFps"},
        {"wigglFrame", "wiggleFrames"},
        {"stlil", "still"},
        {"hue", ""},
        {"", ""},
        {"x", ""},
        {"parallax", ""},
    };
    for (const auto& [typed, meant] : cases)
        EXPECT_EQ(nearestName(typed, names), meant) << typed;
    EXPECT_EQ(nearestName(QString(100000, 'w'), names), "");
}

} // namespace
} // namespace zrrender
