#include "app/panel/post_tab.h"

#include <array>

#include <QGridLayout>
#include <QPushButton>

#include "app/panel/panel_rows.h"
#include "app/panel/row_controls.h"
#include "app/panel/section_box.h"

namespace {

using P = zre::ZRParams;

constexpr Obstacle kPost = unlessOn<&P::postEnabled>;

constexpr std::array kToneRows{
    PanelRow{SliderRow{"postBlack", "Black point", 0.01, &P::postBlack, "", kPost}},
    PanelRow{SliderRow{"postWhite", "White point", 0.01, &P::postWhite, "", kPost}},
    PanelRow{SliderRow{"postGamma", "Gamma (midtones)", 0.01, &P::postGamma, "", kPost}},
    PanelRow{SliderRow{"postBrightness", "Brightness", 0.01, &P::postBrightness, "", kPost}},
    PanelRow{SliderRow{"postContrast", "Contrast", 0.01, &P::postContrast, "", kPost}},
};

constexpr std::array kColorRows{
    PanelRow{SliderRow{"postTemperature", "Temperature", 0.01, &P::postTemperature, "", kPost}},
    PanelRow{SliderRow{"postTint", "Tint", 0.01, &P::postTint, "", kPost}},
    PanelRow{SliderRow{"postSaturation", "Saturation", 0.01, &P::postSaturation, "", kPost}},
    PanelRow{SliderRow{"postVibrance", "Vibrance", 0.01, &P::postVibrance, "", kPost}},
    PanelRow{SliderRow{"postHue", "Hue", 1.0, &P::postHue, "\u00b0", kPost}},
};

constexpr std::array kEnableRows{
    PanelRow{CheckRow{"postEnabled", "Enable post-processing", &P::postEnabled}},
};

constexpr SectionRow kEnable{"Post-processing", true, kEnableRows};
constexpr SectionRow kTone{"Tone", true, kToneRows};
constexpr SectionRow kColor{"Color", true, kColorRows};

} // namespace

PostTab::PostTab(QWidget* parent)
    : PanelTab("Post", parent)
{
    SectionBox& enable = addSection(kEnable);
    auto* back = new QPushButton("Reset to no change", &enable.body());
    back->setObjectName("post.reset");
    back->setToolTip("Set tone and color back so that the grade changes nothing.");
    enable.grid().addWidget(back, enable.grid().rowCount(), 0, 1, kColumns);
    SectionBox& tone = addSection(kTone);
    SectionBox& color = addSection(kColor);
    connect(back, &QPushButton::clicked, this, [this, &tone, &color] {
        tone.load({});
        color.load({});
        emit edited("Post-processing: Reset to no change", false);
    });
}
