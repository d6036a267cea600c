#include "app/persist/recent_files.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

#include "tests/app/private_settings.h"

using appcfg::RecentCategory;

namespace {

struct Recent : testing::Test
{
    PrivateSettings own;

    QString touch(const QString& name) const
    {
        const QString path = own.path(name);
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        return path;
    }
    static void storeOldList(const QStringList& entries)
    {
        QSettings("Corvelle Works", "Zerrith Studio").setValue("recentFiles", entries);
    }
};

} // namespace

TEST_F(Recent, AFilePushedAgainMovesUpUnderWhateverNameItIsGiven)
{
    for (const char* path : {"/p/a.tif", "/p/b.tif", "/p/c.tif", "/p/x/../a.tif"})
        recent::pushFile(RecentCategory::Images, path);
    EXPECT_EQ(recent::entries(RecentCategory::Images),
              QStringList({"/p/a.tif", "/p/c.tif", "/p/b.tif"}));
    recent::forget(RecentCategory::Images, "/p/c.tif");
    EXPECT_EQ(recent::entries(RecentCategory::Images), QStringList({"/p/a.tif", "/p/b.tif"}));
}

TEST_F(Recent, TheTwentyFirstEntryDropsTheOldest)
{
    for (int i = 0; i < 21; ++i)
        recent::pushFile(RecentCategory::DepthMaps, QString("/d/%1.tif").arg(i));
    const QStringList kept = recent::entries(RecentCategory::DepthMaps);
    EXPECT_EQ(kept.size(), 20);
    EXPECT_EQ(kept.first(), "/d/20.tif");
    EXPECT_EQ(kept.last(), "/d/1.tif");
    EXPECT_TRUE(recent::entries(RecentCategory::Images).isEmpty());
}

TEST_F(Recent, APairSplitsWhereBothSidesAreFiles)
{
    const QString names[] = {"plain.tif", "a | b.tif", "x | y/deep.tif", " | .tif"};
    for (const QString& stars : names)
        for (const QString& starless : names) {
            const recent::Pair pair{touch("stars/" + stars), touch("less/" + starless)};
            recent::pushPair(pair);
            const std::optional<recent::Pair> back =
                recent::splitPair(recent::entries(RecentCategory::Pairs).first());
            ASSERT_TRUE(back);
            EXPECT_EQ(back->stars, pair.stars);
            EXPECT_EQ(back->starless, pair.starless);
        }
}

TEST_F(Recent, APairWhoseFilesAreGoneSplitsAtTheLastPlaceWithTwoNames)
{
    struct Case
    {
        const char* entry;
        const char* stars;
        const char* starless;
    };
    const Case cases[] = {
        {"/gone/s.tif | /gone/l.tif", "/gone/s.tif", "/gone/l.tif"},
        {"/gone | away/s.tif | /gone/l.tif", "/gone | away/s.tif", "/gone/l.tif"},
        {"/gone/s.tif | /gone/l.tif | ", "/gone/s.tif", "/gone/l.tif | "},
    };
    for (const Case& c : cases) {
        const std::optional<recent::Pair> pair = recent::splitPair(c.entry);
        ASSERT_TRUE(pair) << c.entry;
        EXPECT_EQ(pair->stars, c.stars);
        EXPECT_EQ(pair->starless, c.starless);
    }
    for (const char* none : {"", " | ", "/a.tif", "/a.tif | ", " | /a.tif", "/a.tif|/b.tif"})
        EXPECT_FALSE(recent::splitPair(none)) << none;
}

TEST_F(Recent, TheOldListIsFiledBelowWhatStandsAndOnlyOnce)
{
    recent::pushFile(RecentCategory::Images, "/new.tif");
    storeOldList({"/b.TIF", "/p.zrproj", "/s.zrsc", "/s.txt", "/new.tif", "/s.tif | /l.tif",
                  "/what.doc", "/c.zrcol", "/a.xisf"});
    recent::migrateOldList();
    EXPECT_EQ(recent::entries(RecentCategory::Images),
              QStringList({"/new.tif", "/b.TIF", "/a.xisf"}));
    EXPECT_EQ(recent::entries(RecentCategory::Projects), QStringList("/p.zrproj"));
    EXPECT_EQ(recent::entries(RecentCategory::Scripts), QStringList({"/s.zrsc", "/s.txt"}));
    EXPECT_EQ(recent::entries(RecentCategory::Pairs), QStringList("/s.tif | /l.tif"));
    EXPECT_EQ(recent::entries(RecentCategory::ColorDepth), QStringList("/c.zrcol"));
    EXPECT_TRUE(recent::entries(RecentCategory::DepthMaps).isEmpty());

    recent::clearAll();
    recent::migrateOldList();
    EXPECT_TRUE(recent::entries(RecentCategory::Images).isEmpty());
}
