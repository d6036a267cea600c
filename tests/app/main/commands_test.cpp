#include "app/main/commands.h"

#include <QApplication>
#include <QImage>

#include <gtest/gtest.h>

#include "app/main/app_icon.h"
#include "tests/support/testkit.h"

struct Line
{
    const char* name;
    QStringList arguments;
};

class NormalStart : public testing::TestWithParam<Line>
{
};

TEST_P(NormalStart, FollowsWhatIsNoCompleteCommand)
{
    EXPECT_FALSE(runCommand(QStringList("zerrith-studio") + GetParam().arguments).has_value());
}

INSTANTIATE_TEST_SUITE_P(Lines, NormalStart,
                         testing::Values(Line{"NoArgument", {}}, Line{"EmptyArgument", {""}},
                                         Line{"UnknownCommand", {"--unknown"}},
                                         Line{"Path", {"photo.xisf"}},
                                         Line{"TooFewArguments", {"--selftest-imageload"}},
                                         Line{"OtherCase", {"--Selftest-Depthres"}},
                                         Line{"LongerName", {"--selftest-depthres2"}},
                                         Line{"NotFirst", {"photo.xisf", "--selftest-depthres"}}),
                         [](const testing::TestParamInfo<Line>& line) {
                             return std::string(line.param.name);
                         });

TEST(Commands, TheArgumentsReachTheCommandAndItsVerdictComesBack)
{
    const auto file = zrtest::scratchFolder() / "params.txt";
    const QStringList line{"zerrith-studio", "--selftest-ranges",
                           QString::fromStdString(file.string())};
    const auto verdictOn = [&](const std::string& text) {
        zrtest::writeBytes(file, {text.begin(), text.end()});
        return runCommand(line);
    };
    EXPECT_EQ(verdictOn("convergence=0.25\nunknownKey=kept\n"), 0);
    EXPECT_EQ(verdictOn("convergence=1.25\n"), 1);
    EXPECT_EQ(runCommand(line + QStringList("one more")), 1); // more arguments are no hindrance
}

TEST(AppIcon, HasAPictureOfItsOwnInEverySize)
{
    const QIcon icon = appIcon();
    for (const int side : {16, 24, 32, 48, 64, 128, 256}) {
        const QImage picture = icon.pixmap(QSize(side, side)).toImage();
        ASSERT_EQ(picture.size(), QSize(side, side));
        EXPECT_EQ(qAlpha(picture.pixel(0, 0)), 0) << side; // transparent around the drawing
        EXPECT_EQ(qAlpha(picture.pixel(side / 2, side / 2)), 255) << side;
    }
}
