#include "app/export/spatial_moov.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <string>
#include <utility>

namespace vr180 {

namespace {

constexpr std::string_view kProduct = "Zerrith";

/// The boxes from `moov` down to the video's first sample entry.
struct VideoPath
{
    Box moov;
    Box trak;
    Box mdia;
    Box minf;
    Box stbl;
    Box stsd;
    Box entry;
};

std::optional<VideoPath> videoPath(const Bytes& bytes)
{
    constexpr std::size_t kEntries = 8; // of the payload of stsd: version, flags, count
    VideoPath path;
    const auto enter = [&](const Box& parent, std::string_view type, Box& child) {
        const std::optional<Box> found = findBox(bytes, parent.payload, parent.end(), type);
        child = found.value_or(Box{});
        return found.has_value();
    };
    const std::optional<Box> moov = findBox(bytes, 0, bytes.size(), "moov");
    const std::optional<Box> trak =
        moov ? findVideoTrak(bytes, moov->payload, moov->end()) : std::nullopt;
    if (!trak)
        return std::nullopt;
    path.moov = *moov;
    path.trak = *trak;
    if (!enter(path.trak, "mdia", path.mdia) || !enter(path.mdia, "minf", path.minf) ||
        !enter(path.minf, "stbl", path.stbl) || !enter(path.stbl, "stsd", path.stsd))
        return std::nullopt;
    const std::optional<Box> entry = boxAt(bytes, path.stsd.payload + kEntries, path.stsd.end());
    if (!entry || bigEndian(bytes, entry->start, 4) < 8) // an entry has a plain size
        return std::nullopt;
    path.entry = *entry;
    return path;
}

/// Looks for the names themselves, so that a damaged child before them hides nothing.
bool isSpatialAlready(const Bytes& bytes, const Box& entry)
{
    const auto begin = bytes.begin() + static_cast<std::ptrdiff_t>(entry.start);
    const auto end = bytes.begin() + static_cast<std::ptrdiff_t>(entry.end());
    constexpr std::array kNames{std::string_view("st3d"), std::string_view("vexu")};
    return std::any_of(kNames.begin(), kNames.end(), [&](std::string_view name) {
        return std::search(begin, end, name.begin(), name.end()) != end;
    });
}

/// The bytes with `inEntry` at the end of the sample entry and `inTrak` at the end of the track.
std::optional<Bytes> withBoxes(const Bytes& bytes, const VideoPath& path, const Bytes& inEntry,
                               const Bytes& inTrak)
{
    Bytes out = bytes;
    bool fits = true;
    for (const Box* box : {&path.entry, &path.stsd, &path.stbl, &path.minf, &path.mdia})
        fits = fits && growBoxSize(out, *box, inEntry.size());
    for (const Box* box : {&path.trak, &path.moov})
        fits = fits && growBoxSize(out, *box, inEntry.size() + inTrak.size());
    if (!fits)
        return std::nullopt;
    const auto at = [&](std::size_t offset) {
        return out.begin() + static_cast<std::ptrdiff_t>(offset);
    };
    out.insert(at(path.trak.end()), inTrak.begin(), inTrak.end());
    out.insert(at(path.entry.end()), inEntry.begin(), inEntry.end());
    return out;
}

Bytes bytesOf(std::initializer_list<std::uint32_t> values)
{
    Bytes bytes;
    for (const std::uint32_t value : values)
        appendBigEndian(bytes, value, 4);
    return bytes;
}

/// Stereo mode and projection of the second version of the spherical video scheme.
Bytes sphericalBoxes()
{
    constexpr std::uint32_t kQuarter = 0x40000000; // of the sphere, cut off on each side
    Bytes source;
    append(source, kProduct);
    source.push_back(0);
    Bytes projection;
    appendFullBox(projection, "prhd", bytesOf({0, 0, 0}));
    appendFullBox(projection, "equi", bytesOf({0, 0, kQuarter, kQuarter}));
    Bytes spherical;
    appendFullBox(spherical, "svhd", source);
    appendBox(spherical, "proj", projection);
    Bytes boxes;
    appendFullBox(boxes, "st3d", {2}); // left-right
    appendBox(boxes, "sv3d", spherical);
    return boxes;
}

std::string sphericalXml(std::uint64_t eyeWidth, std::uint64_t height)
{
    std::string xml = "<?xml version=\"1.0\"?><rdf:SphericalVideo"
                      "\nxmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\""
                      "\nxmlns:GSpherical=\"http://ns.google.com/videos/1.0/spherical/\">";
    const std::array<std::pair<std::string_view, std::string>, 11> properties{{
        {"Spherical", "true"},
        {"Stitched", "true"},
        {"StitchingSoftware", std::string(kProduct)},
        {"ProjectionType", "equirectangular"},
        {"StereoMode", "left-right"},
        {"CroppedAreaImageWidthPixels", std::to_string(eyeWidth)},
        {"CroppedAreaImageHeightPixels", std::to_string(height)},
        {"FullPanoWidthPixels", std::to_string(2 * eyeWidth)},
        {"FullPanoHeightPixels", std::to_string(height)},
        {"CroppedAreaLeftPixels", std::to_string(eyeWidth / 2)},
        {"CroppedAreaTopPixels", "0"},
    }};
    for (const auto& [name, value] : properties)
        xml.append("<GSpherical:")
            .append(name)
            .append(">")
            .append(value)
            .append("</GSpherical:")
            .append(name)
            .append(">");
    return xml.append("</rdf:SphericalVideo>");
}

/// The box of the first version of the scheme; empty when the entry tells no size.
Bytes sphericalUuid(const Bytes& bytes, const Box& entry)
{
    constexpr std::size_t kWidth = 32;
    constexpr std::size_t kHeight = 34;
    static constexpr std::uint64_t kUuidHigh = 0xffcc8263f8554a93;
    static constexpr std::uint64_t kUuidLow = 0x8814587a02521fdd;
    Bytes box;
    if (entry.size < kHeight + 2)
        return box;
    const std::uint64_t eyeWidth = bigEndian(bytes, entry.start + kWidth, 2) / 2;
    const std::uint64_t height = bigEndian(bytes, entry.start + kHeight, 2);
    if (eyeWidth == 0 || height == 0)
        return box;
    const std::string xml = sphericalXml(eyeWidth, height);
    Bytes payload;
    appendBigEndian(payload, kUuidHigh, 8);
    appendBigEndian(payload, kUuidLow, 8);
    append(payload, xml);
    appendBox(box, "uuid", payload);
    return box;
}

/// floor(1000 v + 0.5) within what the field holds.
std::uint32_t thousandths(double value)
{
    const double rounded = std::floor(1000.0 * value + 0.5);
    constexpr double kMost = std::numeric_limits<std::uint32_t>::max();
    return rounded > 0.0 ? static_cast<std::uint32_t>(std::min(rounded, kMost)) : 0;
}

Bytes appleBoxes(const AppleSpatial& spatial)
{
    constexpr std::uint8_t kBothEyes = 3;
    Bytes baseline;
    appendFullBox(baseline, "blin", bytesOf({thousandths(spatial.baselineMm)}));
    Bytes eyes;
    appendFullBox(eyes, "stri", {kBothEyes});
    appendBox(eyes, "cams", baseline);
    Bytes extended;
    appendBox(extended, "eyes", eyes);
    if (spatial.sideBySide) {
        Bytes packing;
        appendFullBox(packing, "pkin", {'s', 'i', 'd', 'e'});
        appendBox(extended, "pack", packing);
    }
    Bytes boxes;
    appendBox(boxes, "vexu", extended);
    appendBox(boxes, "hfov", bytesOf({thousandths(spatial.hfovDegrees)}));
    return boxes;
}

} // namespace

std::optional<Bytes> withSpatialMedia(const Bytes& moov)
{
    const std::optional<VideoPath> path = videoPath(moov);
    if (!path || isSpatialAlready(moov, path->entry))
        return std::nullopt;
    return withBoxes(moov, *path, sphericalBoxes(), sphericalUuid(moov, path->entry));
}

std::optional<Bytes> withAppleSpatial(const Bytes& moov, const AppleSpatial& spatial)
{
    const std::optional<VideoPath> path = videoPath(moov);
    if (!path || isSpatialAlready(moov, path->entry))
        return std::nullopt;
    return withBoxes(moov, *path, appleBoxes(spatial), {});
}

} // namespace vr180
