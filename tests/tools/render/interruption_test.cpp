#include <clocale>
#include <csignal>
#include <filesystem>

#include <gmock/gmock.h>

#include "app/export/still_file.h"
#include "tests/support/testkit.h"
#include "tests/tools/render/folder_listing.h"
#include "tests/tools/render/spawn.h"

namespace fs = std::filesystem;

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using zrtest::Ended;
using zrtest::listing;

/// The program itself, as a process of its own.
class ProgramFile : public testing::Test
{
protected:
    void SetUp() override
    {
        folder = zrtest::scratchFolder() / "process";
        fs::remove_all(folder);
        fs::create_directories(folder);
        ASSERT_TRUE(writeStill(QString::fromStdString(at("in.png")), zrtest::noise(300, 200, 1, 2),
                               {8}, nullptr));
    }

    std::string at(const char* name) const { return (folder / name).string(); }

    static Ended start(const std::vector<std::string>& arguments,
                       const std::vector<std::string>& environment = {},
                       const std::function<void(int, const std::string&)>& onLine = {})
    {
        return zrtest::runProgramFile(ZR_RENDER_PROGRAM, arguments, environment, onLine);
    }

    fs::path folder;
};

TEST_F(ProgramFile, InterruptedWiggleLeavesNothingBehind)
{
    int sent = 0;
    for (const int lines : {1, 2, 5, 12, 30}) { // while reading, in the depth map, between frames
        for (const int signal : {SIGINT, SIGTERM}) {
            int seen = 0;
            const Ended ended = start({"wiggle", at("in.png"), "-o", at("a/frames"), "--set",
                                       "wiggleFrames=120", "--set", "smoothness=50", "--json"},
                                      {}, [&](int pid, const std::string&) {
                                          if (++seen == lines)
                                              kill(pid, signal);
                                      });
            EXPECT_EQ(ended.code, 130) << lines << ended.errors;
            EXPECT_EQ(ended.errors, "zerrith-render: interrupted\n");
            EXPECT_THAT(listing(folder), ElementsAre("in.png")) << lines;
            ++sent;
        }
    }
    EXPECT_EQ(sent, 10);
}

TEST_F(ProgramFile, InterruptedStillKeepsTheOldPictureWhole)
{
    for (const char* stage : {"Loading", "Rendering", "Writing"}) {
        zrtest::writeBytes(at("o.png"), {'o', 'l', 'd'});
        const Ended ended = start({"still", at("in.png"), "-o", at("o.png"), "--json"}, {},
                                  [&](int pid, const std::string& line) {
                                      if (line.find(stage) != std::string::npos)
                                          kill(pid, SIGINT);
                                  });
        EXPECT_THAT(listing(folder), ElementsAre("in.png", "o.png")) << stage;
        if (ended.code == 0) // it was faster than the signal
            continue;
        EXPECT_EQ(ended.code, 130) << stage;
        EXPECT_EQ(zrtest::readBytes(at("o.png")).size(), 3u) << stage;
    }
}

TEST_F(ProgramFile, ExitCodesReachTheShell)
{
    EXPECT_EQ(start({"--version"}).code, 0);
    EXPECT_EQ(start({"info", at("absent.png")}).code, 1);
    const Ended usage = start({"stil"});
    EXPECT_EQ(usage.code, 2);
    EXPECT_THAT(usage.errors, HasSubstr("still"));
    EXPECT_EQ(usage.output, "");
}

TEST_F(ProgramFile, NeedsNoDisplayWhateverTheDesktopAsksFor)
{
    const Ended ended = start({"info", at("in.png")}, {"QT_QPA_PLATFORM=xcb", "DISPLAY=:77",
                                                       "WAYLAND_DISPLAY=none", "XDG_RUNTIME_DIR="});
    EXPECT_EQ(ended.code, 0);
    EXPECT_EQ(ended.errors, "");
}

TEST_F(ProgramFile, TellsOfAnOutputThatIsFull)
{
    const Ended ended = zrtest::runProgramFile(
        "/bin/sh", {"-c", std::string(ZR_RENDER_PROGRAM) + " params > /dev/full"});
    EXPECT_EQ(ended.code, 1);
    EXPECT_THAT(ended.errors, HasSubstr("standard output"));
}

TEST_F(ProgramFile, CanBeInterruptedThoughStartedWithoutAnOutput)
{
    // What is printed must not reach a descriptor of the program's own that took the free number.
    const std::string script = std::string(ZR_RENDER_PROGRAM) + " wiggle " + at("in.png") +
                               " -o a --set wiggleFrames=120 --json >&- & p=$!\n"
                               "while kill -0 $p && [ -z \"$(ls -A a 2>/dev/null)\" ]; do :; done\n"
                               "kill -TERM $p; wait $p; echo $?";
    const Ended ended =
        zrtest::runProgramFile("/bin/sh", {"-c", "cd " + folder.string() + "\n" + script});
    EXPECT_EQ(ended.output, "130\n") << ended.errors;
    EXPECT_THAT(listing(folder), ElementsAre("in.png"));
}

/// A folder with a locale whose decimals are commas, made where the system has none; empty when
/// that cannot be done.
std::string commaLocales(const fs::path& folder)
{
    if (!fs::exists("/usr/bin/localedef") || !fs::exists("/usr/share/i18n/locales/de_DE"))
        return {};
    fs::create_directories(folder);
    zrtest::runProgramFile("/usr/bin/localedef", {"-i", "de_DE", "-f", "UTF-8", "--no-archive",
                                                  (folder / "de_DE.UTF-8").string()});
    return fs::exists(folder / "de_DE.UTF-8" / "LC_NUMERIC") ? folder.string() : std::string();
}

TEST_F(ProgramFile, GivesTheSameBytesUnderACommaLocale)
{
    const std::string locales = commaLocales(zrtest::scratchFolder() / "locales");
    if (locales.empty())
        GTEST_SKIP() << "no comma locale here and none can be made";
    std::vector<std::string> texts[2];
    std::vector<std::uint8_t> pictures[2];
    const std::vector<std::string> environments[2] = {
        {"LC_ALL=C.UTF-8"}, {"LC_ALL=de_DE.UTF-8", "LANG=de_DE.UTF-8", "LOCPATH=" + locales}};
    for (int i = 0; i < 2; ++i) {
        const auto answer = [&](const std::vector<std::string>& arguments) {
            const Ended ended = start(arguments, environments[i]);
            EXPECT_EQ(ended.code, 0) << ended.errors;
            texts[i].push_back(ended.output);
        };
        answer({"params"});
        answer({"params", "--text"});
        answer({"demo-scene", "-o", at("s.xisf"), "--size", "64x48", "-q"});
        answer({"info", at("s.xisf")});
        answer({"info", at("s.xisf"), "--json"});
        answer({"still", at("s.xisf"), "-o", at("o.fits"), "--set", "depthGamma=1.25", "-q"});
        pictures[i] = zrtest::readBytes(at("o.fits"));
    }
    EXPECT_EQ(texts[0], texts[1]);
    EXPECT_EQ(pictures[0], pictures[1]);
}

} // namespace
