#include "app/video/spatial_dialog.h"

#include <algorithm>

#include <QButtonGroup>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include "app/export/video_plan.h"

SpatialDialog::SpatialDialog(const SpatialWords& words, const Eyes& eyes, QWidget* parent)
    : QDialog(parent)
    , m_words(words)
    , m_eyes(eyes)
    , m_contents(new QButtonGroup(this))
    , m_stills(new QButtonGroup(this))
{
    constexpr int kWidth = 420;
    setObjectName("spatialDialog");
    setWindowTitle(words.title);
    setMinimumWidth(kWidth);
    auto* column = new QVBoxLayout(this);
    buildContents();
    buildStills();
    buildSizes();
    column->addStretch();
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    m_accept = buttons->button(QDialogButtonBox::Ok);
    m_accept->setText("Export...");
    connect(buttons, &QDialogButtonBox::accepted, this, &SpatialDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &SpatialDialog::reject);
    column->addWidget(buttons);
    connect(m_contents, &QButtonGroup::idToggled, this, &SpatialDialog::follow);
    connect(m_stills, &QButtonGroup::idToggled, this, &SpatialDialog::follow);
    connect(m_size, &QComboBox::currentIndexChanged, this, &SpatialDialog::follow);
    follow();
    // What players can show, to begin with.
    if (pairSize().width() > kPlayablePairWidth)
        m_size->setCurrentIndex(1);
}

void SpatialDialog::buildContents()
{
    auto* column = static_cast<QVBoxLayout*>(layout());
    auto* question = new QLabel(m_words.question, this);
    column->addWidget(question);
    int id = 0;
    for (const SpatialContentRow& row : m_words.contents) {
        auto* button = new QRadioButton(row.label, this);
        button->setObjectName(QString("spatialContent.%1").arg(id));
        m_contents->addButton(button, id);
        column->addWidget(button);
        ++id;
    }
    m_contents->button(static_cast<int>(SpatialContent::Flyby))
        ->setVisible(!m_eyes.flyby.isEmpty());
    m_contents->button(0)->setChecked(true);
    if (*m_words.note) {
        auto* note = new QLabel(m_words.note, this);
        note->setWordWrap(true);
        column->addWidget(note);
    }
}

void SpatialDialog::buildStills()
{
    m_stillBox = new QGroupBox("Still", this);
    auto* column = new QVBoxLayout(m_stillBox);
    auto* text = new QLabel("Export a full-resolution side-by-side (SBS) VR180 stereo pair.\n"
                            "Choose the output format:",
                            m_stillBox);
    text->setWordWrap(true);
    column->addWidget(text);
    int id = 0;
    for (const SpatialStillRow& row : kSpatialStills) {
        auto* button = new QRadioButton(row.label, m_stillBox);
        button->setObjectName(QString("spatialStill.%1").arg(row.suffix));
        m_stills->addButton(button, id++);
        column->addWidget(button);
    }
    m_stills->button(0)->setChecked(true);
    m_stillBox->setVisible(m_words.stillsAsPictures);
    layout()->addWidget(m_stillBox);
}

void SpatialDialog::buildSizes()
{
    m_size = new QComboBox(this);
    m_size->setObjectName("spatialSize");
    m_size->setToolTip("Size of the video of both eyes. Few players show one that is wider than "
                       "8192 pixels.");
    for (const SpatialSize& row : kSpatialSizes)
        m_size->addItem(row.label);
    auto* form = new QFormLayout;
    form->addRow("Video size", m_size);
    static_cast<QVBoxLayout*>(layout())->addLayout(form);
    m_outcome = new QLabel(this);
    m_outcome->setObjectName("spatialOutcome");
    m_outcome->setWordWrap(true);
    layout()->addWidget(m_outcome);
}

SpatialChoice SpatialDialog::choice() const
{
    SpatialChoice choice;
    choice.content = static_cast<SpatialContent>(m_contents->checkedId());
    choice.still = m_words.stillsAsPictures ? static_cast<SpatialStill>(m_stills->checkedId())
                                            : SpatialStill::Mp4;
    if (choice.isVideo())
        choice.width = kSpatialSizes[static_cast<std::size_t>(m_size->currentIndex())].width;
    return choice;
}

QSize SpatialDialog::pairSize() const
{
    const bool isFlyby = choice().content == SpatialContent::Flyby;
    return packedSize(kSideBySide, isFlyby ? m_eyes.flyby : m_eyes.still);
}

/// What belongs to the choice, and what comes out.
void SpatialDialog::follow()
{
    const SpatialChoice chosen = choice();
    m_stillBox->setEnabled(chosen.content == SpatialContent::Still);
    m_size->setEnabled(chosen.isVideo());
    const QSize target = spatialTarget(pairSize(), chosen.width);
    QSize size = target.isEmpty() ? pairSize() : target;
    if (chosen.isVideo())
        size = QSize(size.width() / 2 * 2, size.height() / 2 * 2);
    const QString obstacle = chosen.isVideo() ? videoSizeObstacle(size, "video size") : QString();
    QString text = QString("%1 x %2 pixels").arg(size.width()).arg(size.height());
    if (!obstacle.isEmpty())
        text += ". " + obstacle;
    m_outcome->setText(text);
    m_accept->setEnabled(obstacle.isEmpty());
}
