#pragma once

#include <string>
#include <vector>

#include "engine/params/star_erasure.h"

namespace zre {

/// Every slider, switch and mode that decides how a depth map and a stereo image are made.
///
/// The names are the keys of the text form. Ranges stand in `kParamRanges` and `kDetectionRanges`,
/// meanings in the parameter tables of the text form. `syntheticStars` and `sourceIsStarless` are
/// set by the program and never stored.
struct ZRParams
{
    // Luminance, structure and narrowband cues
    bool luminanceEnabled = true;
    float luminanceWeight = 1.0f;
    float structureWeight = 0.3f;
    float structureScale = 2.0f;
    float aiDepthWeight = 0.0f;
    bool narrowbandEnabled = false;
    float narrowbandWeight = 0.0f;
    int nearChannel = 0;
    int farChannel = 2;
    bool invertDepth = false;
    float smoothness = 2.0f;
    float edgePreservation = 0.5f;
    float depthGamma = 1.0f;

    // Colour-depth rows
    bool colorDepthEnabled = false;
    float colorDepthWeight = 0.0f;
    std::string colorDepthEntries;
    float colorDepthGamma = 1.0f;
    float colorDepthSmoothness = 0.0f;
    float colorDepthGaussian = 0.0f;

    // Stars
    bool starSeparationEnabled = true;
    int starInputMode = 0;
    float starPlane = 0.9f;
    float starFloatation = 1.0f;
    bool starMaskPerStar = false;
    bool syntheticStars = false;
    float starLimitMag = 15.0f;
    float starBrightness = 1.0f;
    float starFwhm = 1.5f;
    float starFaintBoost = 0.0f;
    int starDepthModel = 2;
    float starDepthRange = 0.6f;
    int starMaxRendered = 0;
    float starOcclusion = 0.0f;
    bool starSoftEdges = true;
    float starEdgeGlow = 1.0f;
    float starEdgeSoftness = 1.0f;
    float starCompanionWipe = 0.0f;
    bool starClusterSplit = true;
    int starCatalogUnmatched = 0;
    bool starCatalogKeepBright = true;
    int starCatalogKeepPick = 0;
    int starCatalogKeepMetric = 1;
    float starCatalogKeepPercent = 1.0f;
    int starCatalogKeepCount = 50;
    int starDepthScale = 0;
    float starDepthExaggeration = 1.0f;
    float starAbsNearPc = 3.0f;
    float starAbsFarPc = 5000.0f;

    // External map, depth model, anchor
    bool depthMapEnabled = false;
    float depthMapBlend = 0.0f;
    int depthMapMode = 0;
    float paintedSmoothness = 0.0f;
    float paintedGamma = 1.0f;
    bool depthModelEnabled = true;
    float depthModelBlend = 1.0f;
    bool depthEditShowSource = false;
    float depthEditSourceOpacity = 0.7f;
    int depthModelMode = 0;
    bool resolveDistance = false;
    float objectFit = 0.0f;
    float objectThickness = 1.0f;
    bool manualAnchorOn = false;
    float manualAnchorDepth = 0.5f;
    float anchorDistancePc = 0.0f;
    int anchorDistanceUnit = 1;
    bool sourceIsStarless = false;
    bool floorAuto = true;
    float backgroundFloor = 0.05f;

    // Stereo
    float parallaxAmount = 20.0f;
    float convergence = 0.5f;
    bool autoConvergence = true;
    float maxDisparity = 0.0f;
    bool swapEyes = false;
    int anaglyphMode = 0;

    // Post grade
    bool postEnabled = true;
    float postBlack = 0.0f;
    float postWhite = 1.0f;
    float postGamma = 1.0f;
    float postBrightness = 0.0f;
    float postContrast = 0.0f;
    float postTemperature = 0.0f;
    float postTint = 0.0f;
    float postSaturation = 0.0f;
    float postVibrance = 0.0f;
    float postHue = 0.0f;

    // Parallax motion and flyby frame, and the erasures
    int wiggleFrames = 30;
    int wiggleFps = 20;
    int flybyFrameW = 0;
    int flybyFrameH = 0;
    float wiggleAmplitude = 3.0f;
    float wigglePathAngle = 0.0f;
    bool wiggleCircular = false;
    std::vector<StarErasure> starErasures;

    // How stars are found: `kDetectionRanges`; the text form holds what differs from the default
    float thresholdSigma = 6.0f;
    float minPeak = 0.1f;
    int maxRadius = 14;
    float backgroundScale = 6.0f;
    bool aiStarSeparation = true;
    bool fillBehindStars = true;
    float starPop = 0.2f;

    bool operator==(const ZRParams&) const = default;
};

} // namespace zre
