#include <csignal>
#include <filesystem>
#include <fstream>
#include <thread>

#include <gmock/gmock.h>

#include "app/export/still_file.h"
#include "tests/support/testkit.h"
#include "tests/tools/render/folder_listing.h"
#include "tests/tools/render/spawn.h"

namespace fs = std::filesystem;

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using zrtest::Ended;
using zrtest::listing;

std::string textOf(const fs::path& file)
{
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

/// Motions made by the program as a process of its own, which finds the ffmpeg it is given.
class MotionFaults : public testing::Test
{
protected:
    void SetUp() override
    {
        const std::string name = testing::UnitTest::GetInstance()->current_test_info()->name();
        root = zrtest::scratchFolder() / ("motion_" + name);
        fs::remove_all(root);
        folder = root / "work";
        fs::create_directories(folder);
        fs::create_directories(root / "bin");
        ASSERT_TRUE(writeStill(QString::fromStdString(at("in.png")), zrtest::noise(96, 64, 1, 2),
                               {8}, nullptr));
    }

    std::string at(const std::string& name) const { return (folder / name).string(); }

    /// A stand-in for ffmpeg; it notes its process id.
    void encoder(const std::string& body)
    {
        const fs::path path = root / "bin" / "ffmpeg";
        std::ofstream(path) << "#!/bin/sh\nPATH=/usr/bin:/bin\necho $$ >" << (root / "pid").string()
                            << '\n'
                            << body << '\n';
        fs::permissions(path, fs::perms::owner_all);
    }

    Ended motion(const std::string& output, const std::vector<std::string>& further,
                 const std::function<void(int, const std::string&)>& onLine = {})
    {
        std::vector<std::string> arguments{"motion", at("in.png"), "--wiggle", "-o", at(output)};
        arguments.insert(arguments.end(), further.begin(), further.end());
        return zrtest::runProgramFile(ZR_RENDER_PROGRAM, arguments,
                                      {"PATH=" + (root / "bin").string(), "HOME=" + root.string(),
                                       "XDG_CONFIG_HOME=" + root.string()},
                                      onLine);
    }

    /// Whether the process that the stand-in noted is gone, a moment allowed.
    bool encoderIsGone() const
    {
        const int pid = std::atoi(textOf(root / "pid").c_str());
        for (int i = 0; pid > 0 && i < 200; ++i) {
            if (kill(pid, 0) != 0)
                return true;
            const std::string status = textOf("/proc/" + std::to_string(pid) + "/stat");
            if (status.find(") Z ") != std::string::npos)
                return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        return pid <= 0;
    }

    fs::path root;
    fs::path folder;
};

TEST_F(MotionFaults, AGifHasItsFramesAndItsRate)
{
    if (!fs::exists("/usr/bin/ffmpeg") || !fs::exists("/usr/bin/ffprobe"))
        GTEST_SKIP() << "ffmpeg is not installed";
    fs::create_symlink("/usr/bin/ffmpeg", root / "bin" / "ffmpeg");
    const Ended ended = motion("o.gif", {"--set", "wiggleFrames=6", "--fps", "10", "--stereo",
                                         "anaglyph", "--size", "48x48"});
    ASSERT_EQ(ended.code, 0) << ended.errors;
    EXPECT_THAT(listing(folder), ElementsAre("in.png", "o.gif"));
    const Ended shape = zrtest::runProgramFile(
        "/usr/bin/ffprobe", {"-v", "error", "-count_frames", "-show_entries",
                             "stream=codec_name,width,height,r_frame_rate,nb_read_frames", "-of",
                             "csv=p=0", at("o.gif")});
    EXPECT_EQ(shape.output, "gif,48,48,10/1,6\n");
}

TEST_F(MotionFaults, WhateverBecomesOfTheEncoderTheOldFileStays)
{
    const struct
    {
        const char* body; ///< none: there is no ffmpeg
        const char* words;
    } cases[] = {
        {nullptr, "ffmpeg was not found: install it, or name a folder to get the frames"},
        {"echo 'Unknown encoder libx264'; exit 1", "Unknown encoder libx264"},
        {"head -c 20000 >/dev/null; echo 'cannot go on' >&2; exit 7", "code 7"},
        {"kill -SEGV $$", "ffmpeg"},
        {"cat >/dev/null", "ended before the last frame"},
        {"for last; do :; done; cat >\"$last\"; echo \"$last: bad\"; exit 3", "o.mp4: bad"},
    };
    zrtest::writeBytes(at("o.mp4"), {'o', 'l', 'd'});
    for (const auto& c : cases) {
        if (c.body)
            encoder(c.body);
        const Ended ended = motion("o.mp4", {"--set", "wiggleFrames=8"});
        EXPECT_EQ(ended.code, 1) << c.words;
        EXPECT_THAT(ended.errors, HasSubstr(c.words));
        EXPECT_THAT(ended.errors, Not(HasSubstr(".zr"))) << "nobody knows the hidden names";
        EXPECT_THAT(listing(folder), ElementsAre("in.png", "o.mp4")) << c.words;
        EXPECT_EQ(textOf(at("o.mp4")), "old");
    }
}

TEST_F(MotionFaults, AFullDiskEndsTheRunWithoutAHalfFile)
{
    // No file may grow beyond 4 KB; what a full disk says comes as another word for the same,
    // and as one of the system's language.
    const auto limited = [&](const std::string& output) {
        return zrtest::runProgramFile(
            "/bin/sh", {"-c", "trap '' XFSZ; ulimit -f 8; export LC_ALL=C.UTF-8; exec " +
                                  std::string(ZR_RENDER_PROGRAM) + " motion " + at("in.png") +
                                  " --wiggle --set wiggleFrames=40 -q -o " + at(output)});
    };
    const bool hasFfmpeg = fs::exists("/usr/bin/ffmpeg");
    for (const char* output : {"frames", "o.mp4", "o.gif"}) {
        if (!hasFfmpeg && output != std::string("frames"))
            continue;
        const Ended ended = limited(output);
        EXPECT_EQ(ended.code, 1) << output;
        EXPECT_THAT(ended.errors, HasSubstr("File too large")) << output;
        EXPECT_LT(ended.errors.size(), 600u) << ended.errors;
        EXPECT_THAT(listing(folder), ElementsAre("in.png")) << output;
    }
}

TEST_F(MotionFaults, AnInterruptEndsEveryStageAndTheEncoderToo)
{
    const struct
    {
        const char* body;
        const char* line; ///< what is printed when the signal comes
    } cases[] = {
        {"cat >/dev/null", "Loading"},
        {"cat >/dev/null", "depth"},
        {"exec sleep 60", "Rendering frame"},
        {"cat >/dev/null; exec sleep 60", "Rendering frame 40 of 120"},
        {"cat >/dev/null; exec sleep 60", "Rendering frame 120 of 120"}, // and the end is awaited
    };
    zrtest::writeBytes(at("o.mp4"), {'o', 'l', 'd'});
    for (const auto& c : cases) {
        fs::remove(root / "pid");
        encoder(c.body);
        bool isSent = false;
        const Ended ended = motion("o.mp4", {"--set", "wiggleFrames=120", "--json"},
                                   [&](int pid, const std::string& line) {
                                       if (!isSent && line.find(c.line) != std::string::npos)
                                           isSent = kill(pid, SIGINT) == 0;
                                   });
        EXPECT_TRUE(isSent) << c.line;
        EXPECT_EQ(ended.code, 130) << c.line << ended.errors;
        EXPECT_TRUE(encoderIsGone()) << c.line;
        EXPECT_THAT(listing(folder), ElementsAre("in.png", "o.mp4")) << c.line;
        EXPECT_EQ(textOf(at("o.mp4")), "old");
    }
}

TEST_F(MotionFaults, AKilledRunIsResumedFromTheFramesItMade)
{
    const std::vector<std::string> options{"--set", "wiggleFrames=120", "--json"};
    ASSERT_EQ(motion("whole", options).code, 0);
    const Ended killed = motion("parts", options, [](int pid, const std::string& line) {
        if (line.find("Rendering frame ") != std::string::npos)
            kill(pid, SIGKILL);
    });
    ASSERT_EQ(killed.code, 1000 + SIGKILL) << "too fast for the signal";
    EXPECT_EQ(motion("parts", options).code, 1) << "not without being told to";
    std::vector<std::string> again = options;
    again.push_back("--resume");
    const Ended resumed = motion("parts", again);
    ASSERT_EQ(resumed.code, 0) << resumed.errors;
    for (const std::string& name : listing(at("parts"))) // a kill leaves no time to clean up
        EXPECT_TRUE(name.starts_with(".zerrith-render-") || fs::exists(at("whole/" + name)));
    for (const auto& entry : fs::directory_iterator(at("whole")))
        EXPECT_EQ(textOf(entry.path()), textOf(fs::path(at("parts")) / entry.path().filename()));
}

} // namespace
