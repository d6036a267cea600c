#include "engine/stars/sprite_blend.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "engine/image/multiversion.h"
#include "engine/stars/sprite_shape.h"

namespace zre {

namespace {

constexpr std::size_t kLanes = 8;

/// Eight neighbouring pixels. Handed on by reference alone: by value the calling convention would
/// depend on the processor.
using Lanes = float __attribute__((vector_size(32)));
using Marks = std::int32_t __attribute__((vector_size(32)));
/// The same at any sample of a row. A copy through `memcpy` would go in halves, and reading back
/// what was just written in halves stalls.
using LooseLanes = float __attribute__((vector_size(32), aligned(4), may_alias));

ZR_KERNEL_STEP void load(Lanes& v, const float* from)
{
    v = *reinterpret_cast<const LooseLanes*>(from);
}

ZR_KERNEL_STEP void store(const Lanes& v, float* to)
{
    *reinterpret_cast<LooseLanes*>(to) = v;
}

/// Everything a sprite's rows have in common.
struct Blend
{
    const float* light;
    std::size_t lightSize;
    std::size_t channels;
    const float* cover; ///< null: covers wholly
    std::size_t coverSize;
    std::size_t boxWidth;

    const SpriteTaps* columns;
    const SpriteTaps* rows;

    float* frame; ///< the pixel under the first tap of both axes
    std::size_t frameWidth;
    std::size_t frameSize; ///< samples of a plane
    std::size_t frameLeft; ///< samples of a plane from that pixel on
    std::size_t frameChannels;
    const float* depth; ///< at that pixel; null: nothing hides
    float horizon;

    const std::vector<const float*>* wanted;

