#include "tests/engine/stereo/naive_eye.h"

#include <algorithm>
#include <cmath>
#include <utility>

using zre::Image;

namespace naive {

static float& at(Image& img, int c, int x, int y)
{
    return img.plane(c)[std::size_t(y) * std::size_t(img.width) + std::size_t(x)];
}

static float at(const Image& img, int c, int x, int y)
{
    return img.plane(c)[std::size_t(y) * std::size_t(img.width) + std::size_t(x)];
}

static void shapeLike(const Image& src, Image& out, Image& outDepth)
{
    if (!out.sameSize(src) || out.channels != src.channels)
        out = src;
    if (!outDepth.sameSize(src))
        outDepth = Image(src.width, src.height, 0);
}

void renderHorizontal(const Image& src, const Image& depth, const Eye& eye, Image& out,
                      Image& outDepth)
{
    shapeLike(src, out, outDepth);
    const int w = src.width;
    std::vector<int> idx(std::size_t(w), 0);
    std::vector<float> z(std::size_t(w), 0.0f);
    for (int y = 0; y < src.height; ++y) {
        std::fill(idx.begin(), idx.end(), -1);
        std::fill(z.begin(), z.end(), -1e30f);
        for (int x = 0; x < w; ++x) {
            const float d = at(depth, 0, x, y);
            double shift = (d - eye.convergence) * eye.offsetX * 0.5 * eye.parallax;
            if (eye.maxDisparity > 0)
                shift = std::clamp(shift, -eye.maxDisparity * 0.5, eye.maxDisparity * 0.5);
            const double tx = std::floor(x + shift + 0.5);
            if (tx >= 0 && tx < w && d > z[std::size_t(tx)]) {
                idx[std::size_t(tx)] = x;
                z[std::size_t(tx)] = d;
            }
        }
        for (int x = 0; x < w; ++x) {
            const int from = idx[std::size_t(x)];
            for (int c = 0; c < src.channels; ++c)
                at(out, c, x, y) = from < 0 ? 0.0f : at(src, c, from, y);
            at(outDepth, 0, x, y) = from < 0 ? -1.0f : z[std::size_t(x)];
        }
        for (int i = 0; i < w; ++i) {
            if (idx[std::size_t(i)] >= 0)
                continue;
            int j = i;
            while (j < w && idx[std::size_t(j)] < 0)
                ++j;
            const int left = i - 1;
            const int right = j;
            if (left < 0 && right >= w)
                break;
            int from = left < 0 ? right : left;
            if (left >= 0 && right < w && z[std::size_t(right)] < z[std::size_t(left)])
                from = right;
            for (int x = i; x < j; ++x) {
                for (int c = 0; c < src.channels; ++c)
                    at(out, c, x, y) = at(out, c, from, y);
                at(outDepth, 0, x, y) = z[std::size_t(from)];
            }
            i = j;
        }
    }
}

struct Motion
{
    double x;
    double y;
    double magnification;
};

static Motion motionOf(const Eye& eye, const Image& img, int x, int y, float d)
{
    const double centerX = eye.centerX < 0 ? img.width * 0.5 : eye.centerX;
    const double centerY = eye.centerY < 0 ? img.height * 0.5 : eye.centerY;
    const double e = d - eye.convergence;
    Motion m{eye.offsetX * 0.5 * eye.parallax * e, eye.offsetY * 0.5 * eye.parallax * e, 1.0};
    if (eye.zoom != 0) {
        const double k = std::max(e, 0.0) * eye.zoom;
        m.x += (x - centerX) * k;
        m.y += (y - centerY) * k;
        if (1.0 + k > 1e-6)
            m.magnification = 1.0 + k;
    }
    const double length = std::sqrt(m.x * m.x + m.y * m.y);
    if (eye.maxDisparity > 0 && length > eye.maxDisparity * 0.5) {
        m.x *= eye.maxDisparity * 0.5 / length;
        m.y *= eye.maxDisparity * 0.5 / length;
    }
    return m;
}

static float bilinear(const Image& src, int c, double u, double v)
{
    const int x = int(u);
    const int y = int(v);
    const int right = std::min(x + 1, src.width - 1);
    const int below = std::min(y + 1, src.height - 1);
    const double a = at(src, c, x, y);
    const double b = at(src, c, right, y);
    const double p = at(src, c, x, below);
    const double q = at(src, c, right, below);
    const double top = a + (b - a) * (u - x);
    const double bottom = p + (q - p) * (u - x);
    return float(top + (bottom - top) * (v - y));
}

namespace {

struct Landed
{
    std::vector<long long> idx;
    std::vector<float> z;
};

} // namespace

static Landed scatter(const Image& depth, const Eye& eye)
{
    const int w = depth.width;
    const int h = depth.height;
    Landed landed{std::vector<long long>(depth.pixelCount(), -1),
                  std::vector<float>(depth.pixelCount(), -1e30f)};
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            const float d = at(depth, 0, x, y);
            const Motion m = motionOf(eye, depth, x, y, d);
            const double fx = x + m.x;
            const double fy = y + m.y;
            const double nearX = std::floor(fx + 0.5);
            const double nearY = std::floor(fy + 0.5);
            const std::pair<double, double> cells[] = {{nearX, nearY},
                                                       {std::floor(fx), std::floor(fy)},
                                                       {std::floor(fx) + 1, std::floor(fy)},
                                                       {std::floor(fx), std::floor(fy) + 1},
                                                       {std::floor(fx) + 1, std::floor(fy) + 1}};
            for (int k = 0; k < (eye.splat ? 5 : 1); ++k) {
                const auto [cx, cy] = cells[k];
                if (k > 0 && cells[k] == cells[0])
                    continue;
                if (!(cx >= 0 && cx < w && cy >= 0 && cy < h))
                    continue;
                const std::size_t cell = std::size_t(cy) * std::size_t(w) + std::size_t(cx);
                if (k == 0 ? d > landed.z[cell] : landed.idx[cell] < 0) {
                    landed.idx[cell] = static_cast<long long>(y) * w + x;
                    landed.z[cell] = d;
                }
            }
        }
    return landed;
}

