#include "engine/flight/window_view.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>

#include "engine/image/multiversion.h"
#include "engine/image/raster.h"

namespace zre {

namespace {

struct Place
{
    double x;
    double y;
};

/// Where some neighbours of a row of the output lie in the eye.
struct Spots
{
    static constexpr int kCount = 256;

    double x[kCount];
    double y[kCount];
};

} // namespace

/// The two samples about `place` on a line of `size`, each bound to the line.
static Tap tapAt(double place, int size)
{
    const double below = std::floor(place);
    const double bound = below > -1.0 ? std::min(below, double(size)) : -1.0; // a NaN, too
    const auto index = static_cast<std::int32_t>(bound);
    return {std::clamp(index, 0, size - 1), std::clamp(index + 1, 0, size - 1),
            std::isfinite(place) ? place - below : 0.0};
}

static double mix(const float* upper, const float* lower, const Tap& x, double part)
{
    const double a = upper[x.low];
    const double b = upper[x.high];
    const double c = lower[x.low];
    const double d = lower[x.high];
    const double top = a + (b - a) * x.part;
    const double bottom = c + (d - c) * x.part;
    return top + (bottom - top) * part;
}

/// The tap of pixel `i` on a line of `count` that shows `length` samples from `start` on.
static Tap tapOf(int i, int count, double start, double length, int size)
{
    return tapAt((i + 0.5) / count * length + start - 0.5, size);
}

Taps tapsOf(const Window& window, const Image& eye, const Image& out)
{
    Taps taps;
    for (int x = 0; x < out.width; ++x) {
        const Tap tap = tapOf(x, out.width, window.left, window.width, eye.width);
        taps.columns.low.push_back(tap.low);
        taps.columns.high.push_back(tap.high);
        taps.columns.part.push_back(tap.part);
    }
    for (int y = 0; y < out.height; ++y)
        taps.rows.push_back(tapOf(y, out.height, window.top, window.height, eye.height));
    return taps;
}

ZR_MULTIVERSION_512 static void mixAlong(const float* __restrict line,
                                         const std::int32_t* __restrict low,
                                         const std::int32_t* __restrict high,
                                         const double* __restrict part, std::size_t count,
                                         double* __restrict out)
{
    for (std::size_t i = 0; i < count; ++i) {
        const double a = line[low[i]];
        const double b = line[high[i]];
        out[i] = a + (b - a) * part[i];
    }
}

ZR_MULTIVERSION static void mixAcross(const double* __restrict upper,
                                      const double* __restrict lower, double part,
                                      std::size_t count, float* __restrict out)
{
    for (std::size_t i = 0; i < count; ++i)
        out[i] = static_cast<float>(upper[i] + (lower[i] - upper[i]) * part);
}

/// Each line of the eye is mixed along once, for all the rows that show it.
void showWindow(const Image& eye, const Taps& taps, Image& out)
{
    const auto stride = static_cast<std::size_t>(eye.width);
    const LineTaps& columns = taps.columns;
    const std::size_t count = columns.part.size();
    std::vector<double> upper(count);
    std::vector<double> lower(count);
    for (int c = 0; c < std::min(out.channels, eye.channels); ++c) {
        float* target = out.plane(c);
        std::int32_t upperRow = -1;
        std::int32_t lowerRow = -1;
        const auto lay = [&](std::int32_t row, std::vector<double>& line) {
            mixAlong(eye.plane(c) + stride * static_cast<std::size_t>(row), columns.low.data(),
                     columns.high.data(), columns.part.data(), count, line.data());
            return row;
        };
        for (const Tap& row : taps.rows) {
            if (row.low == lowerRow) {
                upper.swap(lower);
                std::swap(upperRow, lowerRow);
            }
            if (row.low != upperRow)
                upperRow = lay(row.low, upper);
            if (row.high != lowerRow)
                lowerRow = lay(row.high, lower);
            mixAcross(upper.data(), lower.data(), row.part, count, target);
            target += count;
        }
    }
}

/// A copy of a few pixels, whose soft colours go on beyond the edges that a turned window uncovers.
static Image smallCopy(const Image& eye)
{
    constexpr int kLongest = 48;
    const int longest = std::max(eye.width, eye.height);
    const double scale = longest > kLongest ? double(kLongest) / longest : 0.5;
    const auto side = [&](int size) { return std::max(1, static_cast<int>(size * scale + 0.5)); };
    Image copy;
    areaResample(eye, side(eye.width), side(eye.height), copy);
    return copy;
}

static void samplePixel(const Image& from, double x, double y, std::size_t pixel, Image& out)
{
    const Tap column = tapAt(x, from.width);
    const Tap row = tapAt(y, from.height);
    const auto stride = static_cast<std::size_t>(from.width);
    for (int c = 0; c < std::min(out.channels, from.channels); ++c) {
        const float* plane = from.plane(c);
        out.plane(c)[pixel] = static_cast<float>(
            mix(plane + stride * static_cast<std::size_t>(row.low),
                plane + stride * static_cast<std::size_t>(row.high), column, row.part));
    }
}

Turn turnOf(const Window& window, double rollDeg)
{
    const double roll = rollDeg * std::numbers::pi / 180.0;
    return {std::cos(roll), std::sin(roll), window.left + window.width / 2.0,
            window.top + window.height / 2.0};
}

/// How far an output pixel lies from the window's centre along one of its sides.
static double alongSide(int pixel, int count, double length)
{
    return ((pixel + 0.5) / count - 0.5) * length;
}

/// Where in the eye an output pixel lies.
static Place placeOf(const Turn& turn, const Window& window, const Image& out, int x, int y)
{
    const double u = alongSide(x, out.width, window.width);
    const double v = alongSide(y, out.height, window.height);
    return {turn.cosine * u - turn.sine * v + turn.centreX - 0.5,
            turn.sine * u + turn.cosine * v + turn.centreY - 0.5};
}

ZR_MULTIVERSION static void layRow(const Turn& callersTurn, const double* __restrict u, double v,
                                   int count, Spots& spots)
{
    const Turn turn = callersTurn;
    for (int i = 0; i < count; ++i) {
        spots.x[i] = turn.cosine * u[i] - turn.sine * v + turn.centreX - 0.5;
        spots.y[i] = turn.sine * u[i] + turn.cosine * v + turn.centreY - 0.5;
    }
}

/// True when every place lies between four samples of an eye whose last are at `right` and
/// `bottom`.
static bool allWithin(const Spots& spots, int count, double right, double bottom)
{
    // Along a line the ends tell; in the image a place is far from where rounding matters.
    const auto within = [&](int i) {
        return spots.x[i] >= 1.0 && spots.x[i] < right - 1.0 && spots.y[i] >= 1.0 &&
               spots.y[i] < bottom - 1.0;
    };
    return within(0) && within(count - 1);
}

ZR_MULTIVERSION static void mixSpots(const float* __restrict plane, std::ptrdiff_t stride,
                                     const Spots& spots, int count, float* __restrict out)
{
    for (int i = 0; i < count; ++i) {
        const auto column = static_cast<std::int32_t>(spots.x[i]);
        const auto row = static_cast<std::int32_t>(spots.y[i]);
        const double part = spots.x[i] - column;
        const float* const upper = plane + row * stride + column;
        const float* const lower = upper + stride;
        const double a = upper[0];
        const double b = upper[1];
        const double c = lower[0];
        const double d = lower[1];
        const double top = a + (b - a) * part;
        const double bottom = c + (d - c) * part;
        out[i] = static_cast<float>(top + (bottom - top) * (spots.y[i] - row));
    }
}

void showTurnedWindow(const Image& eye, const Window& window, const Turn& turn, bool reachesOver,
                      Image& out)
{
    const Image beyond = reachesOver ? smallCopy(eye) : Image();
    const double scaleX = double(beyond.width) / eye.width;
    const double scaleY = double(beyond.height) / eye.height;
    std::vector<double> u(static_cast<std::size_t>(out.width));
    for (int x = 0; x < out.width; ++x)
        u[static_cast<std::size_t>(x)] = alongSide(x, out.width, window.width);
    const auto showSpot = [&](double x, double y, std::size_t pixel) {
        const bool inside = x >= 0.0 && x <= eye.width - 1 && y >= 0.0 && y <= eye.height - 1;
        if (inside || !beyond.usable())
            samplePixel(eye, x, y, pixel, out);
        else
            samplePixel(beyond, (x + 0.5) * scaleX - 0.5, (y + 0.5) * scaleY - 0.5, pixel, out);
    };
    Spots spots;
    std::size_t pixel = 0;
    for (int y = 0; y < out.height; ++y) {
        const double v = alongSide(y, out.height, window.height);
        for (int x = 0; x < out.width; x += Spots::kCount) {
            const int count = std::min(Spots::kCount, out.width - x);
            layRow(turn, u.data() + x, v, count, spots);
            if (allWithin(spots, count, eye.width - 1, eye.height - 1))
                for (int c = 0; c < std::min(out.channels, eye.channels); ++c)
                    mixSpots(eye.plane(c), eye.width, spots, count, out.plane(c) + pixel);
            else
                for (int i = 0; i < count; ++i)
                    showSpot(spots.x[i], spots.y[i], pixel + static_cast<std::size_t>(i));
            pixel += static_cast<std::size_t>(count);
        }
    }
}

EyeWindow shownBy(const Taps& taps)
{
    return {taps.columns.low.front(), taps.rows.front().low, taps.columns.high.back() + 1,
            taps.rows.back().high + 1};
}

EyeWindow shownBy(const Turn& turn, const Window& window, const Image& out)
{
    constexpr double kMargin = 2.0;
    constexpr double kMost = 1e9;
    EyeWindow shown{int(kMost), int(kMost), -int(kMost), -int(kMost)};
    for (const int x : {0, out.width - 1})
        for (const int y : {0, out.height - 1}) {
            const Place at = placeOf(turn, window, out, x, y);
            const auto bound = [&](double place) {
                return static_cast<int>(std::isfinite(place) ? std::clamp(place, -kMost, kMost)
                                                             : -kMost);
            };
            shown.left = std::min(shown.left, bound(std::floor(at.x) - kMargin));
            shown.top = std::min(shown.top, bound(std::floor(at.y) - kMargin));
            shown.right = std::max(shown.right, bound(std::ceil(at.x) + kMargin) + 1);
            shown.bottom = std::max(shown.bottom, bound(std::ceil(at.y) + kMargin) + 1);
        }
    return shown;
}

} // namespace zre
