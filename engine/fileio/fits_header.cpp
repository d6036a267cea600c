#include "engine/fileio/fits_header.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

#include "engine/astro/fits_text.h"
#include "engine/fileio/failure.h"

namespace zre::fileio {

namespace {

constexpr std::size_t kCardBytes = 80;
constexpr std::uint64_t kMaxSamples = std::uint64_t{1} << 31;
constexpr std::uint64_t kDeflateRatio = 1032; // that of Rice lies far below
constexpr const char* kBadHeader = "bad FITS header.";

std::string_view trimmed(std::string_view text)
{
    while (!text.empty() && text.back() == ' ')
        text.remove_suffix(1);
    while (!text.empty() && text.front() == ' ')
        text.remove_prefix(1);
    return text;
}

/// How much of the text behind "= " is the value: all of a quoted string, else up to the slash.
std::size_t valueLength(std::string_view text)
{
    const std::size_t begin = std::min(text.find_first_not_of(' '), text.size());
    if (begin == text.size() || text[begin] != '\'')
        return std::min(text.find('/'), text.size());
    std::size_t end = text.find('\'', begin + 1);
    while (end < text.size() && text.substr(end + 1, 1) == "'")
        end = text.find('\'', end + 2);
    return end < text.size() ? end + 1 : text.size();
}

/// Keywords that give the structure of a unit: a second one would leave open which counts.
bool isStructural(std::string_view name)
{
    constexpr std::array<std::string_view, 17> roots{
        "XTENSION", "BITPIX",   "NAXIS",    "PCOUNT",  "GCOUNT", "TFIELDS",
        "THEAP",    "ZIMAGE",   "ZCMPTYPE", "ZBITPIX", "ZNAXIS", "ZTILE",
        "ZNAME",    "ZDITHER0", "ZVAL",     "TTYPE",   "TFORM"};
    const std::size_t root = std::min(name.find_last_not_of("0123456789"), name.size() - 1) + 1;
    const auto is = [&](std::string_view text) {
        return std::find(roots.begin(), roots.end(), text) != roots.end();
    };
    return is(name) || is(name.substr(0, root));
}

/// The cards of the header at `unit.begin`, up to its END; false when there is none.
bool readCards(std::span<const std::uint8_t> file, FitsUnit& unit)
{
    std::set<std::string, std::less<>> seen;
    for (std::size_t at = unit.begin; at + kCardBytes <= file.size(); at += kCardBytes) {
        const std::string_view card(reinterpret_cast<const char*>(file.data()) + at, kCardBytes);
        std::string name(card.substr(0, 8)); // blanks in front make it a comment
        name.erase(name.find_last_not_of(' ') + 1);
        if (name == "END") {
            const std::size_t records = (at + kCardBytes - unit.begin - 1) / kFitsRecordBytes + 1;
            unit.dataBegin = unit.begin + records * kFitsRecordBytes;
            return true;
        }
        std::transform(name.begin(), name.end(), name.begin(), [](char c) {
            return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
        });
        if (card[8] != '=' || name.empty())
            continue;
        if (isStructural(name) && !seen.insert(name).second)
            return false;
        const std::string_view rest = card.substr(9);
        const std::size_t length = valueLength(rest);
        const std::string_view value = trimmed(rest.substr(0, length));
        if (!value.empty())
            unit.cards.push_back({std::move(name), std::string(value), {}});
    }
    return false;
}

/// An integer keyword; none when it is absent or anything but an integer.
std::optional<std::int64_t> integer(const FitsUnit& unit, const std::string& name)
{
    const std::optional<std::string> text = acl::KeywordLookup(unit.cards).text(name);
    if (!text)
        return std::nullopt;
    std::int64_t value = 0;
    const char* end = text->data() + text->size();
    const auto parsed = std::from_chars(text->data(), end, value);
    return parsed.ec == std::errc{} && parsed.ptr == end ? std::optional(value) : std::nullopt;
}

/// The same with a value for an absent keyword; one that is no integer still gives none.
std::optional<std::int64_t> integerOr(const FitsUnit& unit, const std::string& name,
                                      std::int64_t absent)
{
    return acl::KeywordLookup(unit.cards).text(name) ? integer(unit, name) : std::optional(absent);
}

/// Multiplies `product` by a size from the header; false beyond 2^62 or below 0.
bool multiply(std::uint64_t& product, std::int64_t factor)
{
    constexpr std::uint64_t limit = std::uint64_t{1} << 62;
    if (factor < 0 || (factor > 0 && product > limit / static_cast<std::uint64_t>(factor)))
        return false;
    product *= static_cast<std::uint64_t>(factor);
    return true;
}

/// Finds where the data of the unit end, by the standard's own rule.
bool measureData(FitsUnit& unit, std::int64_t axes)
{
    std::uint64_t elements = axes > 0 ? 1 : 0;
    for (std::int64_t axis = 1; axis <= axes; ++axis) {
        const auto side = integer(unit, "NAXIS" + std::to_string(axis));
        if (!side || !multiply(elements, *side))
            return false;
    }
    const std::int64_t parameters = integerOr(unit, "PCOUNT", 0).value_or(-1);
    const std::int64_t groups = integerOr(unit, "GCOUNT", 1).value_or(-1);
    if (parameters < 0 || parameters > (std::int64_t{1} << 61))
        return false;
    std::uint64_t bytes =
        std::min(elements + static_cast<std::uint64_t>(parameters), std::uint64_t{1} << 62);
    if (!multiply(bytes, groups) || !multiply(bytes, std::abs(unit.bitpix) / 8))
        return false;
    unit.end = unit.dataBegin + bytes; // below 2^63
    return true;
}

bool isSampleType(std::int64_t bitpix)
{
    constexpr std::array<std::int64_t, 6> types{8, 16, 32, 64, -32, -64};
    return std::find(types.begin(), types.end(), bitpix) != types.end();
}

/// Whether the keywords that the standard puts first stand there in its order. cfitsio goes on with
/// what it has not read where they do not.
bool beginsInOrder(std::span<const std::uint8_t> file, const FitsUnit& unit, bool table)
{
    std::vector<std::string> order{unit.primary ? "SIMPLE" : "XTENSION", "BITPIX", "NAXIS"};
    for (int axis = 1; axis <= unit.axes; ++axis)
        order.push_back("NAXIS" + std::to_string(axis));
    if (!unit.primary)
        order.insert(order.end(), {"PCOUNT", "GCOUNT"});
    if (table)
        order.emplace_back("TFIELDS");
    if (unit.begin + order.size() * kCardBytes > std::min(unit.dataBegin, file.size()))
        return false;
    const auto* card = reinterpret_cast<const char*>(file.data()) + unit.begin;
    for (std::string& name : order) {
        name.resize(8, ' ');
        if (std::string_view(card, 10) != name + "= ")
            return false;
        card += kCardBytes;
    }
    return true;
}

/// Reads the header at `unit.begin` and how far its data go.
bool readUnit(std::span<const std::uint8_t> file, FitsUnit& unit)
{
    constexpr std::int64_t maxAxes = 999; // of the standard
    if (!readCards(file, unit))
        return false;
    const std::int64_t bitpix = integer(unit, "BITPIX").value_or(0);
    const std::int64_t axes = integer(unit, "NAXIS").value_or(-1);
    if (!isSampleType(bitpix) || axes < 0 || axes > maxAxes)
        return false;
    unit.bitpix = static_cast<int>(bitpix);
    unit.axes = static_cast<int>(axes);
    unit.compressed = acl::KeywordLookup(unit.cards).text("ZIMAGE") == "T";
    constexpr std::int64_t maxFields = 999; // of the standard
    const bool table = acl::KeywordLookup(unit.cards).text("XTENSION") == "BINTABLE";
    const std::int64_t fields = integerOr(unit, "TFIELDS", 0).value_or(-1);
    return fields >= 0 && fields <= maxFields && beginsInOrder(file, unit, table) &&
           measureData(unit, axes);
}

bool isPicture(const FitsUnit& unit)
{
    const std::string kind = acl::KeywordLookup(unit.cards).text("XTENSION").value_or("");
    if (unit.compressed)
        return kind == "BINTABLE";
    return (unit.primary || kind == "IMAGE") && unit.axes >= 2;
}

/// Takes the picture's own shape, which in a compressed table stands under other names.
bool readShape(FitsUnit& unit, std::string* error)
{
    const std::string prefix = unit.compressed ? "ZNAXIS" : "NAXIS";
    const std::int64_t axes = integer(unit, prefix).value_or(0);
    const std::int64_t bitpix = integer(unit, unit.compressed ? "ZBITPIX" : "BITPIX").value_or(0);
    if (axes > kMaxFitsAxes)
        return fail(error, "the FITS image has too many axes.");
    if (axes < 2 || !isSampleType(bitpix))
        return fail(error, kBadHeader);
    unit.bitpix = static_cast<int>(bitpix);
    unit.axes = static_cast<int>(axes);
    std::uint64_t samples = 1;
    for (int axis = 0; axis < unit.axes; ++axis) {
        const std::string number = std::to_string(axis + 1);
        const std::int64_t side = integer(unit, prefix + number).value_or(0);
        const std::int64_t tile =
            integerOr(unit, "ZTILE" + number, axis == 0 ? side : 1).value_or(0);
        if (side < 1 || (unit.compressed && (tile < 1 || tile > side)))
            return fail(error, "bad FITS geometry.");
        if (!multiply(samples, side) || samples > kMaxSamples)
            return fail(error, "the FITS image is too large.");
        unit.side[static_cast<std::size_t>(axis)] = side;
        unit.tile[static_cast<std::size_t>(axis)] = tile;
    }
    const std::uint64_t stored = unit.end - unit.dataBegin;
    if (unit.compressed && samples > stored * kDeflateRatio)
        return fail(error, "the FITS file is smaller than its image.");
    return true;
}

bool readCoding(FitsUnit& unit, std::string* error)
{
    constexpr std::int64_t lastSeed = 10000; // what the standard allows
    const acl::KeywordLookup keywords(unit.cards);
    const std::string type = keywords.text("ZCMPTYPE").value_or("");
    unit.coding.gzip = type == "GZIP_1" || type == "GZIP_2";
    if (!unit.coding.gzip && type != "RICE_1" && type != "RICE_ONE")
        return fail(error, "unsupported FITS compression: " + type);
    const std::int64_t seed = integerOr(unit, "ZDITHER0", 1).value_or(0);
    // cfitsio takes the two by their places, whatever they are called.
    const std::int64_t block = integer(unit, "ZVAL1").value_or(0);
    const std::int64_t bytes = integerOr(unit, "ZVAL2", 4).value_or(0);
    const bool named = keywords.text("ZNAME1").value_or("BLOCKSIZE") == "BLOCKSIZE" &&
                       keywords.text("ZNAME2").value_or("BYTEPIX") == "BYTEPIX";
    const bool rice =
        named && (block == 16 || block == 32) && (bytes == 1 || bytes == 2 || bytes == 4);
    if (seed < 1 || seed > lastSeed || (!unit.coding.gzip && !rice))
        return fail(error, "bad FITS tile coding.");
    unit.coding.riceBlock = static_cast<int>(block);
    unit.coding.riceBytes = static_cast<int>(bytes);
    return true;
}

} // namespace

bool findPicture(std::span<const std::uint8_t> file, FitsUnit& unit, std::string* error)
{
    constexpr std::string_view signature = "SIMPLE  =";
    if (file.size() < signature.size() ||
        !std::equal(signature.begin(), signature.end(), file.begin()))
        return fail(error, "this is not a FITS file.");
    for (std::size_t begin = 0; begin < file.size();) {
        FitsUnit found;
        found.begin = begin;
        found.primary = begin == 0;
        if (!readUnit(file, found))
            return fail(error, kBadHeader);
        if (isPicture(found)) {
            if (found.dataBegin > file.size() || found.end > file.size())
                return fail(error, "the FITS file is smaller than its image.");
            if (!readShape(found, error) || (found.compressed && !readCoding(found, error)))
                return false;
            unit = std::move(found);
            return true;
        }
        begin = found.end + (kFitsRecordBytes - found.end % kFitsRecordBytes) % kFitsRecordBytes;
    }
    return fail(error, "the FITS file holds no image.");
}

std::vector<std::uint8_t> plainTableHeader(const FitsUnit& unit)
{
    constexpr std::array<std::string_view, 7> others{"ZQUANTIZ", "ZBLANK", "ZSCALE", "ZZERO",
                                                     "BZERO",    "BSCALE", "BLANK"};
    std::string header;
    for (const acl::FITSKeyword& keyword : unit.cards) {
        const bool plain = std::all_of(keyword.value.begin(), keyword.value.end(),
                                       [](char c) { return c >= ' ' && c <= '~'; });
        const bool needed = isStructural(keyword.name) ||
                            std::find(others.begin(), others.end(), keyword.name) != others.end();
        if (!plain || !needed)
            continue;
        std::string card = keyword.name;
        card.resize(8, ' ');
        card += "= " + keyword.value;
        card.resize(kCardBytes, ' ');
        header += card;
    }
    header += "END";
    header.resize((header.size() + kFitsRecordBytes - 1) / kFitsRecordBytes * kFitsRecordBytes,
                  ' ');
    return {header.begin(), header.end()};
}

} // namespace zre::fileio
