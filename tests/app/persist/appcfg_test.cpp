#include "app/persist/appcfg.h"

#include <limits>
#include <set>
#include <thread>

#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

#include "tests/app/private_settings.h"

namespace {

class Appcfg : public testing::Test
{
protected:
    static void write(const QString& path, const QByteArray& bytes)
    {
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    }

    PrivateSettings m_private;
};

/// What the row promises, told apart from how the store reads it.
bool allowed(const appcfg::Row& row, const QVariant& value)
{
    switch (row.kind) {
    case appcfg::Kind::Flag:
        return value.typeId() == QMetaType::Bool;
    case appcfg::Kind::Whole:
        return value.typeId() == QMetaType::Int && value.toInt() >= row.min &&
               value.toInt() <= row.max;
    case appcfg::Kind::WholeOrAutomatic:
        return value.typeId() == QMetaType::Int &&
               (value.toInt() == 0 || (value.toInt() >= row.min && value.toInt() <= row.max));
    case appcfg::Kind::Real:
        return value.typeId() == QMetaType::Double && value.toDouble() >= row.min &&
               value.toDouble() <= row.max;
    case appcfg::Kind::Text:
        return value.typeId() == QMetaType::QString;
    case appcfg::Kind::Colour:
        return value.toString().isEmpty() ||
               (value.toString().size() == 7 && value.toString().startsWith('#'));
    case appcfg::Kind::Bytes:
        return value.typeId() == QMetaType::QByteArray && value.toByteArray().size() <= row.max;
    case appcfg::Kind::List:
        return value.typeId() == QMetaType::QStringList && value.toStringList().size() <= row.max &&
               !value.toStringList().contains(QString());
    }
    return false;
}

QVariant initialOf(const appcfg::Row& row)
{
    switch (row.kind) {
    case appcfg::Kind::Flag:
        return row.initial != 0.0;
    case appcfg::Kind::Whole:
    case appcfg::Kind::WholeOrAutomatic:
        return static_cast<int>(row.initial);
    case appcfg::Kind::Real:
        return row.initial;
    default:
        return {};
    }
}

bool isNumeric(const appcfg::Row& row)
{
    return initialOf(row).isValid();
}

} // namespace

TEST_F(Appcfg, EveryKeyIsOfOneSettingAlone)
{
    std::set<QString> keys;
    for (const appcfg::Row& row : appcfg::allSettings())
        EXPECT_TRUE(keys.insert(row.key).second) << row.key;
}

TEST_F(Appcfg, AnEmptyStoreReadsAsTheInitialValues)
{
    for (const appcfg::Row& row : appcfg::allSettings()) {
        const QVariant value = appcfg::stored(row);
        EXPECT_TRUE(allowed(row, value)) << row.key;
        if (isNumeric(row))
            EXPECT_EQ(value, initialOf(row)) << row.key;
        else
            EXPECT_TRUE(value.toStringList().join("").isEmpty()) << row.key;
    }
}

// A number far outside must not come back as one inside by wrapping around, and text that is no
// number must not read as 0 where 0 means something.
TEST_F(Appcfg, GarbageInTheStoreReadsAsAValueThatTheRowAllows)
{
    const QByteArray garbage[] = {"",
                                  "abc",
                                  "999999999999999",
                                  "-99999999999999999999999",
                                  "-1",
                                  "1e999",
                                  "nan",
                                  "inf",
                                  "30.7",
                                  "12abc",
                                  "0x10",
                                  "TRUE",
                                  "maybe",
                                  "a, b, c",
                                  ",,,",
                                  "@Invalid()",
                                  "@ByteArray(\\x1\\x2\\xff)",
                                  "@Rect(1 2 3 4)",
                                  "@Variant(\\0\\0\\0\\x6\\x40)",
                                  "#12345g",
                                  "#123456\\n",
                                  QByteArray(200000, '7'),
                                  "\"unfinished"};
    for (const QByteArray& text : garbage) {
        const PrivateSettings each;
        QByteArray file = "[General]\n";
        for (const appcfg::Row& row : appcfg::allSettings())
            if (!QByteArray(row.key).contains('/'))
                file += QByteArray(row.key) + "=" + text + "\n";
        for (const appcfg::Row& row : appcfg::allSettings())
            if (const int cut = int(QByteArray(row.key).indexOf('/')); cut > 0)
                file += "[" + QByteArray(row.key).left(cut) + "]\n" +
                        QByteArray(row.key).mid(cut + 1).replace('/', '\\') + "=" + text + "\n";
        write(each.storeFile(), file);
        for (const appcfg::Row& row : appcfg::allSettings())
            EXPECT_TRUE(allowed(row, appcfg::stored(row)))
                << row.key << " = " << text.left(30).toStdString();
    }
}

