#include "engine/post/post.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "engine/image/multiversion.h"
#include "engine/image/power.h"

namespace zre {

namespace {

constexpr std::size_t kStrip = 512; // three planes of doubles stay in the first-level cache
using Strip = std::array<double, kStrip>;

/// The ten controls as they stand in the parameters.
struct Controls
{
    double black = 0.0;
    double white = 1.0;
    double gamma = 1.0;
    double brightness = 0.0;
    double contrast = 0.0;
    double temperature = 0.0;
    double tint = 0.0;
    double saturation = 0.0;
    double vibrance = 0.0;
    double hueDeg = 0.0;

    bool operator==(const Controls&) const = default;
};

struct ToneCurve
{
    double black;
    double scale;
    double invGamma; // 1 when the midtones stay
    double brightness;
    double contrast;
};

/// Everything that depends on the controls alone.
struct Grade
{
    ToneCurve tone;
    bool balances;
    double redGain, greenGain, blueGain;
    bool saturates;
    double saturationGain;
    double vibrance;
    bool rotates;
    double turns; // hue rotation in full circles
};

} // namespace

static Controls controlsOf(const ZRParams& p)
{
    return {p.postBlack,       p.postWhite, p.postGamma,      p.postBrightness, p.postContrast,
            p.postTemperature, p.postTint,  p.postSaturation, p.postVibrance,   p.postHue};
}

/// A control that is not a finite number takes its neutral value.
static Controls finiteControls(const ZRParams& p)
{
    Controls controls = controlsOf(p);
    const Controls neutral;
    for (double Controls::*control :
         {&Controls::black, &Controls::white, &Controls::gamma, &Controls::brightness,
          &Controls::contrast, &Controls::temperature, &Controls::tint, &Controls::saturation,
          &Controls::vibrance, &Controls::hueDeg})
        if (!std::isfinite(controls.*control))
            controls.*control = neutral.*control;
    return controls;
}

static Grade gradeOf(const Controls& c)
{
    Grade grade{};
    const double range = c.white - c.black;
    grade.tone.black = c.black;
    grade.tone.scale = range < 0.0001 ? 10000.0 : 1.0 / range;
    grade.tone.invGamma = c.gamma > 0.01 ? 1.0 / c.gamma : 100.0;
    grade.tone.brightness = c.brightness;
    grade.tone.contrast = 1.0 + c.contrast;
    grade.balances = c.temperature != 0.0 || c.tint != 0.0;
    grade.redGain = 1.0 + 0.3 * c.temperature;
    grade.greenGain = 1.0 - 0.3 * c.tint;
    grade.blueGain = 1.0 - 0.3 * c.temperature;
    grade.saturates = c.saturation != 0.0 || c.vibrance != 0.0;
    grade.saturationGain = 1.0 + c.saturation;
    grade.vibrance = c.vibrance;
    grade.rotates = c.hueDeg != 0.0;
    grade.turns = c.hueDeg / 360.0;
    return grade;
}

/// Bound to 0 to 1; a NaN gives 0.
static inline double unit(double v)
{
    const double atMostOne = v < 1.0 ? v : 1.0;
    return v > 0.0 ? atMostOne : 0.0;
}

ZR_MULTIVERSION static void stretchLevels(const float* __restrict samples,
                                          double* __restrict values, std::size_t size,
                                          const ToneCurve& tone)
{
    const double black = tone.black;
    const double scale = tone.scale;
    for (std::size_t i = 0; i < size; ++i)
        values[i] = unit((samples[i] - black) * scale);
}

ZR_MULTIVERSION static void applyContrast(double* values, std::size_t size, const ToneCurve& tone)
{
    const double brightness = tone.brightness;
    const double contrast = tone.contrast;
    for (std::size_t i = 0; i < size; ++i)
        values[i] = unit((values[i] + brightness - 0.5) * contrast + 0.5);
}

static void applyTone(const float* samples, double* values, std::size_t size, const ToneCurve& tone)
{
    stretchLevels(samples, values, size, tone);
    if (tone.invGamma != 1.0)
        raiseToPower(values, size, tone.invGamma);
    applyContrast(values, size, tone);
}

static inline double greatest(double r, double g, double b)
{
    const double ofTwo = r > g ? r : g;
    return ofTwo > b ? ofTwo : b;
}

static inline double least(double r, double g, double b)
{
    const double ofTwo = r < g ? r : g;
    return ofTwo < b ? ofTwo : b;
}

ZR_MULTIVERSION static void multiply(double* values, std::size_t size, double gain)
{
    for (std::size_t i = 0; i < size; ++i)
        values[i] = unit(values[i] * gain);
}

ZR_MULTIVERSION static void saturate(double* __restrict r, double* __restrict g,
                                     double* __restrict b, std::size_t size, double saturationGain,
                                     double vibrance)
{
    for (std::size_t i = 0; i < size; ++i) {
        const double mx = greatest(r[i], g[i], b[i]);
        const double chroma = mx - least(r[i], g[i], b[i]);
        const double luma = 0.2126 * r[i] + 0.7152 * g[i] + 0.0722 * b[i];
        const double divisor = mx > 1e-9 ? mx : 1.0;
        const double paleness = mx > 1e-9 ? 1.0 - chroma / divisor : 1.0;
        const double factor = (1.0 + vibrance * paleness) * saturationGain;
        r[i] = unit(luma + (r[i] - luma) * factor);
        g[i] = unit(luma + (g[i] - luma) * factor);
        b[i] = unit(luma + (b[i] - luma) * factor);
    }
}

/// Hue in full circles, 0 for grey; `mx` and `chroma` are the greatest of the three and what lies
/// between the extremes. The choices are products with 0 and 1, which stay vectors.
static inline double hueOf(double r, double g, double b, double mx, double chroma)
{
    const double isRed = mx == r ? 1.0 : 0.0;
    const double isGreen = (mx == g ? 1.0 : 0.0) * (1.0 - isRed);
    const double isBlue = 1.0 - isRed - isGreen;
    const double isGrey = chroma < 1e-9 ? 1.0 : 0.0;
    const double isPurple = b > g ? 1.0 : 0.0;
    const double difference = isRed * (g - b) + isGreen * (b - r) + isBlue * (r - g);
    const double start = isRed * isPurple * 6.0 + isGreen * 2.0 + isBlue * 4.0;
    return (1.0 - isGrey) * (difference / (chroma + isGrey) + start) / 6.0;
}

/// The channel that is full at `sextant` of the hue circle and empty opposite: the six sectors of
/// the conversion from HSV in one trapezoid.
static inline double channelOf(double sextant, double mx, double saturation)
{
    const double wrapped = sextant >= 6.0 ? sextant - 6.0 : sextant;
    const double falling = 4.0 - wrapped;
    return mx - mx * saturation * unit(wrapped < falling ? wrapped : falling);
}

ZR_MULTIVERSION static void rotateHue(double* __restrict red, double* __restrict green,
                                      double* __restrict blue, std::size_t size, double turns)
{
    for (std::size_t i = 0; i < size; ++i) {
        const double r = red[i];
        const double g = green[i];
        const double b = blue[i];
        const double mx = greatest(r, g, b);
        const double chroma = mx - least(r, g, b);
        const double divisor = mx > 1e-9 ? mx : 1.0;
        const double saturation = mx > 1e-9 ? chroma / divisor : 0.0;
        const double hue = hueOf(r, g, b, mx, chroma) + turns;
        const double sextant = (hue - std::floor(hue)) * 6.0;
        red[i] = channelOf(sextant + 5.0, mx, saturation);
        green[i] = channelOf(sextant + 3.0, mx, saturation);
        blue[i] = channelOf(sextant + 1.0, mx, saturation);
    }
}

ZR_MULTIVERSION static void storeUnit(const double* __restrict values, float* __restrict samples,
                                      std::size_t size)
{
    for (std::size_t i = 0; i < size; ++i)
        samples[i] = static_cast<float>(unit(values[i]));
}

static void gradeGrey(const Grade& grade, float* samples, std::size_t n)
{
    Strip values;
    for (std::size_t i = 0; i < n; i += kStrip) {
        const std::size_t size = std::min(kStrip, n - i);
        applyTone(samples + i, values.data(), size, grade.tone);
        storeUnit(values.data(), samples + i, size);
    }
}

static void gradeStrip(const Grade& grade, float* red, float* green, float* blue, std::size_t size)
{
    Strip r;
    Strip g;
    Strip b;
    applyTone(red, r.data(), size, grade.tone);
    applyTone(green, g.data(), size, grade.tone);
    applyTone(blue, b.data(), size, grade.tone);
    if (grade.balances) {
        multiply(r.data(), size, grade.redGain);
        multiply(g.data(), size, grade.greenGain);
        multiply(b.data(), size, grade.blueGain);
    }
    if (grade.saturates)
        saturate(r.data(), g.data(), b.data(), size, grade.saturationGain, grade.vibrance);
    if (grade.rotates)
        rotateHue(r.data(), g.data(), b.data(), size, grade.turns);
    storeUnit(r.data(), red, size);
    storeUnit(g.data(), green, size);
    storeUnit(b.data(), blue, size);
}

bool postIsIdentity(const ZRParams& p)
{
    return controlsOf(p) == Controls{};
}

void applyPost(Image& img, const ZRParams& p)
{
    if (!p.postEnabled || !img.usable())
        return;
    const Controls controls = finiteControls(p);
    if (controls == Controls{})
        return;
    const Grade grade = gradeOf(controls);
    const std::size_t n = img.pixelCount();
    if (img.channels < 3) {
        gradeGrey(grade, img.plane(0), n);
        return;
    }
    for (std::size_t i = 0; i < n; i += kStrip)
        gradeStrip(grade, img.plane(0) + i, img.plane(1) + i, img.plane(2) + i,
                   std::min(kStrip, n - i));
}

} // namespace zre
