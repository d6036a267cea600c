#include "app/persist/color_profile.h"

#include <cmath>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

struct Profile : testing::Test
{
    QTemporaryDir folder;
    QString path = folder.filePath("rosette.zrcol");

    void write(const QByteArray& bytes) const
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    }
    QByteArray read() const
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
};

zre::ZRParams marked()
{
    zre::ZRParams params;
    params.colorDepthWeight = 0.123456789f;
    params.colorDepthSmoothness = 1.0f / 3.0f;
    params.colorDepthGaussian = 1e-20f;
    params.colorDepthGamma = 1234567.0f;
    params.colorDepthEntries = "1,255,0,0,0.5,0.25;1,0,0,255,1,-1";
    return params;
}

bool sameProfile(const zre::ZRParams& a, const zre::ZRParams& b)
{
    return a.colorDepthWeight == b.colorDepthWeight &&
           a.colorDepthSmoothness == b.colorDepthSmoothness &&
           a.colorDepthGaussian == b.colorDepthGaussian && a.colorDepthGamma == b.colorDepthGamma &&
           a.colorDepthEntries == b.colorDepthEntries;
}

} // namespace

TEST_F(Profile, ComesBackToTheLastBitAndTouchesNothingElse)
{
    QString error;
    ASSERT_TRUE(zrcol::save(path, marked(), &error)) << error.toStdString();
    zre::ZRParams back;
    back.convergence = 0.75f;
    ASSERT_TRUE(zrcol::load(path, back, &error)) << error.toStdString();
    EXPECT_TRUE(sameProfile(back, marked()));
    EXPECT_EQ(back.convergence, 0.75f);
    EXPECT_TRUE(read().startsWith("ZRCOL01\ncolorDepthWeight=0.123456791\n"));
}

// A file cut anywhere must be refused with nothing changed, or give whole lines' values.
TEST_F(Profile, EveryPrefixIsRefusedOrReadsWithoutHarm)
{
    zrcol::save(path, marked(), nullptr);
    const QByteArray whole = read();
    for (qsizetype length = 0; length < whole.size(); ++length) {
        write(whole.left(length));
        zre::ZRParams params;
        QString error;
        const bool loaded = zrcol::load(path, params, &error);
        EXPECT_EQ(loaded, error.isEmpty()) << length;
        EXPECT_EQ(loaded, length > whole.indexOf('=')) << length;
        EXPECT_TRUE(loaded || sameProfile(params, zre::ZRParams())) << length;
    }
}

TEST_F(Profile, EveryFlippedByteIsSurvived)
{
    zrcol::save(path, marked(), nullptr);
    const QByteArray whole = read();
    for (qsizetype at = 0; at < whole.size(); ++at)
        for (const int mask : {0x01, 0x80, 0xff}) {
            QByteArray changed = whole;
            changed[at] = static_cast<char>(changed[at] ^ mask);
            write(changed);
            zre::ZRParams params;
            EXPECT_EQ(zrcol::load(path, params, nullptr), at > 7) << at; // beyond the signature
        }
}

struct Accepted
{
    const char* name;
    QByteArray text;
    bool loads;
    float weight; ///< expected; the default is 1
    float gamma;
};

TEST_F(Profile, LinesAreReadByTheirForm)
{
    const zre::ZRParams initial;
    const float w = initial.colorDepthWeight;
    const float g = initial.colorDepthGamma;
    const Accepted cases[] = {
        {"two of the keys", "ZRCOL01\ncolorDepthWeight=0.25\ncolorDepthGamma=2\n", true, 0.25f, 2},
        {"line ends of other systems", "ZRCOL01\r\ncolorDepthWeight=0.25\r\n", true, 0.25f, g},
        {"blanks about the signature", "  ZRCOL01  \n colorDepthGamma=3 ", true, w, 3.0f},
        {"a signature not on the first line", "\nZRCOL01\ncolorDepthWeight=0.25\n", false, w, g},
        {"another version", "ZRCOL011\ncolorDepthWeight=0.25\n", false, w, g},
        {"no key", "ZRCOL01\n=0.25\ncolorDepthWeight\n", false, w, g},
        {"only a foreign key", "ZRCOL01\nconvergence=0.25\n", false, w, g},
        {"the last of two wins", "ZRCOL01\ncolorDepthGamma=4\ncolorDepthGamma=2\n", true, w, 2},
        {"empty", "", false, w, g},
    };
    for (const Accepted& c : cases) {
        write(c.text);
        zre::ZRParams params;
        EXPECT_EQ(zrcol::load(path, params, nullptr), c.loads) << c.name;
        EXPECT_EQ(params.colorDepthWeight, c.weight) << c.name;
        EXPECT_EQ(params.colorDepthGamma, c.gamma) << c.name;
    }
}

TEST_F(Profile, AFolderThatIsNotThereIsNamed)
{
    QString error;
    EXPECT_FALSE(zrcol::save(folder.filePath("none/a.zrcol"), marked(), &error));
    EXPECT_EQ(error, "Cannot write: " + folder.filePath("none/a.zrcol"));
    zre::ZRParams params;
    EXPECT_FALSE(zrcol::load(folder.filePath("none/a.zrcol"), params, &error));
    EXPECT_EQ(error, "Cannot open: " + folder.filePath("none/a.zrcol"));
}
