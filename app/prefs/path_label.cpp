#include "app/prefs/path_label.h"

#include <QDir>
#include <QLabel>

QLabel* pathLabel()
{
    auto* label = new QLabel;
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label->setTextFormat(Qt::PlainText);
    label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    return label;
}

void showPath(QLabel* label, const QString& path, const QString& otherwise)
{
    constexpr int kWidth = 500; // pixels, what the narrowest dialog has room for
    const QString text = path.isEmpty() ? otherwise : QDir::toNativeSeparators(path);
    const QString shown = label->fontMetrics().elidedText(text, Qt::ElideMiddle, kWidth);
    label->setText(shown);
    label->setToolTip(path.isEmpty() && shown == text ? QString() : text);
}
