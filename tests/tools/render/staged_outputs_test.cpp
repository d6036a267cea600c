#include "tools/render/staged_outputs.h"

#include <atomic>
#include <fstream>
#include <thread>

#include <gmock/gmock.h>

#include "tests/support/testkit.h"
#include "tests/tools/render/folder_listing.h"

namespace fs = std::filesystem;

namespace zrrender {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using zrtest::listing;

class Staging : public testing::Test
{
protected:
    void SetUp() override
    {
        folder = zrtest::scratchFolder() / "staging";
        fs::remove_all(folder);
        fs::create_directories(folder);
    }

    QString at(const char* name) const { return QString::fromStdString((folder / name).string()); }

    static void write(const fs::path& path, const char* text) { std::ofstream(path) << text; }
    static std::string read(const fs::path& path)
    {
        const auto bytes = zrtest::readBytes(path);
        return {bytes.begin(), bytes.end()};
    }

    void writeStaged(StagedOutputs& outputs, const char* name, const char* text) const
    {
        QString error;
        const auto staged = outputs.stage(at(name), &error);
        ASSERT_TRUE(staged) << error.toStdString();
        write(staged->toStdString(), text);
    }

    fs::path folder;
};

TEST_F(Staging, CommitPutsEveryFileInPlaceAndNothingElse)
{
    StagedOutputs outputs;
    ASSERT_TRUE(outputs.makeFolder(at("a/b"), nullptr));
    write(folder / "old.txt", "old");
    writeStaged(outputs, "old.txt", "new");
    writeStaged(outputs, "a/b/deep.txt", "deep");
    EXPECT_EQ(read(folder / "old.txt"), "old");
    ASSERT_TRUE(outputs.commit(nullptr));
    EXPECT_THAT(listing(folder), ElementsAre("a", "a/b", "a/b/deep.txt", "old.txt"));
    EXPECT_EQ(read(folder / "old.txt"), "new");
}

TEST_F(Staging, AbandoningLeavesTheFoldersAsTheyWere)
{
    write(folder / "old.txt", "old");
    {
        StagedOutputs outputs;
        ASSERT_TRUE(outputs.makeFolder(at("a/b/"), nullptr));
        writeStaged(outputs, "old.txt", "new");
        writeStaged(outputs, "a/b/deep.txt", "deep");
        EXPECT_TRUE(outputs.abandon());
        EXPECT_FALSE(outputs.stage(at("late.txt"), nullptr));
        EXPECT_FALSE(outputs.commit(nullptr)); // what is gone is not reported as written
        EXPECT_FALSE(outputs.abandon());
    }
    EXPECT_THAT(listing(folder), ElementsAre("old.txt"));
    EXPECT_EQ(read(folder / "old.txt"), "old");
}

TEST_F(Staging, AbandoningHoldsAgainstAWriterThatGoesOn)
{
    StagedOutputs outputs;
    const auto staged = outputs.stage(at("x.png"), nullptr);
    ASSERT_TRUE(staged);
    const fs::path place = fs::path(staged->toStdString()).parent_path();
    std::atomic<int> written = 0;
    std::atomic<bool> stop = false;
    std::thread writer([&] {
        for (int i = 0; !stop; ++i, ++written)
            write(place / ("temporary" + std::to_string(i)), "x");
    });
    while (written < 50)
        std::this_thread::yield();
    outputs.abandon();
    const int atEnd = written;
    while (written < atEnd + 50)
        std::this_thread::yield();
    stop = true;
    writer.join();
    EXPECT_THAT(listing(folder), IsEmpty());
}

TEST_F(Staging, CommitThatFailsHalfwayTakesItsNewFilesBack)
{
    StagedOutputs outputs;
    writeStaged(outputs, "first.txt", "1");
    writeStaged(outputs, "second.txt", "2");
    fs::create_directory(folder / "second.txt"); // meanwhile, by somebody else
    QString error;
    EXPECT_FALSE(outputs.commit(&error));
    EXPECT_TRUE(error.contains("second.txt")) << error.toStdString();
    outputs.abandon();
    EXPECT_THAT(listing(folder), ElementsAre("second.txt"));
}

TEST_F(Staging, OneFileForTwoOutputsIsRefusedUnderWhateverName)
{
    write(folder / "x.txt", "old");
    fs::create_symlink("x.txt", folder / "link.txt");
    StagedOutputs outputs;
    writeStaged(outputs, "x.txt", "new");
    for (const char* name : {"x.txt", "./x.txt", "link.txt"}) {
        QString error;
        EXPECT_FALSE(outputs.stage(at(name), &error)) << name;
        EXPECT_TRUE(error.contains(name)) << error.toStdString();
    }
    outputs.abandon();
    EXPECT_EQ(read(folder / "x.txt"), "old");
}

TEST_F(Staging, TheSecondOfTwoRunsMixesNothingIntoTheFirst)
{
    StagedOutputs first;
    StagedOutputs second;
    for (StagedOutputs* run : {&first, &second}) {
        ASSERT_TRUE(run->makeFolder(at("frames"), nullptr));
        writeStaged(*run, "frames/0.txt", run == &first ? "first" : "second");
    }
    writeStaged(second, "frames/1.txt", "second");
    ASSERT_TRUE(first.commit(nullptr, StagedOutputs::Existing::Kept));
    QString error;
    EXPECT_FALSE(second.commit(&error, StagedOutputs::Existing::Kept));
    EXPECT_TRUE(error.contains("0.txt")) << error.toStdString();
    second.abandon();
    EXPECT_THAT(listing(folder), ElementsAre("frames", "frames/0.txt"));
    EXPECT_EQ(read(folder / "frames/0.txt"), "first");
}

TEST_F(Staging, FollowsALinkToTheFileItNames)
{
    fs::create_directory(folder / "elsewhere");
    write(folder / "elsewhere" / "real.txt", "old");
    fs::create_symlink("elsewhere/real.txt", folder / "link.txt");
    StagedOutputs outputs;
    writeStaged(outputs, "link.txt", "new");
    ASSERT_TRUE(outputs.commit(nullptr));
    EXPECT_TRUE(fs::is_symlink(folder / "link.txt"));
    EXPECT_EQ(read(folder / "elsewhere" / "real.txt"), "new");
}

TEST_F(Staging, RefusesWhatIsNoFileAndFoldersThatAreNotThere)
{
    StagedOutputs outputs;
    fs::create_directory(folder / "sub.png");
    QString error;
    EXPECT_FALSE(outputs.stage(at("sub.png"), &error));
    EXPECT_TRUE(error.contains("sub.png"));
    EXPECT_FALSE(outputs.stage(at("missing/x.png"), &error));
    EXPECT_TRUE(error.contains("missing"));
    fs::create_symlink("circle.png", folder / "circle.png");
    EXPECT_FALSE(outputs.stage(at("circle.png"), &error));
    EXPECT_TRUE(error.contains("circle.png"));
    EXPECT_THAT(listing(folder), ElementsAre("circle.png", "sub.png"));
    write(folder / "file", "");
    EXPECT_FALSE(outputs.makeFolder(at("file/below"), &error));
    EXPECT_TRUE(error.contains("below"));
}

} // namespace
} // namespace zrrender
