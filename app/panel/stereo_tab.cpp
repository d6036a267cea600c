#include "app/panel/stereo_tab.h"

#include <array>

#include <QGridLayout>

#include "app/panel/depth_histogram.h"
#include "app/panel/flyby_frame_boxes.h"
#include "app/panel/glasses_tint.h"
#include "app/panel/panel_rows.h"
#include "app/panel/row_controls.h"
#include "app/panel/section_box.h"

namespace {

using P = zre::ZRParams;

constexpr std::array kAnaglyphModes{"Color", "Half-color", "Gray", "Optimized (Dubois)"};

constexpr std::array kStereoRows{
    PanelRow{SliderRow{"parallaxAmount", "Parallax amount", 1.0, &P::parallaxAmount, "px"}},
    PanelRow{SliderRow{"convergence", "Convergence", 0.01, &P::convergence, "",
                       unlessOff<&P::autoConvergence>}},
    PanelRow{CheckRow{"autoConvergence", "Auto convergence (median depth)", &P::autoConvergence}},
    PanelRow{SliderRow{"maxDisparity", "Max disparity", 1.0, &P::maxDisparity, "px"}},
    PanelRow{CheckRow{"swapEyes", "Swap eyes (parallel / cross-eyed)", &P::swapEyes}},
};

constexpr std::array kAnaglyphRows{
    PanelRow{ComboRow{"anaglyphMode", "Mode", &P::anaglyphMode, kAnaglyphModes}},
};

constexpr std::array kWiggleRows{
    PanelRow{SliderRow{"wiggleAmplitude", "Amplitude", 0.1, &P::wiggleAmplitude}},
    PanelRow{SliderRow{"wiggleFrames", "Frames", 1.0, &P::wiggleFrames}},
    PanelRow{SliderRow{"wiggleFps", "Frame rate (fps)", 1.0, &P::wiggleFps}},
    PanelRow{SliderRow{"wigglePathAngle", "Path angle", 1.0, &P::wigglePathAngle, "\u00b0",
                       unlessOff<&P::wiggleCircular>}},
    PanelRow{CheckRow{"wiggleCircular", "Circular sweep", &P::wiggleCircular}},
};

constexpr SectionRow kStereo{"Stereo depth", true, kStereoRows};
constexpr SectionRow kSpread{"Depth and disparity", false, {}};
constexpr SectionRow kAnaglyph{"Anaglyph", false, kAnaglyphRows};
constexpr SectionRow kWiggle{"Parallax motion (wiggle)", true, kWiggleRows};
constexpr SectionRow kFlybyFrame{"Flyby frame", true, {}};

} // namespace

StereoTab::StereoTab(QWidget* parent)
    : PanelTab("Stereo", parent)
{
    addSection(kStereo);
    SectionBox& spread = addSection(kSpread);
    spread.grid().addWidget(new DepthHistogramView(&spread.body()), 0, 0, 1, kColumns);
    SectionBox& anaglyph = addSection(kAnaglyph);
    auto* tint = new GlassesTint(anaglyph.wheelGuard(), &anaglyph.body());
    anaglyph.grid().addWidget(tint, anaglyph.grid().rowCount(), 0, 1, kColumns);
    anaglyph.addBinding(tint->binding());
    connect(tint, &GlassesTint::tintChanged, this, &StereoTab::glassesTintChanged);
    addSection(kWiggle);
    SectionBox& frame = addSection(kFlybyFrame);
    auto* boxes = new FlybyFrameBoxes(frame.wheelGuard(), &frame.body());
    frame.grid().addWidget(boxes, 0, 0, 1, kColumns);
    frame.addBinding(boxes->binding());
}