/// The winning cell for a hole, or -1.
static long long farthestAlong(const Landed& landed, const Image& img, const Eye& eye, int x, int y)
{
    const int w = img.width;
    const int h = img.height;
    const double m0 = std::sqrt(eye.offsetX * eye.offsetX + eye.offsetY * eye.offsetY);
    double reach = 8;
    if (m0 > 1e-9)
        reach = std::max(8.0, std::ceil(eye.parallax * 0.5 * m0) + 4);
    if (eye.zoom != 0)
        reach = std::max(
            reach,
            std::ceil(0.5 * std::sqrt(double(w) * w + double(h) * h) * std::fabs(eye.zoom)) + 4);
    if (eye.maxDisparity > 0)
        reach = std::min(reach, std::ceil(eye.maxDisparity * 0.5) + 4);
    reach = std::min(reach, 96.0);

    std::vector<std::pair<double, double>> directions;
    if (m0 > 1e-9)
        directions.push_back({eye.offsetX / m0, eye.offsetY / m0});
    const double dx = x - (eye.centerX < 0 ? w * 0.5 : eye.centerX);
    const double dy = y - (eye.centerY < 0 ? h * 0.5 : eye.centerY);
    const double distance = std::sqrt(dx * dx + dy * dy);
    if (eye.zoom != 0 && distance > 1e-6)
        directions.push_back({dx / distance, dy / distance});

    long long winner = -1;
    for (const auto& [vx, vy] : directions) {
        bool found[2] = {false, false};
        for (int k = 1; k <= reach; ++k)
            for (int side = 0; side < 2; ++side) {
                const double step = side == 0 ? k : -k;
                const double cx = std::floor(x + step * vx + 0.5);
                const double cy = std::floor(y + step * vy + 0.5);
                if (found[side] || !(cx >= 0 && cx < w && cy >= 0 && cy < h))
                    continue;
                const std::size_t cell = std::size_t(cy) * std::size_t(w) + std::size_t(cx);
                if (landed.idx[cell] < 0)
                    continue;
                found[side] = true;
                if (winner < 0 || landed.z[cell] < landed.z[std::size_t(winner)])
                    winner = static_cast<long long>(cell);
            }
    }
    return winner;
}

