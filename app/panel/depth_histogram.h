#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

#include <QWidget>

#include "engine/image/image.h"
#include "engine/params/params.h"

/// How the depths of a map are spread, and what they become before the eyes.
struct DepthHistogram
{
    static constexpr std::size_t kBins = 256;

    std::array<std::int64_t, kBins> bins{}; ///< of equal width over depths 0 to 1
    std::int64_t samples = 0;               ///< their sum
    double parallax = 0.0;                  ///< total disparity over the whole depth, in pixels
    double convergence = 0.0;               ///< the depth of the screen
    double maxDisparity = 0.0;              ///< at most 0: no limit

    /// The depth below which `share` (0 to 1) of the samples lie, to the width of a bin.
    double quantile(double share) const;
    /// The disparity of a depth in pixels, above 0 in front of the screen, within the limit.
    double disparityOf(double depth) const;
    /// The share of samples that the limit holds back.
    double limitedShare() const;
};

/// Of a map of one channel, by the parameters of the eyes. At most about a million samples are
/// taken, in whole rows spread over the map; depths beyond 0 to 1 count to the end bins, those that
/// are no number not at all.
DepthHistogram depthHistogram(const zre::Image& depth, const zre::ZRParams& params);

/// The histogram in words, for those who do not see it.
QString describe(const DepthHistogram& histogram);

/// Draws the spread of depths and, below, of disparities with the screen plane and the limit.
class DepthHistogramView final : public QWidget
{
    Q_OBJECT

public:
    explicit DepthHistogramView(QWidget* parent = nullptr);

    /// Nothing: no depth was made yet.
    void setHistogram(const std::optional<DepthHistogram>& histogram);
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    std::optional<DepthHistogram> m_histogram;
};
