#include "app/panel/depth_histogram.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include <QPainter>

namespace {

constexpr int kPlotHeight = 48;
constexpr int kGap = 10;

/// One plot: shares of samples over a range, in columns of equal width.
struct Plot
{
    std::vector<double> columns;
    QString left;
    QString title;
    QString right;
};

QString pixels(double disparity)
{
    const double shown = std::abs(disparity) < 0.05 ? 0.0 : disparity; // no "-0.0"
    return QString("%1%2 px").arg(shown > 0.0 ? "+" : "").arg(shown, 0, 'f', 1);
}

double centre(std::size_t bin)
{
    return (static_cast<double>(bin) + 0.5) / DepthHistogram::kBins;
}

/// Half the range of the plot of disparities: what the limit leaves out is to be seen as well.
double reach(const DepthHistogram& h)
{
    const double farthest = std::max(h.convergence, 1.0 - h.convergence) * std::abs(h.parallax);
    return std::max({farthest, std::min(h.maxDisparity, farthest * 1.25), 1.0});
}

Plot depthPlot(const DepthHistogram& h, int columns)
{
    Plot plot{std::vector<double>(static_cast<std::size_t>(columns)), "far", "Depth", "near"};
    for (std::size_t bin = 0; bin < h.bins.size(); ++bin)
        plot.columns[std::min(plot.columns.size() - 1,
                              static_cast<std::size_t>(centre(bin) * columns))] +=
            static_cast<double>(h.bins[bin]);
    return plot;
}

Plot disparityPlot(const DepthHistogram& h, int columns)
{
    const double half = reach(h);
    Plot plot{std::vector<double>(static_cast<std::size_t>(columns)), pixels(-half),
              "Disparity, 0 at the line", pixels(half)};
    // A bin is spread over the columns it covers, so that a wide one leaves no comb.
    constexpr int kParts = 8;
    for (std::size_t bin = 0; bin < h.bins.size(); ++bin)
        for (int part = 0; part < kParts; ++part) {
            const double depth =
                (static_cast<double>(bin) + (part + 0.5) / kParts) / DepthHistogram::kBins;
            const double at = (h.disparityOf(depth) / half + 1.0) / 2.0;
            const int column = std::clamp(static_cast<int>(at * columns), 0, columns - 1);
            plot.columns[static_cast<std::size_t>(column)] +=
                static_cast<double>(h.bins[bin]) / kParts;
        }
    return plot;
}

/// Square roots, so that the few pixels of a bright core show beside a sky of one depth.
void drawColumns(QPainter& painter, const QRectF& box, const Plot& plot, const QColor& color)
{
    const double most = *std::max_element(plot.columns.begin(), plot.columns.end());
    if (most <= 0.0)
        return;
    const double width = box.width() / static_cast<double>(plot.columns.size());
    for (std::size_t i = 0; i < plot.columns.size(); ++i) {
        const double height = box.height() * std::sqrt(plot.columns[i] / most);
        painter.fillRect(QRectF(box.left() + static_cast<double>(i) * width, box.bottom() - height,
                                width, height),
                         color);
    }
}

void drawCaptions(QPainter& painter, const QRectF& line, const Plot& plot)
{
    painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter, plot.left);
    painter.drawText(line, Qt::AlignHCenter | Qt::AlignVCenter, plot.title);
    painter.drawText(line, Qt::AlignRight | Qt::AlignVCenter, plot.right);
}

void drawMark(QPainter& painter, const QRectF& box, double share, Qt::PenStyle style)
{
    const double x = box.left() + share * box.width();
    painter.setPen(QPen(painter.pen().color(), 1.0, style));
    painter.drawLine(QPointF(x, box.top()), QPointF(x, box.bottom()));
}

} // namespace

double DepthHistogram::quantile(double share) const
{
    double below = 0.0;
    for (std::size_t bin = 0; bin < bins.size(); ++bin) {
        below += static_cast<double>(bins[bin]);
        if (bins[bin] > 0 && below >= share * static_cast<double>(samples))
            return centre(bin);
    }
    return 0.0;
}

double DepthHistogram::disparityOf(double depth) const
{
    const double free = (depth - convergence) * parallax;
    return maxDisparity > 0.0 ? std::clamp(free, -maxDisparity, maxDisparity) : free;
}