TEST_F(Appcfg, AWordReadsAsTheInitialNumberAndNotAsZero)
{
    write(m_private.storeFile(), "[autosave]\nminutes=often\nenabled=perhaps\n"
                                 "[view]\nanaglyphBalance=3\nanaglyphCyanHue=-0.25\n");
    EXPECT_EQ(appcfg::autosaveMinutes(), 10);
    EXPECT_TRUE(appcfg::autosaveEnabled());
    EXPECT_EQ(appcfg::anaglyphBalance(), 0.0);
    EXPECT_EQ(appcfg::anaglyphCyanHue(), -0.25);
}

TEST_F(Appcfg, EverySettingComesBackAsItWasStored)
{
    for (const appcfg::Row& row : appcfg::allSettings()) {
        QVariant value;
        if (row.kind == appcfg::Kind::Flag)
            value = row.initial == 0.0;
        else if (row.kind == appcfg::Kind::Real)
            value = 0.1 + 0.2;
        else if (isNumeric(row))
            value = static_cast<int>(row.max) - 1;
        else if (row.kind == appcfg::Kind::Text)
            value = QString("/home/user/M 42, \u00e4\u661f; \"=%.tif");
        else if (row.kind == appcfg::Kind::Colour)
            value = QString("#12aBcD");
        else if (row.kind == appcfg::Kind::Bytes)
            value = QByteArray("\0\1\377state", 8);
        else
            value = QStringList{"/a, b | c.tif", "/d.tif"};
        appcfg::store(row, value);
        EXPECT_EQ(appcfg::stored(row), value) << row.key;
    }
}