void render2D(const Image& src, const Image& depth, const Eye& eye, Image& out, Image& outDepth)
{
    shapeLike(src, out, outDepth);
    const Landed landed = scatter(depth, eye);
    for (int y = 0; y < src.height; ++y)
        for (int x = 0; x < src.width; ++x) {
            const std::size_t cell = std::size_t(y) * std::size_t(src.width) + std::size_t(x);
            const long long from = landed.idx[cell];
            at(outDepth, 0, x, y) = from < 0 ? -1.0f : landed.z[cell];
            double u = 0;
            double v = 0;
            if (from >= 0) {
                const int sx = int(from % src.width);
                const int sy = int(from / src.width);
                const Motion m = motionOf(eye, src, sx, sy, landed.z[cell]);
                u = std::clamp(sx + (x - (sx + m.x)) / m.magnification, sx - 1.0, sx + 1.0);
                v = std::clamp(sy + (y - (sy + m.y)) / m.magnification, sy - 1.0, sy + 1.0);
                u = std::clamp(u, 0.0, src.width - 1.0);
                v = std::clamp(v, 0.0, src.height - 1.0);
            }
            for (int c = 0; c < src.channels; ++c)
                at(out, c, x, y) = from < 0 ? 0.0f : bilinear(src, c, u, v);
        }
    for (int y = 0; y < src.height; ++y)
        for (int x = 0; x < src.width; ++x) {
            const std::size_t cell = std::size_t(y) * std::size_t(src.width) + std::size_t(x);
            if (landed.idx[cell] >= 0)
                continue;
            const long long winner = farthestAlong(landed, src, eye, x, y);
            if (winner < 0)
                continue;
            for (int c = 0; c < src.channels; ++c)
                out.plane(c)[cell] = out.plane(c)[winner];
            outDepth.plane(0)[cell] = landed.z[std::size_t(winner)];
        }
}

void makeAnaglyph(const Image& left, const Image& right, Image& out, int mode, double gainR,
                  double gainG, double gainB)
{
    if (!out.sameSize(left) || out.channels != 3)
        out = Image(left.width, left.height, 1);
    const auto sample = [](const Image& eye, int c, std::size_t i) {
        return double(eye.plane(eye.channels == 1 ? 0 : c)[i]);
    };
    for (std::size_t i = 0; i < left.pixelCount(); ++i) {
        const double lr = sample(left, 0, i), lg = sample(left, 1, i), lb = sample(left, 2, i);
        const double rr = sample(right, 0, i), rg = sample(right, 1, i), rb = sample(right, 2, i);
        const double lumaL = 0.299 * lr + 0.587 * lg + 0.114 * lb;
        const double lumaR = 0.299 * rr + 0.587 * rg + 0.114 * rb;
        double r = lr, g = rg, b = rb;
        if (mode == 1 || mode == 2)
            r = lumaL;
        if (mode == 2)
            g = b = lumaR;
        if (mode == 3) {
            r = 0.437 * lr + 0.449 * lg + 0.164 * lb - 0.011 * rr - 0.032 * rg - 0.007 * rb;
            g = -0.062 * lr - 0.062 * lg - 0.024 * lb + 0.377 * rr + 0.761 * rg + 0.009 * rb;
            b = -0.048 * lr - 0.05 * lg - 0.017 * lb - 0.026 * rr - 0.093 * rg + 1.234 * rb;
        }
        out.plane(0)[i] = float(std::clamp(r * gainR, 0.0, 1.0));
        out.plane(1)[i] = float(std::clamp(g * gainG, 0.0, 1.0));
        out.plane(2)[i] = float(std::clamp(b * gainB, 0.0, 1.0));
    }
}

} // namespace naive