    std::size_t planes; ///< channels of the sprite that the frame shows
    std::size_t padded; ///< columns in whole lanes
};

/// A sprite row between its columns: `planes` of light, then the coverage, 0 beyond the columns.
ZR_KERNEL_STEP void sampleUnevenly(const Blend& b, const float* row, std::size_t channels,
                                   std::size_t channel, std::size_t from, float* __restrict out)
{
    const int* const at = b.columns->at.data();
    const int* const next = b.columns->next.data();
    const float* const share = b.columns->share.data();
    for (std::size_t i = from; i < b.columns->count; ++i) {
        const float left = row[static_cast<std::size_t>(at[i]) * channels + channel];
        const float right = row[static_cast<std::size_t>(next[i]) * channels + channel];
        out[i] = left + (right - left) * share[i];
    }
}

/// The red, green and blue of eight pixels from three groups of interleaved samples.
ZR_KERNEL_STEP void separate(const Lanes& a, const Lanes& b, const Lanes& c, Lanes& red,
                             Lanes& green, Lanes& blue)
{
    // Pixels 0 to 5 lie in `a` and `b`, the rest in `c`.
    const Lanes redHalf = __builtin_shufflevector(a, b, 0, 3, 6, 9, 12, 15, -1, -1);
    const Lanes greenHalf = __builtin_shufflevector(a, b, 1, 4, 7, 10, 13, -1, -1, -1);
    const Lanes blueHalf = __builtin_shufflevector(a, b, 2, 5, 8, 11, 14, -1, -1, -1);
    red = __builtin_shufflevector(redHalf, c, 0, 1, 2, 3, 4, 5, 10, 13);
    green = __builtin_shufflevector(greenHalf, c, 0, 1, 2, 3, 4, 8, 11, 14);
    blue = __builtin_shufflevector(blueHalf, c, 0, 1, 2, 3, 4, 9, 12, 15);
}

/// The samples from `from` on, each drawn toward the one `step` further by `share`.
ZR_KERNEL_STEP void between(const float* from, std::size_t step, const Lanes& share, Lanes& out)
{
    Lanes right;
    load(out, from);
    load(right, from + step);
    out = out + (right - out) * share;
}

/// Columns that may be done in whole lanes, given the samples left from the first one on: a lane
/// reads the pixel behind it too, and the last pixel of a row has no neighbour.
ZR_KERNEL_STEP std::size_t wholeLanes(const Blend& b, std::size_t left, std::size_t channels)
{
    const std::size_t pixels = left / channels;
    const std::size_t readable = pixels > 0 ? (pixels - 1) / kLanes * kLanes : 0;
    const std::size_t column = static_cast<std::size_t>(b.columns->at[0]);
    const bool toTheEnd = column + b.columns->count >= b.boxWidth;
    const std::size_t most = toTheEnd ? (b.columns->count - 1) / kLanes * kLanes : b.padded;
    return std::min(readable, most);
}

/// A row of three interleaved colours, or of one, at a share that all columns have in common.
ZR_KERNEL_STEP void lightEvenly(const Blend& b, std::size_t start, float* __restrict out)
{
    const std::size_t first = start + static_cast<std::size_t>(b.columns->at[0]) * b.channels;
    std::size_t whole = wholeLanes(b, b.lightSize - first, b.channels);
    const float one = b.columns->share[0];
    const Lanes share{one, one, one, one, one, one, one, one};
    const float* const row = b.light + first;
    if (b.channels == 3 && b.planes == 3) {
        for (std::size_t i = 0; i < whole; i += kLanes) {
            Lanes v0;
            Lanes v1;
            Lanes v2;
            between(row + 3 * i, 3, share, v0);
            between(row + 3 * i + kLanes, 3, share, v1);
            between(row + 3 * i + 2 * kLanes, 3, share, v2);
            Lanes red;
            Lanes green;
            Lanes blue;
            separate(v0, v1, v2, red, green, blue);
            store(red, out + i);
            store(green, out + b.padded + i);
            store(blue, out + 2 * b.padded + i);
        }
    } else if (b.channels == 1) {
        for (std::size_t i = 0; i < whole; i += kLanes) {
            Lanes v;
            between(row + i, 1, share, v);
            store(v, out + i);
        }
    } else {
        whole = 0;
    }
    for (std::size_t c = 0; c < b.planes; ++c)
        sampleUnevenly(b, b.light + start, b.channels, c, whole, out + c * b.padded);
}

/// Lanes of columns that there are.
ZR_KERNEL_STEP void markColumns(std::size_t left, Marks& marks)
{
    const int count = static_cast<int>(std::min(left, kLanes));
    marks = Marks{0, 1, 2, 3, 4, 5, 6, 7} < count;
}

ZR_KERNEL_STEP void coverEvenly(const Blend& b, std::size_t start, float* __restrict out)
{
    const std::size_t first = start + static_cast<std::size_t>(b.columns->at[0]);
    const std::size_t whole = wholeLanes(b, b.coverSize - first, 1);
    const float one = b.columns->share[0];
    const Lanes share{one, one, one, one, one, one, one, one};
    for (std::size_t i = 0; i < whole; i += kLanes) {
        Lanes v;
        between(b.cover + first + i, 1, share, v);
        Marks marks;
        markColumns(b.columns->count - i, marks);
        v = marks ? v : Lanes{};
        store(v, out + i);
    }
    sampleUnevenly(b, b.cover + start, 1, 0, whole, out);
}

ZR_KERNEL_STEP void sampleRow(const Blend& b, std::size_t row, float* out)
{
    const std::size_t light = row * b.boxWidth * b.channels;
    float* const cover = out + b.planes * b.padded;
    if (b.columns->even) {
        lightEvenly(b, light, out);
        if (b.cover)
            coverEvenly(b, row * b.boxWidth, cover);
        return;
    }
    for (std::size_t c = 0; c < b.planes; ++c)
        sampleUnevenly(b, b.light + light, b.channels, c, 0, out + c * b.padded);
    if (b.cover)
        sampleUnevenly(b, b.cover + row * b.boxWidth, 1, 0, 0, cover);
}

/// Two rows of samples and the share of the lower one.
struct RowPair
{
    const float* top;
    const float* bottom;
    Lanes share;
};

ZR_KERNEL_STEP void between(const RowPair& rows, std::size_t at, Lanes& out)
{
    Lanes bottom;
    load(out, rows.top + at);
    load(bottom, rows.bottom + at);
    out = out + (bottom - out) * rows.share;
}

/// The coverage of eight pixels, 0 to 1, and 0 where structure hides the star. A coverage that is
/// no number stays, and its light is no number above 0 either.
ZR_KERNEL_STEP void coverage(const Blend& b, const RowPair& rows, std::size_t i, const float* depth,
                             Lanes& out)
{
    between(rows, b.planes * b.padded + i, out);
    const Lanes zero{};
    const Lanes one = zero + 1.0f;
    out = out <= zero ? zero : out;
    out = out > one ? one : out;
    if (depth) {
        Lanes scene;
        load(scene, depth);
        out = scene > b.horizon ? zero : out;
    }
}

ZR_KERNEL_STEP bool anyCover(const Lanes& cover)
{
    using Words = std::int64_t __attribute__((vector_size(32)));
    const Words words = reinterpret_cast<const Words&>(cover);
    return ((words[0] | words[1]) | (words[2] | words[3])) != 0;
}

/// Adds eight pixels of the sprite's plane `shown` to the frame; those without light keep their
/// bits.
ZR_KERNEL_STEP void addLanes(const Blend& b, const RowPair& rows, std::size_t i, std::size_t shown,
                             const Lanes& cover, float* frame)
{
    const Lanes zero{};
    const Lanes one = zero + 1.0f;
    Lanes light;
    between(rows, shown * b.padded + i, light);
    light = light * cover;
    Lanes out;
    load(out, frame);
    Lanes sum = out + light;
    sum = sum > one ? one : sum;
    out = light > zero ? sum : out;
    store(out, frame);
}

/// The last pixels of a plane, behind which none may be touched.
ZR_KERNEL_STEP void addLastLanes(const Blend& b, const RowPair& rows, std::size_t i,
                                 std::size_t pixel, std::size_t count)
{
    float samples[kLanes] = {};
    if (b.depth)
        std::copy_n(b.depth + pixel, count, samples);
    Lanes cover;
    coverage(b, rows, i, b.depth ? samples : nullptr, cover);
    for (std::size_t c = 0; c < b.frameChannels; ++c) {
        float* const out = b.frame + c * b.frameSize + pixel;
        std::copy_n(out, count, samples);
        addLanes(b, rows, i, c < b.planes ? c : 0, cover, samples);
        std::copy_n(samples, count, out);
    }
}

ZR_KERNEL_STEP void addRow(const Blend& b, const RowPair& rows, std::size_t start)
{
    for (std::size_t i = 0; i < b.padded; i += kLanes) {
        const std::size_t pixel = start + i;
        if (pixel + kLanes > b.frameLeft) {
            addLastLanes(b, rows, i, pixel, std::min(kLanes, b.columns->count - i));
            continue;
        }
        Lanes cover;
        coverage(b, rows, i, b.depth ? b.depth + pixel : nullptr, cover);
        if (!anyCover(cover))
            continue;
        for (std::size_t c = 0; c < b.frameChannels; ++c)
            addLanes(b, rows, i, c < b.planes ? c : 0, cover, b.frame + c * b.frameSize + pixel);
    }
}

/// Asks for the part of `wanted` that falls to a row.
ZR_KERNEL_STEP void fetchShare(const std::vector<const float*>& wanted, std::size_t row,
                               std::size_t rows)
{
    const std::size_t each = (wanted.size() + rows - 1) / rows;
    const std::size_t end = std::min(wanted.size(), (row + 1) * each);
    for (std::size_t i = row * each; i < end; ++i)
        __builtin_prefetch(wanted[i]);
}

/// Each sprite row is sampled once and serves the frame rows above and below it.
ZR_MULTIVERSION void addSprite(const Blend& b, float* upper, float* lower)
{
    constexpr int kNone = -1;
    int held[2] = {kNone, kNone};
    for (std::size_t j = 0; j < b.rows->count; ++j) {
        const int at = b.rows->at[j];
        const int next = b.rows->next[j];
        if (held[0] != at && held[1] == at) {
            std::swap(upper, lower);
            std::swap(held[0], held[1]);
        }
        if (held[0] != at)
            sampleRow(b, static_cast<std::size_t>(at), upper);
        if (next != at && held[1] != next)
            sampleRow(b, static_cast<std::size_t>(next), lower);
        held[0] = at;
        held[1] = next != at ? next : held[1];
        const float share = b.rows->share[j];
        fetchShare(*b.wanted, j, b.rows->count);
        const RowPair rows{upper, next != at ? lower : upper,
                           Lanes{share, share, share, share, share, share, share, share}};
        addRow(b, rows, j * b.frameWidth);
    }
}

} // namespace

void SpriteBlend::add(const Star& star, const SpriteTaps& columns, const SpriteTaps& rows,
                      Image& frame, const SpriteHiding& hiding,
                      const std::vector<const float*>& wanted)
{
    if (columns.count == 0 || rows.count == 0)
        return;
    const std::size_t width = static_cast<std::size_t>(frame.width);
    const std::size_t start = rows.first * width + columns.first;
    const std::size_t channels = spriteChannels(star);
    const std::size_t frameChannels = static_cast<std::size_t>(frame.channels);
    const bool covered = hasWholeAlpha(star);
    const Blend blend{.light = star.sprite.data(),
                      .lightSize = star.sprite.size(),
                      .channels = channels,
                      .cover = covered ? star.alpha.data() : nullptr,
                      .coverSize = star.alpha.size(),
                      .boxWidth = static_cast<std::size_t>(star.boxW),
                      .columns = &columns,
                      .rows = &rows,
                      .frame = frame.data.data() + start,
                      .frameWidth = width,
                      .frameSize = frame.pixelCount(),
                      .frameLeft = frame.pixelCount() - start,
                      .frameChannels = frameChannels,
                      .depth = hiding.depth ? hiding.depth->data.data() + start : nullptr,
                      .horizon = hiding.horizon,
                      .wanted = &wanted,
                      .planes = std::min(channels, frameChannels),
                      .padded = (columns.count + kLanes - 1) / kLanes * kLanes};
    const std::size_t row = (blend.planes + 1) * blend.padded;
    if (m_scratch.size() < 2 * row)
        m_scratch.resize(2 * row);
    for (float* half : {m_scratch.data(), m_scratch.data() + row}) {
        float* const cover = half + blend.planes * blend.padded;
        std::fill_n(cover, columns.count, 1.0f);
        std::fill(cover + columns.count, cover + blend.padded, 0.0f);
    }
    addSprite(blend, m_scratch.data(), m_scratch.data() + row);
}

} // namespace zre
