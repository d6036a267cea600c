#include "app/mainwindow/empty_state.h"

#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

static constexpr int kIconSide = 96;

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

static QPushButton* buttonOf(QAction* action)
{
    auto* button = new QPushButton(action->text().remove('&')); // Alt+letter is the menus'
    button->setMinimumSize(200, 34);
    QObject::connect(button, &QPushButton::clicked, action, &QAction::trigger);
    return button;
}

EmptyState::EmptyState(QAction* open, QAction* openScene, QWidget* parent)
    : QWidget(parent)
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
    column->addWidget(line(tr("Drop a file here, or choose one: XISF, FITS, TIFF, PNG, JPEG."), 0,
                           QColor(0xa8, 0xa8, 0xae)));
    column->addSpacing(10);
    for (QAction* action : {open, openScene})
        column->addWidget(buttonOf(action), 0, Qt::AlignHCenter);
    column->addStretch(3);
}
