#pragma once

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

#include "engine/params/params.h"

namespace zre {

/// The legal range and default of one parameter: the single truth for sliders, clamping and the
/// defaults.
struct ParamRange
{
    const char* name;
    double min;
    double max;
    double def;
    double (*get)(const ZRParams&);
};

namespace detail {
template <auto Member>
double field(const ZRParams& p)
{
    return static_cast<double>(p.*Member);
}
} // namespace detail

// clang-format off
inline constexpr std::array kParamRanges{
    ParamRange{"aiDepthWeight", 0.0, 1.0, 0.0, detail::field<&ZRParams::aiDepthWeight>},
    ParamRange{"anaglyphMode", 0.0, 3.0, 0.0, detail::field<&ZRParams::anaglyphMode>},
    ParamRange{"colorDepthGamma", 0.1, 5.0, 1.0, detail::field<&ZRParams::colorDepthGamma>},
    ParamRange{"colorDepthGaussian", 0.0, 50.0, 0.0, detail::field<&ZRParams::colorDepthGaussian>},
    ParamRange{"colorDepthSmoothness", 0.0, 50.0, 0.0, detail::field<&ZRParams::colorDepthSmoothness>},
    ParamRange{"colorDepthWeight", 0.0, 1.0, 0.0, detail::field<&ZRParams::colorDepthWeight>},
    ParamRange{"convergence", 0.0, 1.0, 0.5, detail::field<&ZRParams::convergence>},
    ParamRange{"depthGamma", 0.1, 5.0, 1.0, detail::field<&ZRParams::depthGamma>},
    ParamRange{"depthMapBlend", 0.0, 1.0, 0.0, detail::field<&ZRParams::depthMapBlend>},
    ParamRange{"depthMapMode", 0.0, 5.0, 0.0, detail::field<&ZRParams::depthMapMode>},
    ParamRange{"depthModelBlend", 0.0, 1.0, 1.0, detail::field<&ZRParams::depthModelBlend>},
    ParamRange{"depthModelMode", 0.0, 5.0, 0.0, detail::field<&ZRParams::depthModelMode>},
    ParamRange{"edgePreservation", 0.0, 1.0, 0.5, detail::field<&ZRParams::edgePreservation>},
    ParamRange{"farChannel", 0.0, 2.0, 2.0, detail::field<&ZRParams::farChannel>},
    ParamRange{"luminanceWeight", 0.0, 1.0, 1.0, detail::field<&ZRParams::luminanceWeight>},
    ParamRange{"manualAnchorDepth", 0.0, 1.0, 0.5, detail::field<&ZRParams::manualAnchorDepth>},
    ParamRange{"maxDisparity", 0.0, 200.0, 0.0, detail::field<&ZRParams::maxDisparity>},
    ParamRange{"narrowbandWeight", 0.0, 1.0, 0.0, detail::field<&ZRParams::narrowbandWeight>},
    ParamRange{"nearChannel", 0.0, 2.0, 0.0, detail::field<&ZRParams::nearChannel>},
    ParamRange{"objectFit", 0.0, 1.0, 0.0, detail::field<&ZRParams::objectFit>},
    ParamRange{"objectThickness", 0.0, 1.0, 1.0, detail::field<&ZRParams::objectThickness>},
    ParamRange{"paintedGamma", 0.1, 5.0, 1.0, detail::field<&ZRParams::paintedGamma>},
    ParamRange{"paintedSmoothness", 0.0, 50.0, 0.0, detail::field<&ZRParams::paintedSmoothness>},
    ParamRange{"parallaxAmount", 0.0, 100.0, 20.0, detail::field<&ZRParams::parallaxAmount>},
    ParamRange{"postBlack", 0.0, 1.0, 0.0, detail::field<&ZRParams::postBlack>},
    ParamRange{"postBrightness", -1.0, 1.0, 0.0, detail::field<&ZRParams::postBrightness>},
    ParamRange{"postContrast", -1.0, 1.0, 0.0, detail::field<&ZRParams::postContrast>},
    ParamRange{"postGamma", 0.1, 5.0, 1.0, detail::field<&ZRParams::postGamma>},
    ParamRange{"postHue", -180.0, 180.0, 0.0, detail::field<&ZRParams::postHue>},
    ParamRange{"postSaturation", -1.0, 1.0, 0.0, detail::field<&ZRParams::postSaturation>},
    ParamRange{"postTemperature", -1.0, 1.0, 0.0, detail::field<&ZRParams::postTemperature>},
    ParamRange{"postTint", -1.0, 1.0, 0.0, detail::field<&ZRParams::postTint>},
    ParamRange{"postVibrance", -1.0, 1.0, 0.0, detail::field<&ZRParams::postVibrance>},
    ParamRange{"postWhite", 0.0, 1.0, 1.0, detail::field<&ZRParams::postWhite>},
    ParamRange{"smoothness", 0.0, 50.0, 2.0, detail::field<&ZRParams::smoothness>},
    ParamRange{"starBrightness", 0.05, 8.0, 1.0, detail::field<&ZRParams::starBrightness>},
    ParamRange{"starCatalogKeepCount", 0.0, 100000.0, 50.0, detail::field<&ZRParams::starCatalogKeepCount>},
    ParamRange{"starCatalogKeepMetric", 0.0, 1.0, 1.0, detail::field<&ZRParams::starCatalogKeepMetric>},
    ParamRange{"starCatalogKeepPercent", 0.0, 100.0, 1.0, detail::field<&ZRParams::starCatalogKeepPercent>},
    ParamRange{"starCatalogKeepPick", 0.0, 1.0, 0.0, detail::field<&ZRParams::starCatalogKeepPick>},
    ParamRange{"starCatalogUnmatched", 0.0, 2.0, 0.0, detail::field<&ZRParams::starCatalogUnmatched>},
    ParamRange{"starCompanionWipe", 0.0, 1.0, 0.0, detail::field<&ZRParams::starCompanionWipe>},
    ParamRange{"starDepthExaggeration", 1.0, 4.0, 1.0, detail::field<&ZRParams::starDepthExaggeration>},
    ParamRange{"starDepthModel", 0.0, 3.0, 2.0, detail::field<&ZRParams::starDepthModel>},
    ParamRange{"starDepthRange", 0.0, 1.0, 0.6, detail::field<&ZRParams::starDepthRange>},
    ParamRange{"starDepthScale", 0.0, 1.0, 0.0, detail::field<&ZRParams::starDepthScale>},
    ParamRange{"starEdgeGlow", 0.0, 3.0, 1.0, detail::field<&ZRParams::starEdgeGlow>},
    ParamRange{"starEdgeSoftness", 0.0, 3.0, 1.0, detail::field<&ZRParams::starEdgeSoftness>},
    ParamRange{"starFaintBoost", 0.0, 3.0, 0.0, detail::field<&ZRParams::starFaintBoost>},
    ParamRange{"starFloatation", 0.0, 1.0, 1.0, detail::field<&ZRParams::starFloatation>},
    ParamRange{"starFwhm", 0.6, 16.0, 1.5, detail::field<&ZRParams::starFwhm>},
    ParamRange{"starLimitMag", 6.0, 20.0, 15.0, detail::field<&ZRParams::starLimitMag>},
    ParamRange{"starOcclusion", 0.0, 1.0, 0.0, detail::field<&ZRParams::starOcclusion>},
    ParamRange{"starPlane", 0.0, 1.0, 0.9, detail::field<&ZRParams::starPlane>},
    ParamRange{"structureScale", 0.5, 50.0, 2.0, detail::field<&ZRParams::structureScale>},
    ParamRange{"structureWeight", 0.0, 1.0, 0.3, detail::field<&ZRParams::structureWeight>},
    ParamRange{"wiggleAmplitude", 0.0, 20.0, 3.0, detail::field<&ZRParams::wiggleAmplitude>},
    ParamRange{"wiggleFps", 1.0, 60.0, 20.0, detail::field<&ZRParams::wiggleFps>},
    ParamRange{"wiggleFrames", 2.0, 120.0, 30.0, detail::field<&ZRParams::wiggleFrames>},
    ParamRange{"wigglePathAngle", 0.0, 360.0, 0.0, detail::field<&ZRParams::wigglePathAngle>},
};
// clang-format on

static_assert(kParamRanges.size() == 60);
static_assert(std::is_sorted(kParamRanges.begin(), kParamRanges.end(),
                             [](const ParamRange& a, const ParamRange& b) {
                                 return std::string_view(a.name) < std::string_view(b.name);
                             }));
static_assert(std::all_of(kParamRanges.begin(), kParamRanges.end(), [](const ParamRange& row) {
    return row.min <= row.def && row.def <= row.max;
}));

// clang-format off
/// The ranges of what finds the stars and lifts them.
inline constexpr std::array kDetectionRanges{
    ParamRange{"backgroundScale", 1.0, 64.0, 6.0, detail::field<&ZRParams::backgroundScale>},
    ParamRange{"maxRadius", 2.0, 200.0, 14.0, detail::field<&ZRParams::maxRadius>},
    ParamRange{"minPeak", 0.0, 1.0, 0.1, detail::field<&ZRParams::minPeak>},
    ParamRange{"starPop", 0.0, 1.0, 0.2, detail::field<&ZRParams::starPop>},
    ParamRange{"thresholdSigma", 2.0, 30.0, 6.0, detail::field<&ZRParams::thresholdSigma>},
};
// clang-format on

/// The row of `name` in either table, or null.
const ParamRange* findParamRange(const std::string& name);

/// `value` bound to the range of `name`; as it was for a name without a range. A NaN becomes the
/// default.
double clampParam(const std::string& name, double value);

} // namespace zre
