#include "app/video/export_dialog.h"

#include <algorithm>
#include <cmath>

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QStandardItemModel>

#include "app/export/video_plan.h"
#include "app/persist/appcfg.h"

namespace {

constexpr int kLeastSide = 16;
constexpr int kMostFps = 120;
constexpr const char* kGifNote =
    "GIF is widely compatible but large and 256-color. For smooth, full-color playback prefer MP4. "
    "Big sizes make big files.";
constexpr const char* kMp4Note =
    "Frames are fitted into the chosen box and letterboxed; the source is never upscaled. "
    "\"Original\" keeps the image's native size.";

QSpinBox* makeSide(const char* name, const char* spoken, QWidget* parent)
{
    auto* box = new QSpinBox(parent);
    box->setObjectName(name);
    box->setAccessibleName(spoken);
    box->setRange(kLeastSide, kLongestVideoSide);
    box->setSingleStep(2);
    box->setKeyboardTracking(false); // the other side follows whole numbers only
    return box;
}

template <typename Rows>
QComboBox* makeChoice(const char* name, const Rows& rows, QWidget* parent)
{
    auto* box = new QComboBox(parent);
    box->setObjectName(name);
    for (const auto& row : rows)
        box->addItem(row.label);
    return box;
}

QLabel* makeNote(const char* name, QWidget* parent)
{
    auto* label = new QLabel(parent);
    label->setObjectName(name);
    label->setWordWrap(true);
    label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    return label;
}

int sideFor(double side)
{
    if (!(side > kLeastSide))
        return kLeastSide;
    return static_cast<int>(std::lround(std::min(side, double(kLongestVideoSide))));
}

QString sizeText(QSize size)
{
    return QString("%1 x %2").arg(size.width()).arg(size.height());
}

} // namespace

ExportDialog::ExportDialog(bool flyby, int fps, double sourceAspect, QWidget* parent)
    : QDialog(parent)
    , m_ownFps(std::clamp(fps, 1, kMostFps))
    , m_sourceAspect(std::isfinite(sourceAspect) && sourceAspect > 0 ? sourceAspect : 0.0)
    , m_format(makeChoice("exportFormat", kVideoFormats, this))
    , m_stereo(makeChoice("exportStereo", kStereoFormats, this))
    , m_size(makeChoice("exportSize", kSizePresets, this))
    , m_width(makeSide("exportWidth", "Width in pixels", this))
    , m_height(makeSide("exportHeight", "Height in pixels", this))
    , m_keepAspect(new QCheckBox("Keep aspect ratio", this))
    , m_fps(new QSpinBox(this))
    , m_ownRate(new QPushButton(this))
    , m_note(makeNote("exportNote", this))
    , m_outcome(makeNote("exportOutcome", this))
{
    buildRows(flyby);
    loadChoices();
    connect(m_format, &QComboBox::currentIndexChanged, this, &ExportDialog::followFormat);
    connect(m_stereo, &QComboBox::currentIndexChanged, this, &ExportDialog::tellOutcome);
    connect(m_size, &QComboBox::currentIndexChanged, this, &ExportDialog::followSize);
    connect(m_width, &QSpinBox::valueChanged, this, &ExportDialog::syncFromWidth);
    connect(m_height, &QSpinBox::valueChanged, this, &ExportDialog::syncFromHeight);
    connect(m_keepAspect, &QCheckBox::toggled, this, &ExportDialog::keepAspectToggled);
    connect(m_fps, &QSpinBox::valueChanged, this, &ExportDialog::tellOutcome);
    followFormat();
    followSize();
    keepAspectToggled(m_keepAspect->isChecked());
}

void ExportDialog::buildRows(bool flyby)
{
    constexpr int kWidth = 460;
    setObjectName("exportDialog");
    setWindowTitle(flyby ? "Export Flyby" : "Export Parallax Motion");
    setMinimumWidth(kWidth);
    auto* column = new QVBoxLayout(this);
    auto* form = new QFormLayout;
    column->addLayout(form);
    form->addRow("Format", m_format);
    form->addRow("3D format", m_stereo);
    form->addRow("Output size", m_size);
    form->addRow("Custom size (px)", buildCustomSize());
    form->addRow("", m_keepAspect);
    form->addRow("Frame rate (fps)", buildRate());
    column->addWidget(m_note);
    column->addWidget(m_outcome);
    column->addStretch();
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    m_accept = buttons->button(QDialogButtonBox::Ok);
    m_accept->setText("Export...");
    connect(buttons, &QDialogButtonBox::accepted, this, &ExportDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &ExportDialog::reject);
    column->addWidget(buttons);
    m_keepAspect->setObjectName("exportKeepAspect");
    m_keepAspect->setToolTip(
        m_sourceAspect > 0
            ? QString("Hold the custom box to the source image's shape (%1:1), so that no black "
                      "bars are added.")
                  .arg(m_sourceAspect, 0, 'f', 2)
            : QString("Hold the custom box to the shape it has now."));
}

QWidget* ExportDialog::buildCustomSize()
{
    auto* sides = new QWidget(this);
    auto* row = new QHBoxLayout(sides);
    row->setContentsMargins({});
    row->addWidget(m_width, 1);
    row->addWidget(new QLabel("x", sides));
    row->addWidget(m_height, 1);
    return sides;
}

