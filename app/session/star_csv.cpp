#include "app/session/star_csv.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>

#include <QByteArray>
#include <QSaveFile>

std::optional<SkyPlace> starSkyPlace(double x, double y, const zre::Wcs& wcs)
{
    SkyPlace place;
    if (!wcs.valid || !wcs.imageToCelestial(x, y, place.ra, place.dec))
        return std::nullopt;
    return place;
}

namespace {

/// One line under way: `std::to_chars` asks no locale and allocates nothing.
class Line
{
public:
    explicit Line(QByteArray& out)
        : m_out(out)
    {
    }

    void skip()
    {
        if (!m_first)
            m_out.append(',');
        m_first = false;
    }
    /// The shortest text that reads back as `value`.
    template <typename Number>
    void exact(Number value)
    {
        write([value](char* from, char* to) { return std::to_chars(from, to, value); });
    }
    void fixed(double value, int decimals)
    {
        // Beyond this no place is meant, and fixed digits would fill the line.
        constexpr double kHuge = 1e12;
        if (!(std::abs(value) < kHuge))
            exact(value);
        else
            write([=](char* from, char* to) {
                return std::to_chars(from, to, value, std::chars_format::fixed, decimals);
            });
    }
    void end() { m_out.append('\n'); }

private:
    template <typename Convert>
    void write(Convert convert)
    {
        skip();
        std::array<char, 64> text{};
        const auto result = convert(text.data(), text.data() + text.size());
        m_out.append(text.data(), result.ptr - text.data());
    }

    QByteArray& m_out;
    bool m_first = true;
};

} // namespace

static void appendStar(QByteArray& out, std::size_t index, const zre::Star& star,
                       const zre::Wcs& wcs)
{
    constexpr int kPixelDecimals = 4;
    constexpr int kDegreeDecimals = 7; // below a milliarcsecond
    Line line(out);
    line.exact(index);
    line.fixed(star.x, kPixelDecimals);
    line.fixed(star.y, kPixelDecimals);
    line.exact(star.peak);
    line.exact(star.depth);
    line.exact(star.boxW);
    line.exact(star.boxH);
    if (star.distancePc > 0.0f)
        line.exact(star.distancePc);
    else
        line.skip();
    if (const auto place = starSkyPlace(star.x, star.y, wcs)) {
        line.fixed(place->ra, kDegreeDecimals);
        line.fixed(place->dec, kDegreeDecimals);
    } else {
        line.skip();
        line.skip();
    }
    line.end();
}

static QByteArray csvBytes(const std::vector<zre::Star>& stars, const zre::Wcs& wcs)
{
    QByteArray out("index,x,y,peak,depth,width,height,distance_pc,ra_deg,dec_deg\n");
    for (std::size_t i = 0; i < stars.size(); ++i)
        appendStar(out, i, stars[i], wcs);
    return out;
}

QString starsCsv(const std::vector<zre::Star>& stars, const zre::Wcs& wcs)
{
    return QString::fromLatin1(csvBytes(stars, wcs));
}

bool saveStarsCsv(const QString& path, const std::vector<zre::Star>& stars, const zre::Wcs& wcs,
                  QString* error)
{
    QSaveFile file(path);
    const QByteArray bytes = csvBytes(stars, wcs);
    const bool written =
        file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit();
    if (!written && error)
        *error = "Cannot write: " + path;
    return written;
}
