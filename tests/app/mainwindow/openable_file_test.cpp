#include "app/mainwindow/openable_file.h"

#include <gtest/gtest.h>

#include "tests/support/testkit.h"

static QString touched(const std::string& name)
{
    const auto path = zrtest::scratchFolder() / name;
    zrtest::writeBytes(path, {0});
    return QString::fromStdString(path.string());
}

TEST(OpenableFile, OnlyAnExistingFileWithAnImageSuffixCounts)
{
    const QString folder = QString::fromStdString(zrtest::scratchFolder().string());
    std::filesystem::create_directories(zrtest::scratchFolder() / "folder.png");
    EXPECT_TRUE(isOpenableImage(touched("a.XISF")));
    EXPECT_TRUE(isOpenableImage(touched("a b.fits")));
    EXPECT_FALSE(isOpenableImage(touched("notes.txt")));
    EXPECT_FALSE(isOpenableImage(touched("xisf")));
    EXPECT_FALSE(isOpenableImage(folder + "/folder.png"));
    EXPECT_FALSE(isOpenableImage(folder + "/absent.png"));
    EXPECT_FALSE(isOpenableImage(""));
}
