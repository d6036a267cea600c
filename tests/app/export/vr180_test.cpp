#include "app/export/vr180.h"

#include <cstdlib>
#include <fstream>
#include <functional>
#include <string>

#include <QFile>
#include <QImage>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include "app/export/spatial_moov.h"
#include "app/export/still_xmp.h"
#include "tests/support/testkit.h"

namespace {

using vr180::Bytes;

const QString kSpherical =
    "0000000d73743364000000000200000058737633640000001473766864000000005a657272697468"
    "000000003c70726f6a0000001870726864000000000000000000000000000000000000001c657175"
    "690000000000000000000000004000000040000000";
const QString kApple =
    "0000004d766578750000002d657965730000000d7374726900000000030000001863616d73000000"
    "10626c696e000000000000f618000000187061636b00000010706b696e0000000073696465000000"
    "0c68666f7600015f90";

QByteArray arrayOf(const Bytes& bytes)
{
    return QByteArray(reinterpret_cast<const char*>(bytes.data()),
                      static_cast<qsizetype>(bytes.size()));
}

Bytes box(const char* type, const Bytes& payload)
{
    Bytes bytes;
    vr180::appendBox(bytes, type, payload);
    return bytes;
}

Bytes joined(std::initializer_list<Bytes> parts)
{
    Bytes all;
    for (const Bytes& part : parts)
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

Bytes handler(const char* kind)
{
    Bytes payload(24, 0);
    std::copy_n(kind, 4, payload.begin() + 8);
    return box("hdlr", payload);
}

Bytes sampleEntry(int width, int height)
{
    Bytes payload(78 + 10, 7); // the fixed part and ten bytes of a child cut short
    payload[24] = static_cast<std::uint8_t>(width >> 8);
    payload[25] = static_cast<std::uint8_t>(width);
    payload[26] = static_cast<std::uint8_t>(height >> 8);
    payload[27] = static_cast<std::uint8_t>(height);
    return box("avc1", payload);
}

Bytes track(const char* kind, const Bytes& entry)
{
    const Bytes stsd = box("stsd", joined({Bytes{0, 0, 0, 0, 0, 0, 0, 1}, entry}));
    const Bytes stbl = box("stbl", joined({stsd, box("stco", Bytes(8, 1))}));
    const Bytes mdia = box("mdia", joined({handler(kind), box("minf", stbl), box("free", {})}));
    return box("trak", joined({box("tkhd", Bytes(20, 3)), mdia, box("edts", Bytes(4, 5))}));
}

/// A `moov` box with a 64-bit size around an audio and a video track.
Bytes longMoov(int width, int height)
{
    const Bytes tracks = joined({track("soun", box("mp4a", Bytes(80, 9))),
                                 track("vide", sampleEntry(width, height)), box("udta", {1, 2})});
    Bytes moov{0, 0, 0, 1, 'm', 'o', 'o', 'v'};
    vr180::appendBigEndian(moov, tracks.size() + 16, 8);
    moov.insert(moov.end(), tracks.begin(), tracks.end());
    return moov;
}

/// Whether boxes of the known containers fill their parents exactly.
bool nestsExactly(const Bytes& bytes, std::size_t begin, std::size_t end)
{
    static const std::string containers = "moov trak mdia minf stbl";
    while (begin < end) {
        const std::optional<vr180::Box> found = vr180::boxAt(bytes, begin, end);
        if (!found)
            return false;
        const std::string type(bytes.begin() + static_cast<std::ptrdiff_t>(found->start) + 4,
                               bytes.begin() + static_cast<std::ptrdiff_t>(found->start) + 8);
        if (containers.find(type) != std::string::npos &&
            !nestsExactly(bytes, found->payload, found->end()))
            return false;
        begin = found->end();
    }
    return begin == end;
}

TEST(SpatialMoov, BoxesGoIntoTheVideoTrackAndEverySizeFollows)
{
    const Bytes moov = longMoov(1920, 540);
    const std::optional<Bytes> spherical = vr180::withSpatialMedia(moov);
    ASSERT_TRUE(spherical);
    EXPECT_TRUE(nestsExactly(*spherical, 0, spherical->size()));
    const QByteArray text = arrayOf(*spherical);
    const QByteArray boxes = QByteArray::fromHex(kSpherical.toLatin1());
    EXPECT_EQ(text.indexOf(boxes), text.indexOf("avc1") - 4 + 96); // at the end of its entry
    for (const char* property :
         {"CroppedAreaImageWidthPixels>960<", "FullPanoWidthPixels>1920<",
          "CroppedAreaImageHeightPixels>540<", "CroppedAreaLeftPixels>480<", "\nxmlns:GSpherical="})
        EXPECT_TRUE(text.contains(property)) << property;
    EXPECT_FALSE(vr180::withSpatialMedia(*spherical)) << "twice";
    EXPECT_FALSE(vr180::withAppleSpatial(*spherical, {}));

    const std::optional<Bytes> apple = vr180::withAppleSpatial(moov, {90.0, 63.0, true});
    ASSERT_TRUE(apple);
    EXPECT_TRUE(nestsExactly(*apple, 0, apple->size()));
    EXPECT_TRUE(arrayOf(*apple).contains(QByteArray::fromHex(kApple.toLatin1())));
    EXPECT_EQ(apple->size(), moov.size() + 89);
    EXPECT_EQ(vr180::withAppleSpatial(moov, {90.0, 63.0, false})->size(), moov.size() + 65);
    EXPECT_FALSE(vr180::withAppleSpatial(*apple, {}));

    const std::optional<Bytes> unsized = vr180::withSpatialMedia(longMoov(0, 540));
    ASSERT_TRUE(unsized);
    EXPECT_EQ(unsized->size(), longMoov(0, 540).size() + 101) << "no box of the first version";
}

TEST(SpatialMoov, DamageNeverMakesABrokenBox)
{
    const Bytes moov = joined({box("moov", track("vide", sampleEntry(64, 32)))});
    ASSERT_TRUE(vr180::withSpatialMedia(moov));
    EXPECT_FALSE(vr180::withSpatialMedia(box("moov", track("soun", sampleEntry(64, 32)))));
    for (std::size_t size = 0; size < moov.size(); ++size)
        EXPECT_FALSE(vr180::withSpatialMedia(
            Bytes(moov.begin(), moov.begin() + static_cast<std::ptrdiff_t>(size))));
    for (std::size_t at = 0; at < moov.size(); ++at) {
        for (const std::uint8_t flip : {0x01, 0x80, 0xff}) {
            Bytes damaged = moov;
            damaged[at] ^= flip;
            const std::optional<Bytes> out = vr180::withSpatialMedia(damaged);
            const bool wasWhole = nestsExactly(damaged, 0, damaged.size());
            EXPECT_TRUE(!out || !wasWhole || nestsExactly(*out, 0, out->size())) << at;
        }
    }
}

class Vr180Files : public testing::Test
{
protected:
    std::string path(const char* name) const { return folder.filePath(name).toStdString(); }
    static QByteArray contents(const std::string& file)
    {
        QFile in(QString::fromStdString(file));
        return in.open(QIODevice::ReadOnly) ? in.readAll() : QByteArray();
    }
    static QByteArray run(const QString& program, const QStringList& arguments)
    {
        QProcess process;
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(program, arguments);
        process.waitForFinished(60000);
        return process.readAll();
    }

    QTemporaryDir folder;
};

TEST_F(Vr180Files, StillsKeepTheirPixelsAndGainOnePacket)
{
    QImage picture(64, 32, QImage::Format_RGB32);
    for (int y = 0; y < 32; ++y)
        for (int x = 0; x < 64; ++x)
            picture.setPixel(x, y, qRgb(x * 4, y * 8, 90));
    const QString packet = QString::fromStdString(vr180::stillXmp(64, 32));
    const struct
    {
        const char* name;
        bool (*inject)(const std::string&, int, int);
    } cases[] = {{"still.png", vr180::injectXmpPng}, {"still.jpg", vr180::injectXmpJpeg}};
    for (const auto& c : cases) {
        const std::string file = path(c.name);
        ASSERT_TRUE(picture.save(QString::fromStdString(file), nullptr, 95));
        const QImage before(QString::fromStdString(file));
        const QByteArray plain = contents(file);
        ASSERT_TRUE(c.inject(file, 64, 32));
        EXPECT_EQ(QImage(QString::fromStdString(file)), before);
        const QByteArray rich = contents(file);
        EXPECT_EQ(rich.count(packet.toUtf8()), 1);
        EXPECT_EQ(rich.size() - plain.size(),
                  packet.toUtf8().size() + (rich.startsWith("\x89PNG") ? 34 : 33));
    }
    // The reader drops a chunk whose sum is wrong.
    EXPECT_TRUE(
        QImage(QString::fromStdString(path("still.png"))).text().contains(packet.simplified()));
    const QByteArray jpeg = contents(path("still.jpg"));
    EXPECT_EQ(jpeg.mid(2, 2).toHex(), "ffe0");
    EXPECT_EQ(jpeg.mid(20, 2).toHex(), "ffe1"); // behind the APP0 of 18 bytes

    // Without APP0 the packet stands first; what is no such file is refused and stays.
    const Bytes bare{0xFF, 0xD8, 0xFF, 0xDB, 0, 2};
    EXPECT_EQ(vr180::withXmpJpeg(bare, 1, 1).value()[3], 0xE1);
    for (const Bytes& bad :
         {Bytes{}, Bytes{0xFF, 0xD8}, Bytes{0xFF, 0xD8, 0xFF, 0xE0, 0xFF, 0xFF, 1},
          Bytes{0xFF, 0xD8, 0xFF, 0xE0, 0, 1, 0xFF, 0xDB}, Bytes(64, 0)}) {
        EXPECT_FALSE(vr180::withXmpJpeg(bad, 1, 1));
        EXPECT_FALSE(vr180::withXmpPng(bad, 1, 1));
    }
    EXPECT_FALSE(vr180::injectXmpPng(path("still.jpg"), 64, 32));
    EXPECT_EQ(contents(path("still.jpg")), jpeg);
}

TEST_F(Vr180Files, AnotherReaderFindsThePanoramaOfAStill)
{
    if (QStandardPaths::findExecutable("exiftool").isEmpty())
        GTEST_SKIP() << "exiftool is not installed";
    QImage picture(640, 320, QImage::Format_RGB32);
    picture.fill(Qt::darkBlue);
    const QString png = QString::fromStdString(path("pano.png"));
    const QString jpeg = QString::fromStdString(path("pano.jpg"));
    ASSERT_TRUE(picture.save(png) && picture.save(jpeg));
    ASSERT_TRUE(vr180::injectXmpPng(png.toStdString(), 640, 320));
    ASSERT_TRUE(vr180::injectXmpJpeg(jpeg.toStdString(), 640, 320));
    for (const QString& file : {png, jpeg}) {
        const QByteArray told = run("exiftool", {"-a", "-G1", "-s", file});
        for (const char* fact :
             {"UsePanoramaViewer True", "ProjectionType equirectangular", "StereoMode LeftRight",
              "CroppedAreaImageWidthPixels 640", "CroppedAreaImageHeightPixels 320",
              "FullPanoWidthPixels 640", "FullPanoHeightPixels 320", "CroppedAreaLeftPixels 0",
              "CroppedAreaTopPixels 0", "XMPToolkit Zerrith"})
            EXPECT_TRUE(told.simplified().replace(" : ", " ").contains(fact))
                << fact << told.toStdString();
        EXPECT_FALSE(told.contains("Warning")) << told.toStdString();
    }
}

TEST_F(Vr180Files, PlayersSeeTheStereoVideo)
{
    if (QStandardPaths::findExecutable("ffmpeg").isEmpty())
        GTEST_SKIP() << "ffmpeg is not installed";
    const auto encode = [&](const char* name, const QStringList& further) {
        run("ffmpeg",
            QStringList{"-y", "-f", "lavfi", "-i", "testsrc=size=1920x480:rate=10:duration=0.5",
                        "-c:v", "libx264", "-preset", "ultrafast", "-pix_fmt", "yuv420p"} +
                further + QStringList{QString::fromStdString(path(name))});
        return path(name);
    };
    const auto errorsOf = [&](const std::string& file) {
        return run("ffmpeg",
                   {"-v", "error", "-i", QString::fromStdString(file), "-f", "null", "-"});
    };
    const std::string spherical = encode("spherical.mp4", {});
    const std::string apple = encode("apple.mp4", {});
    const std::string early = encode("early.mp4", {"-movflags", "+faststart"});
    ASSERT_TRUE(vr180::injectSpatialMediaMp4(spherical));
    const QByteArray streams = run("ffprobe", {"-show_streams", QString::fromStdString(spherical)});
    EXPECT_TRUE(streams.contains("type=side by side")) << streams.toStdString();
    EXPECT_TRUE(streams.contains("projection=tiled equirectangular"));
    EXPECT_EQ(errorsOf(spherical), QByteArray());
    ASSERT_TRUE(vr180::injectAppleSpatialMp4(apple, 90.0, 63.0, true));
    EXPECT_TRUE(contents(apple).contains(QByteArray::fromHex(kApple.toLatin1())));
    EXPECT_EQ(errorsOf(apple), QByteArray());

    // What cannot be told safely stays as it is.
    for (const std::string& file : {early, spherical, apple}) {
        const QByteArray before = contents(file);
        EXPECT_FALSE(vr180::injectSpatialMediaMp4(file));
        EXPECT_FALSE(vr180::injectAppleSpatialMp4(file, 90.0, 63.0, true));
        EXPECT_EQ(contents(file), before);
    }
    EXPECT_FALSE(vr180::injectSpatialMediaMp4(path("none.mp4")));
}

} // namespace