QWidget* ExportDialog::buildRate()
{
    auto* rate = new QWidget(this);
    auto* row = new QHBoxLayout(rate);
    row->setContentsMargins({});
    m_fps->setObjectName("exportFps");
    m_fps->setAccessibleName("Frame rate in frames a second");
    m_fps->setRange(1, kMostFps);
    m_ownRate->setObjectName("exportOwnRate");
    m_ownRate->setText(QString("Use its own rate (%1)").arg(m_ownFps));
    m_ownRate->setToolTip(
        "The motion was made for this rate: at another it runs slower or faster.");
    m_ownRate->setAutoDefault(false);
    connect(m_ownRate, &QPushButton::clicked, this, [this] { m_fps->setValue(m_ownFps); });
    row->addWidget(m_fps, 1);
    row->addWidget(m_ownRate, 1);
    return rate;
}

void ExportDialog::loadChoices()
{
    const appcfg::ExportChoices last = appcfg::exportChoices();
    m_format->setCurrentIndex(last.format);
    m_stereo->setCurrentIndex(last.stereo3d);
    m_size->setCurrentIndex(last.sizeIndex);
    m_width->setValue(last.customWidth);
    m_height->setValue(last.customHeight);
    m_keepAspect->setChecked(last.keepAspect);
    m_fps->setValue(last.fps > 0 ? last.fps : m_ownFps);
}

void ExportDialog::saveChoices() const
{
    // A rate that nobody chose must not be forced on the next motion.
    const int fps = m_results.fps == m_ownFps ? 0 : m_results.fps;
    appcfg::setExportChoices({m_results.format, m_results.stereo3d, m_size->currentIndex(),
                              m_width->value(), m_height->value(), m_keepAspect->isChecked(), fps});
}

void ExportDialog::setMotion(QSize frame, int frames)
{
    m_frame = frame;
    m_frames = frames;
    tellOutcome();
}

bool ExportDialog::isCustom() const
{
    return kSizePresets[static_cast<std::size_t>(m_size->currentIndex())].width < 0;
}

ExportResults ExportDialog::chosen() const
{
    const SizePreset& preset = kSizePresets[static_cast<std::size_t>(m_size->currentIndex())];
    ExportResults results;
    results.format = m_format->currentIndex();
    results.stereo3d = stereoFormatFor(results.format, m_stereo->currentIndex());
    results.width = isCustom() ? m_width->value() / 2 * 2 : preset.width;
    results.height = isCustom() ? m_height->value() / 2 * 2 : preset.height;
    results.fps = m_fps->value();
    return results;
}

void ExportDialog::accept()
{
    for (QSpinBox* side : {m_width, m_height}) {
        const QSignalBlocker blocker(side);
        side->setValue(side->value() / 2 * 2);
    }
    m_results = chosen();
    m_results.accepted = true;
    saveChoices();
    QDialog::accept();
}

void ExportDialog::followFormat()
{
    const bool isGif = m_format->currentIndex() == kGif;
    auto* rows = qobject_cast<QStandardItemModel*>(m_stereo->model());
    for (int row = kSideBySide; rows && row < m_stereo->count(); ++row)
        rows->item(row)->setEnabled(!isGif);
    m_stereo->setCurrentIndex(stereoFormatFor(m_format->currentIndex(), m_stereo->currentIndex()));
    m_note->setText(isGif ? kGifNote : kMp4Note);
    tellOutcome();
}

void ExportDialog::followSize()
{
    for (QWidget* each : {static_cast<QWidget*>(m_width), static_cast<QWidget*>(m_height),
                          static_cast<QWidget*>(m_keepAspect)})
        each->setEnabled(isCustom());
    tellOutcome();
}

void ExportDialog::keepAspectToggled(bool on)
{
    if (!on)
        return;
    captureRatio();
    syncFromWidth();
}

void ExportDialog::captureRatio()
{
    m_ratio = m_sourceAspect > 0 ? m_sourceAspect
                                 : static_cast<double>(m_width->value()) / m_height->value();
}

void ExportDialog::syncFromWidth()
{
    if (m_keepAspect->isChecked()) {
        const QSignalBlocker blocker(m_height);
        m_height->setValue(sideFor(m_width->value() / m_ratio));
    }
    tellOutcome();
}

void ExportDialog::syncFromHeight()
{
    if (m_keepAspect->isChecked()) {
        const QSignalBlocker blocker(m_width);
        m_width->setValue(sideFor(m_height->value() * m_ratio));
    }
    tellOutcome();
}

/// What comes out, and whether it can.
void ExportDialog::tellOutcome()
{
    const ExportResults wanted = chosen();
    m_ownRate->setVisible(wanted.fps != m_ownFps);
    if (m_frame.isEmpty() || m_frames < 1)
        return;
    VideoPlan plan;
    plan.format = wanted.format;
    plan.stereo3d = wanted.stereo3d;
    plan.box = QSize(wanted.width, wanted.height);
    plan.fps = wanted.fps;
    plan.frame = m_frame;
    const VideoFit fit = videoFit(plan);
    QString text = QString("%1 frame%2, %3 s  -  %4 pixels")
                       .arg(m_frames)
                       .arg(m_frames == 1 ? "" : "s")
                       .arg(static_cast<double>(m_frames) / wanted.fps, 0, 'f', 1)
                       .arg(sizeText(fit.video));
    const QString obstacle = videoSizeObstacle(fit.video, "output size");
    if (!obstacle.isEmpty())
        text += ". " + obstacle;
    else if (fit.picture != fit.video)
        text += QString(", the picture %1 within black bars").arg(sizeText(fit.picture));
    if (obstacle.isEmpty() && fit.partsEyes(plan.stereo3d))
        text += ". They move the two eyes apart: the original size, or a smaller custom size that "
                "keeps the aspect ratio, has none.";
    m_outcome->setText(text);
    m_accept->setEnabled(obstacle.isEmpty());
}
