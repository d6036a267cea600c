#pragma once

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include <QMap>
#include <QString>

#include "engine/params/params.h"

namespace zrproj {

/// A key whose value is the output view, which travels beside the parameters.
struct OutputView
{
};

/// A key whose value is the id of a project role; written always, never read.
struct RoleId
{
    const char* role;
};

/// A key of older versions. It is neither written nor read, but an unknown line of this name keeps
/// its place.
struct Retired
{
};

using ParamField = std::variant<float zre::ZRParams::*, int zre::ZRParams::*, bool zre::ZRParams::*,
                                std::string zre::ZRParams::*, OutputView, RoleId, Retired>;

/// What a value on the command line may be where `findParamRange` has no row.
struct ParamLimits
{
    double min;
    double max;
};

/// One key of the parameter text.
struct ParamKey
{
    const char* name;
    ParamField field;
    const char* meaning = "";
    std::optional<ParamLimits> limits = std::nullopt;
};

// clang-format off
/// The keys of the parameter text, in the order in which they are written.
inline constexpr std::array kParamOrder{
    ParamKey{"luminanceWeight", &zre::ZRParams::luminanceWeight, "how much brightness counts as nearness"},
    ParamKey{"aiDepthWeight", &zre::ZRParams::aiDepthWeight, "how much the learned depth counts"},
    ParamKey{"structureWeight", &zre::ZRParams::structureWeight, "how much local contrast counts as nearness"},
    ParamKey{"structureScale", &zre::ZRParams::structureScale, "size of the details that count as structure (sigma, pixels)"},
    ParamKey{"invertDepth", &zre::ZRParams::invertDepth, "exchange near and far in the mix of cues"},
    ParamKey{"smoothness", &zre::ZRParams::smoothness, "smoothing of the depth along image edges (sigma, pixels; 0 off)"},
    ParamKey{"edgePreservation", &zre::ZRParams::edgePreservation, "how weak an edge may be and still survive the smoothing"},
    ParamKey{"depthGamma", &zre::ZRParams::depthGamma, "exponent on the stretched depth; above 1 pushes the mid-depths back"},
    ParamKey{"colorDepthSmoothness", &zre::ZRParams::colorDepthSmoothness, "edge-aware smoothing of what the colour rows painted (sigma, pixels; 0 off)"},
    ParamKey{"colorDepthGaussian", &zre::ZRParams::colorDepthGaussian, "plain smoothing of what the colour rows painted (sigma, pixels; 0 off)"},
    ParamKey{"colorDepthGamma", &zre::ZRParams::colorDepthGamma, "exponent on the depth of every colour row"},
    ParamKey{"paintedSmoothness", &zre::ZRParams::paintedSmoothness, "edge-aware smoothing of the loaded depth map (sigma, pixels; 0 off)"},
    ParamKey{"paintedGamma", &zre::ZRParams::paintedGamma, "exponent on the loaded depth map"},
    ParamKey{"objectId", Retired{}},
    ParamKey{"objectFit", &zre::ZRParams::objectFit, "how far the object moves toward its known depth"},
    ParamKey{"objectThickness", &zre::ZRParams::objectThickness, "share of the object's own depth spread that it keeps"},
    ParamKey{"manualAnchorOn", &zre::ZRParams::manualAnchorOn, "the object's depth is known"},
    ParamKey{"resolveDistance", &zre::ZRParams::resolveDistance, "move the object to its known depth"},
    ParamKey{"manualAnchorDepth", &zre::ZRParams::manualAnchorDepth, "known depth of the object (0 far, 1 near)"},
    ParamKey{"anchorDistancePc", &zre::ZRParams::anchorDistancePc, "distance of the object (parsecs; 0 unknown)", ParamLimits{0.0, 1e11}},
    ParamKey{"anchorDistanceUnit", &zre::ZRParams::anchorDistanceUnit, "number of the unit in which the distance is shown", ParamLimits{0.0, 99.0}},
    ParamKey{"floorAuto", &zre::ZRParams::floorAuto, "find the background floor from the depths themselves"},
    ParamKey{"backgroundFloor", &zre::ZRParams::backgroundFloor, "depth up to which the background stays in place, unless found automatically", ParamLimits{0.0, 0.98}},
    ParamKey{"outputMode", OutputView{}, "view: 0 original image, 1 depth map, 2 anaglyph, 3 side by side, 4 starless, 5 stars, 6 stars over starless", ParamLimits{0.0, 6.0}},
    ParamKey{"parallaxAmount", &zre::ZRParams::parallaxAmount, "greatest total shift between the eyes (pixels)"},
    ParamKey{"convergence", &zre::ZRParams::convergence, "depth that lies in the plane of the screen, unless found automatically"},
    ParamKey{"swapEyes", &zre::ZRParams::swapEyes, "exchange the left and the right view"},
    ParamKey{"autoConvergence", &zre::ZRParams::autoConvergence, "put the median depth in the plane of the screen"},
    ParamKey{"maxDisparity", &zre::ZRParams::maxDisparity, "limit of the total shift for comfortable viewing (pixels; 0 no limit)"},
    ParamKey{"anaglyphMode", &zre::ZRParams::anaglyphMode, "anaglyph encoding: 0 colour, 1 half-colour, 2 grey, 3 optimised"},
    ParamKey{"starInputMode", &zre::ZRParams::starInputMode, "stars from: 0 the image, 1 a mask, 2 a pair of starless and stars, 3 a catalogue", ParamLimits{0.0, 3.0}},
    ParamKey{"starMaskId", RoleId{"starmask"}},
    ParamKey{"starlessId", RoleId{"starless"}},
    ParamKey{"starsId", RoleId{"stars"}},
    ParamKey{"starMaskPerStar", &zre::ZRParams::starMaskPerStar, "apply the star mask to whole stars and leave the depth map alone"},
    ParamKey{"starSoftEdges", &zre::ZRParams::starSoftEdges, "cut stars out with soft rims"},
    ParamKey{"starEdgeGlow", &zre::ZRParams::starEdgeGlow, "how far the halo of a cut-out star reaches"},
    ParamKey{"starEdgeSoftness", &zre::ZRParams::starEdgeSoftness, "how gently the rim of a cut-out star fades"},
    ParamKey{"starCompanionWipe", &zre::ZRParams::starCompanionWipe, "how strongly neighbours are wiped from a star's cut-out"},
    ParamKey{"starClusterSplit", &zre::ZRParams::starClusterSplit, "separate stars that touch"},
    ParamKey{"starMaxRendered", &zre::ZRParams::starMaxRendered, "greatest number of stars drawn (0 all)", ParamLimits{0.0, 10000000.0}},
    ParamKey{"starPlane", &zre::ZRParams::starPlane, "depth of the plane of the stars (0 far, 1 near)"},
    ParamKey{"starFloatation", &zre::ZRParams::starFloatation, "how strongly stars are drawn to their plane"},
    ParamKey{"starOcclusion", &zre::ZRParams::starOcclusion, "depth below which matter in front hides stars (0 never hides)"},
    ParamKey{"starDepthModel", &zre::ZRParams::starDepthModel, "star depths: 0 flat, 1 by brightness, 2 scattered, 3 real distances"},
    ParamKey{"starDepthRange", &zre::ZRParams::starDepthRange, "spread of the star depths around their plane"},
    ParamKey{"starCatalogUnmatched", &zre::ZRParams::starCatalogUnmatched, "stars without a catalogue match: 0 scattered, 1 by brightness, 2 left out"},
    ParamKey{"starCatalogKeepBright", &zre::ZRParams::starCatalogKeepBright, "keep some unmatched stars even when they are left out"},
    ParamKey{"starCatalogKeepPick", &zre::ZRParams::starCatalogKeepPick, "which unmatched stars stay: 0 the brightest, 1 a balanced choice"},
    ParamKey{"starCatalogKeepMetric", &zre::ZRParams::starCatalogKeepMetric, "how many unmatched stars stay: 0 a percentage, 1 a count"},
    ParamKey{"starCatalogKeepPercent", &zre::ZRParams::starCatalogKeepPercent, "share of the unmatched stars that stays (percent)"},
    ParamKey{"starCatalogKeepCount", &zre::ZRParams::starCatalogKeepCount, "number of unmatched stars that stays"},
    ParamKey{"starDepthScale", &zre::ZRParams::starDepthScale, "scale of real star depths: 0 relative to the field, 1 absolute distances"},
    ParamKey{"starDepthExaggeration", &zre::ZRParams::starDepthExaggeration, "factor on each matched star's distance from the plane"},
    ParamKey{"starLimitMag", &zre::ZRParams::starLimitMag, "faintest catalogue star drawn (G magnitude)"},
    ParamKey{"starBrightness", &zre::ZRParams::starBrightness, "factor on the light of drawn catalogue stars"},
    ParamKey{"starFwhm", &zre::ZRParams::starFwhm, "width of the core of drawn catalogue stars (working pixels)"},
    ParamKey{"starAbsNearPc", &zre::ZRParams::starAbsNearPc, "distance shown nearest on the absolute scale (parsecs)", ParamLimits{0.01, 1e11}},
    ParamKey{"starAbsFarPc", &zre::ZRParams::starAbsFarPc, "distance shown farthest on the absolute scale (parsecs)", ParamLimits{0.01, 1e11}},
    ParamKey{"narrowbandWeight", &zre::ZRParams::narrowbandWeight, "how much the balance of two channels counts"},
    ParamKey{"nearChannel", &zre::ZRParams::nearChannel, "channel that lies in front: 0 red, 1 green, 2 blue"},
    ParamKey{"farChannel", &zre::ZRParams::farChannel, "channel that lies behind: 0 red, 1 green, 2 blue"},
    ParamKey{"colorDepthWeight", &zre::ZRParams::colorDepthWeight, "how strongly the colour rows paint"},
    ParamKey{"colorDepthEntries", &zre::ZRParams::colorDepthEntries, "colour rows \"enabled,r,g,b,tolerance,depth\" joined by \";\""},
    ParamKey{"depthMapId", RoleId{"depthmap"}},
    ParamKey{"depthMapBlend", &zre::ZRParams::depthMapBlend, "how strongly the loaded depth map is laid over the cues"},
    ParamKey{"depthMapMode", &zre::ZRParams::depthMapMode, "blend of the loaded depth map: 0 normal, 1 lighten, 2 darken, 3 add, 4 subtract, 5 screen"},
    ParamKey{"depthModelBlend", &zre::ZRParams::depthModelBlend, "how strongly the edited depth model is laid over the depth"},
    ParamKey{"depthModelMode", &zre::ZRParams::depthModelMode, "blend of the edited depth model: 0 normal, 1 lighten, 2 darken, 3 add, 4 subtract, 5 screen"},
    ParamKey{"depthEditShowSource", &zre::ZRParams::depthEditShowSource, "show the image over the depth in the depth editor"},
    ParamKey{"depthEditSourceOpacity", &zre::ZRParams::depthEditSourceOpacity, "opacity of that image", ParamLimits{0.0, 1.0}},
    ParamKey{"luminanceEnabled", &zre::ZRParams::luminanceEnabled, "use the brightness, structure and learned cues"},
    ParamKey{"starlessOnly", Retired{}},
    ParamKey{"starFillCatalog", Retired{}},
    ParamKey{"narrowbandEnabled", &zre::ZRParams::narrowbandEnabled, "use the balance of two channels as a cue"},
    ParamKey{"colorDepthEnabled", &zre::ZRParams::colorDepthEnabled, "let the colour rows paint depth"},
    ParamKey{"depthMapEnabled", &zre::ZRParams::depthMapEnabled, "use the loaded depth map"},
    ParamKey{"wiggleFrames", &zre::ZRParams::wiggleFrames, "frames of one wiggle sweep"},
    ParamKey{"wiggleFps", &zre::ZRParams::wiggleFps, "wiggle frames a second"},
    ParamKey{"wiggleAmplitude", &zre::ZRParams::wiggleAmplitude, "swing of the viewpoint (1 is the distance of the eyes)"},
    ParamKey{"wigglePathAngle", &zre::ZRParams::wigglePathAngle, "direction of a straight sweep (degrees; 0 sideways, 90 up and down)"},
    ParamKey{"wiggleCircular", &zre::ZRParams::wiggleCircular, "let the viewpoint circle instead of swinging"},
    ParamKey{"depthModelEnabled", &zre::ZRParams::depthModelEnabled, "use the edited depth model"},
    ParamKey{"starSeparationEnabled", &zre::ZRParams::starSeparationEnabled, "treat stars as a layer of their own"},
    ParamKey{"starFaintBoost", &zre::ZRParams::starFaintBoost, "lift of faint drawn stars against bright ones"},
    ParamKey{"postEnabled", &zre::ZRParams::postEnabled, "grade the finished picture"},
    ParamKey{"postBlack", &zre::ZRParams::postBlack, "level that becomes black"},
    ParamKey{"postWhite", &zre::ZRParams::postWhite, "level that becomes white"},
    ParamKey{"postGamma", &zre::ZRParams::postGamma, "gamma of the midtones; above 1 brightens"},
    ParamKey{"postBrightness", &zre::ZRParams::postBrightness, "lightness added"},
    ParamKey{"postContrast", &zre::ZRParams::postContrast, "contrast gained around the middle grey"},
    ParamKey{"postTemperature", &zre::ZRParams::postTemperature, "white balance from blue (negative) to amber (positive)"},
    ParamKey{"postTint", &zre::ZRParams::postTint, "white balance from green (negative) to magenta (positive)"},
    ParamKey{"postSaturation", &zre::ZRParams::postSaturation, "colour gained (-1 gives grey)"},
    ParamKey{"postVibrance", &zre::ZRParams::postVibrance, "colour gained by pale pixels first"},
    ParamKey{"postHue", &zre::ZRParams::postHue, "rotation of all hues (degrees)"},
    ParamKey{"flybyFrameW", &zre::ZRParams::flybyFrameW, "width of the flyby frame (pixels; 0 by 0 is the whole image)", ParamLimits{0.0, 100000.0}},
    ParamKey{"flybyFrameH", &zre::ZRParams::flybyFrameH, "height of the flyby frame (pixels)", ParamLimits{0.0, 100000.0}},
};
// clang-format on

static_assert(kParamOrder.size() == 98);

// clang-format off
/// The keys of how stars are found. They are written behind the table, and only where they differ
/// from the default.
inline constexpr std::array kDetectionOrder{
    ParamKey{"aiStarSeparation", &zre::ZRParams::aiStarSeparation, "separate stars by the learned model where it is installed"},
    ParamKey{"backgroundScale", &zre::ZRParams::backgroundScale, "blur that makes the background stars are measured against (sigma, pixels)"},
    ParamKey{"fillBehindStars", &zre::ZRParams::fillBehindStars, "fill the picture behind stars from the sky about them, where no model separates them"},
    ParamKey{"maxRadius", &zre::ZRParams::maxRadius, "largest radius of a star (pixels)"},
    ParamKey{"minPeak", &zre::ZRParams::minPeak, "lowest peak of a star above the background (0 any)"},
    ParamKey{"starPop", &zre::ZRParams::starPop, "lift of all stars toward the viewer"},
    ParamKey{"thresholdSigma", &zre::ZRParams::thresholdSigma, "how far a star has to stand out of the background (sigma)"},
};
// clang-format on

/// Calls `visit(row)` for every key of both tables.
template <class Visit>
void forEachKey(Visit&& visit)
{
    for (const ParamKey& row : kParamOrder)
        visit(row);
    for (const ParamKey& row : kDetectionOrder)
        visit(row);
}

/// The key of the erasure list, which stands behind the table in the text.
inline constexpr const char* kErasuresKey = "starErasures";

/// The row of a key, or null.
const ParamKey* findParamKey(const QString& key);

/// The text of a row's field; none for a retired key. `roles` as in `paramsToText`.
std::optional<QString> fieldText(const ParamKey& row, const zre::ZRParams& params, int outputMode,
                                 const QMap<QString, QString>& roles);

/// Stores `value` in a row's field without a range check: a bad number reads as 0. False for a
/// retired key; the value of a role is passed over.
bool storeField(const ParamKey& row, const QString& value, zre::ZRParams& params, int& outputMode);

/// The erasures as "x,y,radius,softness,mode" joined by ";"; empty for an empty list.
QString erasuresText(const std::vector<zre::StarErasure>& erasures);

/// Reads `erasuresText`. A part of fewer than five fields or without a positive radius is skipped;
/// a mode other than 1 and 2 reads as 0.
std::vector<zre::StarErasure> readErasures(const QString& text);

/// What a parameter is, for listings.
struct ParamInfo
{
    QString name;
    QString kind; ///< "float", "int", "bool" or "string"
    double min = 0.0;
    double max = 0.0;
    bool hasRange = false;
    QString defaultText;
    QString meaning;
};

/// Every parameter that `setParam` takes, in the order of the parameter text.
std::vector<ParamInfo> parameterList();

/// Sets one parameter from a command line.
///
/// Errors:  an unknown key (with the nearest known name), a value that is not of the key's kind or
/// lies out of its range (with the range): false, `error` says which, nothing is changed.
bool setParam(zre::ZRParams& params, int& outputMode, const QString& key, const QString& value,
              QString* error);

} // namespace zrproj