TEST_F(Appcfg, NumbersAreBoundWhenTheyAreStored)
{
    for (const appcfg::Row& row : appcfg::allSettings()) {
        if (row.kind == appcfg::Kind::Flag || !isNumeric(row))
            continue;
        const QSettings store("Corvelle Works", "Zerrith Studio");
        appcfg::store(row, row.max + 1);
        EXPECT_EQ(store.value(row.key).toDouble(), row.max) << row.key;
        appcfg::store(row, row.min - 5);
        EXPECT_EQ(store.value(row.key).toDouble(), row.min) << row.key;
    }
    appcfg::setFlybyPreviewScalePercent(0);
    EXPECT_EQ(appcfg::flybyPreviewScalePercent(), 0);
    appcfg::setAnaglyphBalance(std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(appcfg::anaglyphBalance(), 0.0);
}

TEST_F(Appcfg, TheInstallIdIsMadeOnceAndAgainOnlyInPlaceOfGarbage)
{
    const QString made = appcfg::updateInstallId();
    EXPECT_EQ(made.size(), 36);
    EXPECT_EQ(appcfg::updateInstallId(), made);
    appcfg::store(appcfg::kSettings.updateInstallId, "somebody");
    EXPECT_NE(appcfg::updateInstallId(), "somebody");
}

TEST_F(Appcfg, AStoreThatCannotBeWrittenIsNoHindrance)
{
    appcfg::useStoreIn("/dev/null/none");
    appcfg::setAutosaveMinutes(600);
    EXPECT_TRUE(appcfg::autosaveMinutes() == 60 || appcfg::autosaveMinutes() == 10);
    EXPECT_EQ(appcfg::updateInstallId().size(), 36);
    EXPECT_EQ(appcfg::exportChoices(), appcfg::ExportChoices());
}

TEST_F(Appcfg, GettersMayBeAskedFromManyThreads)
{
    appcfg::setAutosaveMinutes(17);
    std::vector<std::thread> readers;
    std::vector<int> wrong(4);
    for (int& count : wrong)
        readers.emplace_back([&count] {
            for (int i = 0; i < 25; ++i) {
                count += appcfg::autosaveMinutes() != 17;
                appcfg::setAnaglyphBalance(0.5);
            }
        });
    for (std::thread& reader : readers)
        reader.join();
    EXPECT_EQ(wrong, std::vector<int>(4, 0));
}

TEST_F(Appcfg, ThePathOfAProgramThatIsGoneFallsBackToTheSearchPath)
{
    const QByteArray before = qgetenv("PATH");
    const QString found = m_private.path("bin/ffmpeg");
    write(found, "#!/bin/sh\n");
    QFile::setPermissions(found, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    qputenv("PATH", m_private.path("bin").toLocal8Bit());
    const QString own = m_private.path("my-ffmpeg");
    write(own, "x");

    appcfg::setFfmpegConfigured(own);
    EXPECT_EQ(appcfg::ffmpegResolved(), own);
    QFile::remove(own);
    EXPECT_EQ(appcfg::ffmpegResolved(), found);
    appcfg::setFfmpegConfigured(m_private.path("bin")); // a folder is no program
    EXPECT_EQ(appcfg::ffmpegResolved(), found);
    QFile::remove(found);
    EXPECT_FALSE(appcfg::ffmpegAvailable());
    qputenv("PATH", before);
}

TEST_F(Appcfg, TheSolvingCatalogFallsBackToTheDepthCatalog)
{
    const QString gaia = m_private.path("gaia.cat");
    const QString solve = m_private.path("solve.cat");
    write(gaia, "x");
    write(solve, "x");
    appcfg::setGaiaCatalogConfigured(gaia);
    appcfg::setSolveCatalogConfigured(solve);
    EXPECT_EQ(appcfg::solveCatalogResolved(), solve);
    QFile::remove(solve);
    EXPECT_EQ(appcfg::solveCatalogResolved(), gaia);
    QFile::remove(gaia);
    EXPECT_EQ(appcfg::solveCatalogResolved(), appcfg::gaiaCatalogDefault());
}

TEST_F(Appcfg, TheTintDimsOneLensByWhatItGivesTheOther)
{
    double r = 0.0;
    double g = 0.0;
    double b = 0.0;
    appcfg::anaglyphTrim(r, g, b);
    EXPECT_EQ(std::vector({r, g, b}), std::vector(3, 1.0));
    appcfg::setAnaglyphBalance(1.0);
    appcfg::setAnaglyphCyanHue(-1.0);
    appcfg::anaglyphTrim(r, g, b);
    EXPECT_DOUBLE_EQ(r, 0.7);
    EXPECT_DOUBLE_EQ(g, 1.28 * 1.3);
    EXPECT_DOUBLE_EQ(b, 0.72 * 1.3);
}

TEST_F(Appcfg, AFileDialogOpensWhereThereIsStillAFolder)
{
    using appcfg::Preferred;
    const QString key = appcfg::kSettings.imageDialog.key;
    const QString work = m_private.path("work");
    const QString used = m_private.path("used");
    EXPECT_EQ(appcfg::dialogStartPath(key, "a.png", Preferred::WorkFolder), "a.png");
    QDir().mkpath(work);
    QDir().mkpath(used);
    appcfg::rememberDialogPath(key, used + "/gone.tif");
    EXPECT_EQ(appcfg::dialogStartPath(key, "a.png", Preferred::WorkFolder), used + "/a.png");
    appcfg::setDefaultWorkFolder(work);
    EXPECT_EQ(appcfg::dialogStartPath(key, "a.png", Preferred::WorkFolder), work + "/a.png");
    EXPECT_EQ(appcfg::dialogStartPath(key, "", Preferred::LastUsed), used);
    QDir().rmdir(used);
    EXPECT_EQ(appcfg::dialogStartPath(key, "a.png", Preferred::LastUsed), work + "/a.png");
}
