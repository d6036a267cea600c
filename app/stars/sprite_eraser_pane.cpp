#include "app/stars/sprite_eraser_pane.h"

#include <algorithm>
#include <utility>

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>

#include "app/stars/star_sprite_view.h"

using startable::Eraser;
using startable::Erasures;

static constexpr const char* kFeatherHelp =
    "Soft-edge width of NEW erasures, as a percentage of their radius. Existing erasures keep the "
    "feather they were made with.";

/// Whether both are the same disc, whatever they do with the light.
static bool sameDisc(const zre::StarErasure& a, const zre::StarErasure& b)
{
    return a.x == b.x && a.y == b.y && a.radius == b.radius && a.feather == b.feather;
}

SpriteEraserPane::SpriteEraserPane(std::function<startable::Scene()> scene, QWidget* parent)
    : QWidget(parent)
    , m_scene(std::move(scene))
    , m_view(new StarSpriteView(this))
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(buildLookBar());
    layout->addWidget(m_view, 1);
    layout->addWidget(buildEraserBar());
    layout->addWidget(buildButtons());
    m_view->setEraser(m_eraser);
    connect(m_view, &StarSpriteView::eraseRequested, this, &SpriteEraserPane::erase);
    connect(m_view, &StarSpriteView::erasureSelected, this, &SpriteEraserPane::selectErasure);
    connect(m_view, &StarSpriteView::deleteRequested, this, &SpriteEraserPane::deleteSelected);
    connect(m_view, &StarSpriteView::radiusChanged, this, &SpriteEraserPane::setRadius);
    showErasures();
}

QWidget* SpriteEraserPane::buildLookBar()
{
    auto* bar = new QWidget(this);
    m_look = new QComboBox(bar);
    for (const startable::LookName& look : startable::kLooks) {
        m_look->addItem(look.name);
        m_look->setItemData(m_look->count() - 1, QString(look.meaning), Qt::ToolTipRole);
    }
    m_look->setAccessibleName(tr("What the picture of the star shows"));
    m_smooth = new QCheckBox(tr("Smooth"), bar);
    m_smooth->setToolTip(tr("Shows no single pixels."));
    m_brighten = new QCheckBox(tr("Brighten"), bar);
    m_brighten->setToolTip(tr("Lifts faint light, to find companions. On the screen only."));
    auto* layout = new QHBoxLayout(bar);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_look);
    layout->addWidget(m_smooth);
    layout->addWidget(m_brighten);
    layout->addStretch();
    connect(m_look, &QComboBox::activated, this, [this] { showPicture(true); });
    connect(m_brighten, &QCheckBox::toggled, this, [this] { showPicture(true); });
    connect(m_smooth, &QCheckBox::toggled, m_view, &StarSpriteView::setSmooth);
    return bar;
}

QWidget* SpriteEraserPane::buildEraserBar()
{
    auto* bar = new QWidget(this);
    m_mode = new QComboBox(bar);
    m_mode->setObjectName("eraseMode");
    for (const startable::EraseMode& mode : startable::kEraseModes) {
        m_mode->addItem(mode.name);
        m_mode->setItemData(m_mode->count() - 1, QString(mode.meaning), Qt::ToolTipRole);
    }
    m_meaning = new QLabel(bar);
    m_meaning->setWordWrap(true);
    m_radius = new QDoubleSpinBox(bar);
    m_radius->setObjectName("eraseRadius");
    m_radius->setDecimals(1);
    m_radius->setRange(Eraser::kMinRadius, Eraser::kMaxRadius);
    m_radius->setSuffix(tr(" px"));
    m_radius->setValue(m_eraser.radius);
    m_radius->setToolTip(tr("Radius of NEW erasures. Ctrl and the wheel over the sprite set it."));
    m_feather = new QSpinBox(bar);
    m_feather->setObjectName("eraseFeather");
    m_feather->setRange(0, Eraser::kMaxFeatherPercent);
    m_feather->setSuffix(" %");
    m_feather->setValue(m_eraser.featherPercent);
    m_feather->setToolTip(tr(kFeatherHelp));

    const auto label = [bar](const QString& text, QWidget* buddy) {
        auto* made = new QLabel(text, bar);
        made->setBuddy(buddy);
        return made;
    };
    auto* grid = new QGridLayout(bar);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setColumnStretch(4, 1);
    grid->addWidget(label(tr("&Mode"), m_mode), 0, 0);
    grid->addWidget(m_mode, 0, 1, 1, 4);
    grid->addWidget(m_meaning, 1, 0, 1, 5);
    grid->addWidget(label(tr("&Radius"), m_radius), 2, 0);
    grid->addWidget(m_radius, 2, 1);
    grid->addWidget(label(tr("F&eather"), m_feather), 2, 2);
    grid->addWidget(m_feather, 2, 3);
    connect(m_mode, &QComboBox::activated, this, &SpriteEraserPane::chooseMode);
    connect(m_radius, &QDoubleSpinBox::valueChanged, this, &SpriteEraserPane::setRadius);
    connect(m_feather, &QSpinBox::valueChanged, this, [this](int percent) {
        m_eraser.featherPercent = percent;
        m_view->setEraser(m_eraser);
    });
    return bar;
}

