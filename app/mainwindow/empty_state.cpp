#include "app/mainwindow/empty_state.h"

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

#include "app/mainwindow/thumbnail_store.h"
#include "app/persist/recent_files.h"

static constexpr int kIconSide = 96;
static constexpr int kTiles = 4;
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
    button->setMinimumSize(200, 34);
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

EmptyState::EmptyState(QAction* open, QAction* openScene,
                       std::function<void(const QString&)> openRecent, QWidget* parent)
    : QWidget(parent)
    , m_openRecent(std::move(openRecent))
    , m_recent(new QWidget)
    , m_tiles(new QHBoxLayout(m_recent))
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
    column->addWidget(buttonOf(open, tr("Open an image...")), 0, Qt::AlignHCenter);
    column->addWidget(buttonOf(openScene, tr("Try the built-in scene")), 0, Qt::AlignHCenter);
    column->addSpacing(14);
    column->addWidget(m_recent, 0, Qt::AlignHCenter);
    column->addStretch(3);
}

void EmptyState::showEvent(QShowEvent* event)
{
    showRecentImages();
    QWidget::showEvent(event);
}

void EmptyState::showRecentImages()
{
    qDeleteAll(m_recent->findChildren<QToolButton*>());
    const QStringList paths = recent::entries(appcfg::RecentCategory::Images);
    for (const QString& path : paths)
        if (m_tiles->count() < kTiles && QFileInfo(path).isFile())
            m_tiles->addWidget(tileOf(path));
    m_recent->setVisible(m_tiles->count() > 0);
}

QToolButton* EmptyState::tileOf(const QString& path)
{
    const QImage picture = ThumbnailStore().find(path);
    const QString name = QFileInfo(path).fileName();
    auto* tile = new QToolButton;
    tile->setAutoRaise(true);
    tile->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    tile->setIconSize({ThumbnailStore::kWidth, ThumbnailStore::kHeight});
    tile->setIcon(picture.isNull() ? placeholder(path) : pictureOf(picture));
    tile->setText(fontMetrics().elidedText(name, Qt::ElideMiddle, ThumbnailStore::kWidth));
    tile->setToolTip(QDir::toNativeSeparators(path));
    tile->setAccessibleName(tr("Open %1").arg(name));
    // Later than the click: opening hides and may rebuild the tiles.
    connect(
        tile, &QToolButton::clicked, this, [this, path] { m_openRecent(path); },
        Qt::QueuedConnection);
    return tile;
}
