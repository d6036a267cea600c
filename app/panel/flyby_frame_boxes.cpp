#include "app/panel/flyby_frame_boxes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSpinBox>

#include "app/panel/param_slider.h"
#include "app/panel/row_binding.h"

namespace {

constexpr int kSmallestSide = 16;
constexpr int kLargestSide = 100000;

/// 0 by 0 stands for the picture's own.
struct Ratio
{
    const char* label;
    int width;
    int height;
};

constexpr std::array kRatios{
    Ratio{"Source size", 0, 0}, Ratio{"16:9", 16, 9}, Ratio{"4:3", 4, 3},
    Ratio{"1:1", 1, 1},         Ratio{"4:5", 4, 5},   Ratio{"9:16", 9, 16},
};

/// Within the rounding of one side to a pixel.
bool hasRatio(QSize frame, const Ratio& ratio)
{
    const std::int64_t skew = std::int64_t(frame.width()) * ratio.height - //
                              std::int64_t(frame.height()) * ratio.width;
    return ratio.width > 0 && std::abs(skew) < std::max(ratio.width, ratio.height);
}

int rowOf(QSize frame, QSize image)
{
    if (frame == image)
        return 0;
    const auto row = std::find_if(kRatios.begin(), kRatios.end(),
                                  [&](const Ratio& each) { return hasRatio(frame, each); });
    return row == kRatios.end() ? -1 : static_cast<int>(row - kRatios.begin());
}

class FrameBinding final : public RowBinding
{
public:
    explicit FrameBinding(FlybyFrameBoxes* boxes)
        : RowBinding(boxes)
        , m_boxes(*boxes)
    {
    }
    void load(const zre::ZRParams& params) override
    {
        m_boxes.setFrame({params.flybyFrameW, params.flybyFrameH});
    }
    void store(zre::ZRParams& params) const override
    {
        params.flybyFrameW = m_boxes.frame().width();
        params.flybyFrameH = m_boxes.frame().height();
    }
    void follow(const zre::ZRParams&, const PanelFacts& facts) override
    {
        m_boxes.refreshFlybyFrameBoxes({facts.imageWidth, facts.imageHeight});
    }

private:
    FlybyFrameBoxes& m_boxes;
};

} // namespace

QSize largestFrame(int ratioWidth, int ratioHeight, QSize image)
{
    if (ratioWidth < 1 || ratioHeight < 1 || image.isEmpty())
        return {0, 0};
    const double scale = std::min(double(image.width()) / ratioWidth, //
                                  double(image.height()) / ratioHeight);
    const auto side = [&](int ratio, int most) {
        const int least = std::min(kSmallestSide, most);
        return std::clamp(static_cast<int>(std::lround(ratio * scale)), least, most);
    };
    return {side(ratioWidth, image.width()), side(ratioHeight, image.height())};
}

FlybyFrameBoxes::FlybyFrameBoxes(WheelGuard& guard, QWidget* parent)
    : QWidget(parent)
    , m_binding(new FrameBinding(this))
{
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setColumnStretch(0, 1);
    grid->setHorizontalSpacing(8);
    grid->setVerticalSpacing(5);
    m_width = addBox("flybyFrameW", "Width",
                     "How wide the frame of a flyby is, in pixels of the "
                     "picture at zoom 1. The export has this size.",
                     *grid, guard);
    m_height = addBox("flybyFrameH", "Height",
                      "How high the frame of a flyby is, in pixels of the "
                      "picture at zoom 1. The export has this size.",
                      *grid, guard);
    m_ratio = new QComboBox(this); // behind the boxes, as the keyboard goes
    for (const Ratio& ratio : kRatios)
        m_ratio->addItem(ratio.label);
    m_ratio->setPlaceholderText("Custom");
    m_ratio->setObjectName("flybyFrameRatio");
    m_ratio->setAccessibleName("Flyby frame, Ratio");
    m_ratio->setToolTip("The largest frame of this shape that the picture holds.");
    guard.guard(*m_ratio);
    auto* label = new QLabel("Ratio", this);
    label->setToolTip(m_ratio->toolTip());
    label->setBuddy(m_ratio);
    const int line = grid->rowCount();
    grid->addWidget(label, line, 0);
    grid->addWidget(m_ratio, line, 1);
    auto* back = new QPushButton("Reset to image size", this);
    back->setObjectName("flybyFrameReset");
    back->setToolTip("The frame of a flyby is the whole picture again.");
    grid->addWidget(back, line + 1, 0, 1, 2);
    connect(m_width, &QSpinBox::valueChanged, this, [this](int width) {
        take({width, m_frame.height()}, "Flyby frame width");
    });
    connect(m_height, &QSpinBox::valueChanged, this, [this](int height) {
        take({m_frame.width(), height}, "Flyby frame height");
    });
    connect(m_ratio, &QComboBox::activated, this, &FlybyFrameBoxes::takeRatio);
    connect(back, &QPushButton::clicked, this, [this] { takeRatio(0); });
    showFrame();
}

QSpinBox* FlybyFrameBoxes::addBox(const char* name, const char* label, const char* help,
                                  QGridLayout& grid, WheelGuard& guard)
{
    auto* box = new QSpinBox(this);
    box->setObjectName(name);
    box->setAccessibleName(QString("Flyby frame, ") + label);
    box->setSuffix(" px");
    box->setToolTip(help);
    box->setKeyboardTracking(false); // a half-typed number is no size
    guard.guard(*box);
    auto* caption = new QLabel(label, this);
    caption->setToolTip(help);
    caption->setBuddy(box);
    const int line = grid.rowCount();
    grid.addWidget(caption, line, 0);
    grid.addWidget(box, line, 1);
    return box;
}

void FlybyFrameBoxes::setFrame(QSize frame)
{
    m_frame = frame;
    showFrame();
}

void FlybyFrameBoxes::refreshFlybyFrameBoxes(QSize image)
{
    if (m_image == image)
        return;
    m_image = image;
    showFrame();
}

/// What a flyby makes of the frame: a side that the picture does not have is the picture's.
QSize FlybyFrameBoxes::shownFrame() const
{
    const auto side = [](int frame, int image) {
        return frame >= 1 && (image < 1 || frame <= image) ? frame : image;
    };
    return {side(m_frame.width(), m_image.width()), side(m_frame.height(), m_image.height())};
}

void FlybyFrameBoxes::showFrame()
{
    const QSize shown = shownFrame();
    const auto show = [](QSpinBox& box, int value, int most) {
        const QSignalBlocker quiet(box);
        const int highest = most > 0 ? most : kLargestSide;
        box.setRange(std::min({kSmallestSide, value, highest}), highest);
        box.setValue(value);
    };
    show(*m_width, shown.width(), m_image.width());
    show(*m_height, shown.height(), m_image.height());
    m_ratio->setCurrentIndex(rowOf(shown, m_image));
}

void FlybyFrameBoxes::take(QSize frame, const char* label)
{
    if (m_frame == frame)
        return;
    m_frame = frame;
    showFrame();
    emit m_binding->edited(label, false);
}

void FlybyFrameBoxes::takeRatio(int row)
{
    const Ratio& ratio = kRatios[static_cast<std::size_t>(std::max(0, row))];
    take(largestFrame(ratio.width, ratio.height, m_image), "Flyby frame");
    showFrame();
}