QWidget* SpriteEraserPane::buildButtons()
{
    auto* bar = new QWidget(this);
    const auto button = [this, bar](const char* name, const QString& text, const QString& help,
                                    void (SpriteEraserPane::*act)()) {
        auto* made = new QPushButton(text, bar);
        made->setObjectName(name);
        made->setToolTip(help);
        made->setAutoDefault(false);
        connect(made, &QPushButton::clicked, this, act);
        return made;
    };
    m_delete = button("deleteErasure", tr("&Delete"), tr("Deletes the selected erasure (Del)."),
                      &SpriteEraserPane::deleteSelected);
    m_clearStar = button("clearStarErasures", tr("&Clear Erasures"),
                         tr("Deletes every erasure seen here."), &SpriteEraserPane::clearStar);
    m_clearAll = button("clearAllErasures", tr("Clear &All"),
                        tr("Deletes every erasure of the image."), &SpriteEraserPane::clearAll);
    auto* layout = new QHBoxLayout(bar);
    layout->setContentsMargins(0, 0, 0, 0);
    for (QPushButton* each : {m_delete, m_clearStar, m_clearAll})
        layout->addWidget(each);
    layout->addStretch();
    return bar;
}

void SpriteEraserPane::showStar(int index)
{
    m_star = index;
    m_selected.reset();
    showPicture(false);
}

void SpriteEraserPane::refresh(int index)
{
    const bool same = (index >= 0) == (m_star >= 0);
    m_star = index;
    showPicture(same);
}

void SpriteEraserPane::showPicture(bool same)
{
    const startable::Scene scene = m_scene();
    startable::StarPicture picture =
        startable::starPicture(scene, m_star, static_cast<startable::Look>(m_look->currentIndex()),
                               m_brighten->isChecked());
    const QRect before = std::exchange(m_shown, {picture.origin, picture.image.size()});
    m_erasures = scene.erasures;
    m_view->setPicture(std::move(picture), same && before.intersects(m_shown));
    showErasures();
}

int SpriteEraserPane::selectedIndex() const
{
    if (m_selected)
        for (std::size_t i = 0; i < m_erasures.size(); ++i)
            if (sameDisc(m_erasures[i], *m_selected))
                return static_cast<int>(i);
    return -1;
}

void SpriteEraserPane::showErasures()
{
    const int selected = selectedIndex();
    m_view->setErasures(m_erasures, selected);
    const int mode = selected >= 0 ? m_erasures[static_cast<std::size_t>(selected)].mode //
                                   : m_eraser.mode;
    m_mode->setCurrentIndex(mode);
    m_mode->setAccessibleName(selected >= 0 ? tr("Mode of the selected erasure")
                                            : tr("Mode of new erasures"));
    m_meaning->setText((selected >= 0 ? tr("Selected erasure: %1") : QString("%1"))
                           .arg(startable::kEraseModes[static_cast<std::size_t>(
                                                           std::max(m_mode->currentIndex(), 0))]
                                    .meaning));
    m_delete->setEnabled(selected >= 0);
    m_clearAll->setEnabled(!m_erasures.empty());
    m_clearStar->setEnabled(
        std::any_of(m_erasures.begin(), m_erasures.end(), [this](const zre::StarErasure& each) {
            return startable::touches(each, m_shown);
        }));
}

void SpriteEraserPane::chooseMode(int mode)
{
    m_eraser.mode = mode;
    m_view->setEraser(m_eraser);
    const int selected = selectedIndex();
    if (selected >= 0 && m_erasures[static_cast<std::size_t>(selected)].mode != mode) {
        Erasures edited = m_erasures;
        edited[static_cast<std::size_t>(selected)].mode = mode;
        emit erasuresEdited(edited, startable::kChangeModeLabel);
    }
    showErasures();
}

void SpriteEraserPane::setRadius(double radius)
{
    m_eraser.radius = std::clamp(radius, Eraser::kMinRadius, Eraser::kMaxRadius);
    const QSignalBlocker quiet(m_radius);
    m_radius->setValue(m_eraser.radius);
    m_view->setEraser(m_eraser);
}

void SpriteEraserPane::erase(QPointF place)
{
    Erasures edited = m_erasures;
    edited.push_back(m_eraser.at(place));
    m_selected = edited.back();
    emit erasuresEdited(edited, startable::kEraseLabel);
}

void SpriteEraserPane::selectErasure(int index)
{
    m_selected.reset();
    if (index >= 0 && static_cast<std::size_t>(index) < m_erasures.size())
        m_selected = m_erasures[static_cast<std::size_t>(index)];
    showErasures();
}

void SpriteEraserPane::deleteSelected()
{
    const int selected = selectedIndex();
    if (selected < 0)
        return;
    Erasures edited = m_erasures;
    edited.erase(edited.begin() + selected);
    m_selected.reset();
    emit erasuresEdited(edited, startable::kDeleteLabel);
}

void SpriteEraserPane::clearStar()
{
    Erasures edited = m_erasures;
    std::erase_if(
        edited, [this](const zre::StarErasure& each) { return startable::touches(each, m_shown); });
    m_selected.reset();
    emit erasuresEdited(edited, startable::kClearLabel);
}

void SpriteEraserPane::clearAll()
{
    m_selected.reset();
    emit erasuresEdited({}, startable::kClearLabel);
}
