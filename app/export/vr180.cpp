#include "app/export/vr180.h"

#include <algorithm>
#include <functional>
#include <optional>

#include <QFile>
#include <QSaveFile>

#include "app/export/spatial_moov.h"
#include "app/export/still_xmp.h"

namespace vr180 {

static constexpr qint64 kMostStill = qint64{2} << 30; // what is read into memory as a whole
static constexpr qint64 kMostIndex = qint64{1} << 30;

static std::optional<Bytes> readBytes(QFile& file, qint64 at, qint64 size)
{
    if (size < 0 || at > file.size() - size || !file.seek(at))
        return std::nullopt;
    Bytes bytes(static_cast<std::size_t>(size));
    if (file.read(reinterpret_cast<char*>(bytes.data()), size) != size)
        return std::nullopt;
    return bytes;
}

static bool writeBytes(QSaveFile& out, const Bytes& bytes)
{
    const auto size = static_cast<qint64>(bytes.size());
    return out.write(reinterpret_cast<const char*>(bytes.data()), size) == size;
}

static bool copyRange(QFile& from, qint64 at, qint64 size, QSaveFile& to)
{
    constexpr qint64 kPortion = 4 << 20;
    for (qint64 done = 0; done < size; done += kPortion) {
        const std::optional<Bytes> bytes =
            readBytes(from, at + done, std::min(kPortion, size - done));
        if (!bytes || !writeBytes(to, *bytes))
            return false;
    }
    return true;
}

using Change = std::function<std::optional<Bytes>(const Bytes&)>;

static bool changeStill(const std::string& path, const Change& change)
{
    QFile file(QString::fromStdString(path));
    if (!file.open(QIODevice::ReadOnly) || file.size() > kMostStill)
        return false;
    const std::optional<Bytes> bytes = readBytes(file, 0, file.size());
    const std::optional<Bytes> changed = bytes ? change(*bytes) : std::nullopt;
    QSaveFile out(file.fileName());
    return changed && out.open(QIODevice::WriteOnly) && writeBytes(out, *changed) && out.commit();
}

namespace {

struct Range
{
    qint64 at = 0;
    qint64 size = 0;
};

} // namespace

/// The header at `at`: its type, and the range of its box.
static bool topLevelBox(QFile& file, qint64 at, QByteArray& type, Range& range)
{
    const qint64 rest = file.size() - at;
    const std::optional<Bytes> header = readBytes(file, at, std::min<qint64>(16, rest));
    if (!header || header->size() < 8)
        return false;
    std::uint64_t size = bigEndian(*header, 0, 4);
    std::uint64_t least = 8;
    if (size == 1 && header->size() == 16) {
        size = bigEndian(*header, 8, 8);
        least = 16;
    } else if (size == 0) {
        size = static_cast<std::uint64_t>(rest);
    }
    if (size < least || size > static_cast<std::uint64_t>(rest))
        return false;
    type = QByteArray(reinterpret_cast<const char*>(header->data()) + 4, 4);
    range = {at, static_cast<qint64>(size)};
    return true;
}

/// Where the index lies; nothing when data follow it, whose offsets it would no longer know.
static std::optional<Range> findIndex(QFile& file)
{
    std::optional<Range> index;
    QByteArray type;
    Range box;
    for (qint64 at = 0; at < file.size(); at = box.at + box.size) {
        if (!topLevelBox(file, at, type, box))
            return std::nullopt;
        if (type == "moov" && !index)
            index = box;
        else if (type == "mdat" && index)
            return std::nullopt;
    }
    return index;
}

static bool changeIndex(const std::string& path, const Change& change)
{
    QFile file(QString::fromStdString(path));
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const std::optional<Range> index = findIndex(file);
    if (!index || index->size > kMostIndex)
        return false;
    const std::optional<Bytes> moov = readBytes(file, index->at, index->size);
    const std::optional<Bytes> changed = moov ? change(*moov) : std::nullopt;
    const qint64 behind = index->at + index->size;
    QSaveFile out(file.fileName());
    return changed && out.open(QIODevice::WriteOnly) && copyRange(file, 0, index->at, out) &&
           writeBytes(out, *changed) && copyRange(file, behind, file.size() - behind, out) &&
           out.commit();
}

bool injectXmpPng(const std::string& path, int width, int height)
{
    return changeStill(path, [&](const Bytes& file) { return withXmpPng(file, width, height); });
}

bool injectXmpJpeg(const std::string& path, int width, int height)
{
    return changeStill(path, [&](const Bytes& file) { return withXmpJpeg(file, width, height); });
}

bool injectSpatialMediaMp4(const std::string& path)
{
    return changeIndex(path, withSpatialMedia);
}

bool injectAppleSpatialMp4(const std::string& path, double hfovDegrees, double baselineMm,
                           bool sideBySide)
{
    return changeIndex(path, [&](const Bytes& moov) {
        return withAppleSpatial(moov, {hfovDegrees, baselineMm, sideBySide});
    });
}

} // namespace vr180
