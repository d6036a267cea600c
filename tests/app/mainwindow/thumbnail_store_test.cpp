#include "app/mainwindow/thumbnail_store.h"

#include <QDateTime>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "tests/support/testkit.h"

namespace {

struct Thumbnails : testing::Test
{
    QTemporaryDir folder;
    ThumbnailStore store{folder.filePath("deeper/thumbnails")};

    QString touched(const QString& name) const
    {
        QFile file(folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        return file.fileName();
    }
};

} // namespace

TEST_F(Thumbnails, PicturesKeepTheProportionsAndNeverGrow)
{
    struct Case
    {
        int width, height;
        QSize small;
    };
    const Case cases[] = {
        {1560, 520, {312, 104}}, {520, 1040, {104, 208}}, {20, 10, {20, 10}}, {3000, 2, {312, 1}}};
    const QString path = touched("a.png");
    for (const Case& c : cases) {
        store.add(path, zrtest::noise(c.width, c.height, 1, 1));
        EXPECT_EQ(store.find(path).size(), c.small) << c.width;
    }
}

TEST_F(Thumbnails, APictureOfWhatTheFileOnceWasIsNotShown)
{
    const QString path = touched("changing.png");
    store.add(path, zrtest::noise(8, 8, 1, 1));
    ASSERT_FALSE(store.find(path).isNull());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(file.setFileTime(QDateTime::fromMSecsSinceEpoch(1000000000),
                                 QFileDevice::FileModificationTime));
    file.close();
    EXPECT_TRUE(store.find(path).isNull());
    EXPECT_TRUE(store.find(touched("never.png")).isNull());
}

TEST_F(Thumbnails, OnlyTheFilesNamedKeepTheirPictures)
{
    const QString kept = touched("kept.png");
    const QString dropped = touched("dropped.png");
    for (const QString& path : {kept, dropped})
        store.add(path, zrtest::noise(8, 8, 1, 1));
    store.keepOnly({kept});
    EXPECT_FALSE(store.find(kept).isNull());
    EXPECT_TRUE(store.find(dropped).isNull());
}

TEST_F(Thumbnails, AFolderThatCannotBeMadeIsNoTrouble)
{
    const QString file = touched("file");
    const ThumbnailStore nowhere(file + "/folder");
    nowhere.add(touched("b.png"), zrtest::noise(8, 8, 1, 1));
    EXPECT_TRUE(nowhere.find(touched("b.png")).isNull());
    nowhere.keepOnly({});
}
