#include "app/mainwindow/empty_state.h"

#include <algorithm>
#include <utility>

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

#include "app/mainwindow/recent_controller.h"
#include "app/mainwindow/thumbnail_store.h"
#include "app/persist/recent_files.h"

static constexpr int kIconSide = 96;
static constexpr int kTiles = 4; ///< of both kinds
static constexpr int kPairTiles = 2;
static constexpr QColor kFaint(0xa8, 0xa8, 0xae);

static QLabel* line(const QString& text, int pointsLarger, const QColor& color)
{
    auto* label = new QLabel(text);
    label->setAlignment(Qt::AlignCenter);
    QFont font = label->font();
    font.setPointSize(font.pointSize() + pointsLarger);
    label->setFont(font);
    QPalette palette = label->palette();
    palette.setColor(QPalette::WindowText, color);
    label->setPalette(palette);
    return label;
}

static QPushButton* buttonOf(QAction* action, const QString& text)
{
    auto* button = new QPushButton(text);
    button->setMinimumSize(240, 34);
    QObject::connect(button, &QPushButton::clicked, action, &QAction::trigger);
    return button;
}

static QPixmap pictureOf(QImage thumbnail)
{
    thumbnail.setDevicePixelRatio(ThumbnailStore::kDensity);
    return QPixmap::fromImage(thumbnail);
}

/// In the place of a picture that there is none of: what kind of file it is.
static QPixmap placeholder(const QString& path)
{
    QPixmap pixmap(ThumbnailStore::kWidth, ThumbnailStore::kHeight);
    pixmap.fill(QColor(0x2c, 0x2c, 0x30));
    QPainter painter(&pixmap);
    painter.setPen(kFaint);
    painter.drawText(pixmap.rect(), Qt::AlignCenter, QFileInfo(path).suffix().toUpper());
    return pixmap;
}

EmptyState::Group EmptyState::groupTitled(const QString& title)
{
    Group group{new QWidget, new QHBoxLayout};
    auto* column = new QVBoxLayout(group.box);
    column->setContentsMargins({});
    column->addWidget(line(title, 0, kFaint));
    column->addLayout(group.tiles);
    return group;
}

EmptyState::EmptyState(const Actions& actions, OpenRecent openRecent, QWidget* parent)
    : QWidget(parent)
    , m_openRecent(std::move(openRecent))
    , m_images(groupTitled(tr("Recent images")))
    , m_pairs(groupTitled(tr("Recent pairs")))
{
    auto* icon = new QLabel;
    icon->setAlignment(Qt::AlignCenter);
    icon->setPixmap(QApplication::windowIcon().pixmap(QSize(kIconSide, kIconSide)));

    auto* column = new QVBoxLayout(this);
    column->setSpacing(10);
    column->addStretch(2);
    column->addWidget(icon);
    column->addSpacing(6);
    column->addWidget(line(tr("Open an image to begin."), 5, QColor(0xe8, 0xe8, 0xea)));
    column->addWidget(
        line(tr("Drop a file here, or choose one: XISF, FITS, TIFF, PNG, JPEG."), 0, kFaint));
    column->addSpacing(10);
    const auto addButton = [column](QAction* action, const QString& text) {
        column->addWidget(buttonOf(action, text), 0, Qt::AlignHCenter);
    };
    addButton(actions.openImage, tr("Open an image..."));
    addButton(actions.openPair, tr("Open a starless + stars pair..."));
    addButton(actions.openScene, tr("Try the built-in scene"));
    column->addSpacing(14);
    auto* recent = new QHBoxLayout;
    recent->setSpacing(28);
    recent->addStretch();
    recent->addWidget(m_images.box);
    recent->addWidget(m_pairs.box);
    recent->addStretch();
    column->addLayout(recent);
    column->addStretch(3);
}

void EmptyState::showEvent(QShowEvent* event)
{
    showRecent();
    QWidget::showEvent(event);
}

/// The newest entries whose files are there, at most `most`.
static QStringList standing(appcfg::RecentCategory category, qsizetype most)
{
    QStringList found;
    for (const QString& entry : recent::entries(category)) {
        const QStringList files = filesOfRecent(entry);
        if (found.size() < most && std::all_of(files.begin(), files.end(), [](const QString& file) {
                return QFileInfo(file).isFile();
            }))
            found << entry;
    }
    return found;
}

void EmptyState::showRecent()
{
    const QStringList pairs = standing(appcfg::RecentCategory::Pairs, kPairTiles);
    fill(m_pairs, pairs, m_openRecent.pair);
    fill(m_images, standing(appcfg::RecentCategory::Images, kTiles - pairs.size()),
         m_openRecent.image);
}

void EmptyState::fill(const Group& group, const QStringList& entries, const Open& open)
{
    qDeleteAll(group.box->findChildren<QToolButton*>());
    for (const QString& entry : entries)
        group.tiles->addWidget(tileOf(entry, open));
    group.box->setVisible(!entries.isEmpty());
}

QToolButton* EmptyState::tileOf(const QString& entry, const Open& open)
{
    const QStringList files = filesOfRecent(entry);
    const QImage picture = ThumbnailStore().find(files.front());
    const QString name = recentLabels({entry}).front();
    auto* tile = new QToolButton;
    tile->setAutoRaise(true);
    tile->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    tile->setIconSize({ThumbnailStore::kWidth, ThumbnailStore::kHeight});
    tile->setIcon(picture.isNull() ? placeholder(files.front()) : pictureOf(picture));
    tile->setText(fontMetrics()
                      .elidedText(QFileInfo(files.front()).fileName(), Qt::ElideMiddle,
                                  ThumbnailStore::kWidth)
                      .replace('&', "&&"));
    tile->setToolTip(QDir::toNativeSeparators(files.join('\n')));
    tile->setAccessibleName(tr("Open %1").arg(name));
    // Later than the click: opening hides and may rebuild the tiles.
    connect(
        tile, &QToolButton::clicked, this, [open, entry] { open(entry); }, Qt::QueuedConnection);
    return tile;
}