double DepthHistogram::limitedShare() const
{
    if (!(maxDisparity > 0.0) || samples == 0)
        return 0.0;
    std::int64_t limited = 0;
    for (std::size_t bin = 0; bin < bins.size(); ++bin)
        if (std::abs((centre(bin) - convergence) * parallax) > maxDisparity)
            limited += bins[bin];
    return static_cast<double>(limited) / static_cast<double>(samples);
}

DepthHistogram depthHistogram(const zre::Image& depth, const zre::ZRParams& params)
{
    DepthHistogram out;
    if (!depth.usable())
        return out;
    constexpr std::size_t kMostSamples = 1u << 20;
    const std::size_t step = 1 + depth.pixelCount() / kMostSamples;
    const auto width = static_cast<std::size_t>(depth.width);
    for (std::size_t y = 0; y < static_cast<std::size_t>(depth.height); y += step) {
        const float* row = depth.plane(0) + y * width;
        for (std::size_t x = 0; x < width; ++x) {
            if (std::isnan(row[x]))
                continue;
            const float bounded = std::clamp(row[x], 0.0f, 1.0f);
            ++out.bins[std::min<std::size_t>(255, static_cast<std::size_t>(bounded * 256.0f))];
            ++out.samples;
        }
    }
    out.parallax = static_cast<double>(params.parallaxAmount);
    out.maxDisparity = static_cast<double>(params.maxDisparity);
    out.convergence =
        params.autoConvergence ? out.quantile(0.5) : static_cast<double>(params.convergence);
    return out;
}

QString describe(const DepthHistogram& h)
{
    const double low = h.quantile(0.01);
    const double high = h.quantile(0.99);
    QString text = QString("Depths from %1 to %2 without the outermost percent, half of them below "
                           "%3; disparities from %4 to %5, above zero in front of the screen.")
                       .arg(low, 0, 'f', 2)
                       .arg(high, 0, 'f', 2)
                       .arg(h.quantile(0.5), 0, 'f', 2)
                       .arg(pixels(h.disparityOf(low)), pixels(h.disparityOf(high)));
    if (h.limitedShare() > 0.0)
        text += QString(" Max disparity holds back %1 % of the picture.")
                    .arg(100.0 * h.limitedShare(), 0, 'f', 1);
    return text;
}

DepthHistogramView::DepthHistogramView(QWidget* parent)
    : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    setAccessibleName("Spread of depth and disparity");
    setHistogram({});
}

void DepthHistogramView::setHistogram(const std::optional<DepthHistogram>& histogram)
{
    m_histogram = histogram && histogram->samples > 0 ? histogram : std::nullopt;
    setAccessibleDescription(m_histogram ? describe(*m_histogram)
                                         : QString("Shown once a view with depth is rendered."));
    setToolTip(accessibleDescription());
    update();
}

QSize DepthHistogramView::sizeHint() const
{
    return {200, 2 * (kPlotHeight + fontMetrics().height()) + kGap + 2};
}

void DepthHistogramView::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const QColor ink = palette().color(QPalette::WindowText);
    painter.setPen(ink);
    if (!m_histogram) {
        painter.drawText(rect(), Qt::AlignCenter | Qt::TextWordWrap, accessibleDescription());
        return;
    }
    const DepthHistogram& h = *m_histogram;
    const int columns = std::clamp(width(), 16, static_cast<int>(DepthHistogram::kBins));
    const double half = reach(h);
    const QRectF upper(0, 0, width(), kPlotHeight);
    const QRectF lower = upper.translated(0, kPlotHeight + fontMetrics().height() + kGap);
    for (const QRectF& box : {upper, lower})
        painter.fillRect(box, palette().color(QPalette::Base));
    const Plot depths = depthPlot(h, columns);
    const Plot disparities = disparityPlot(h, columns);
    const QColor bars = palette().color(QPalette::Highlight);
    drawColumns(painter, upper, depths, bars);
    drawColumns(painter, lower, disparities, bars);
    drawMark(painter, upper, std::clamp(h.convergence, 0.0, 1.0), Qt::SolidLine);
    drawMark(painter, lower, 0.5, Qt::SolidLine);
    if (h.maxDisparity > 0.0 && h.maxDisparity < half)
        for (const double side : {-1.0, 1.0})
            drawMark(painter, lower, (side * h.maxDisparity / half + 1.0) / 2.0, Qt::DashLine);
    const auto below = [this](const QRectF& box) {
        return QRectF(0, box.bottom() + 1, width(), fontMetrics().height());
    };
    drawCaptions(painter, below(upper), depths);
    drawCaptions(painter, below(lower), disparities);
}
