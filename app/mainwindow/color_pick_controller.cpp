#include "app/mainwindow/color_pick_controller.h"

#include <algorithm>
#include <array>
#include <utility>

#include "app/mainwindow/preview_view.h"
#include "app/mainwindow/shell_host.h"
#include "app/session/session.h"

ColorPickController::ColorPickController(ShellHost& host, PreviewView& preview,
                                         std::function<void(int, const QColor&)> taken)
    : m_host(host)
    , m_preview(preview)
    , m_taken(std::move(taken))
{
    QObject::connect(&preview, &PreviewView::picked, &preview,
                     [this](const QPoint& pixel) { take(pixel); });
    QObject::connect(&preview, &PreviewView::pickingCancelled, &preview,
                     [this] { m_host.showStatus("No color taken."); });
}

void ColorPickController::pickColor(int row)
{
    m_row = row;
    m_preview.startPicking();
    m_host.showStatus("Click in the picture to take its color; Esc leaves it.");
}

void ColorPickController::take(QPoint pixel)
{
    const zre::Image& source = m_host.session().source;
    if (source.width > 0)
        pixel.setX(pixel.x() % source.width); // the right half of a pair shows the same picture
    if (const std::optional<QColor> color = colorAbout(source, pixel))
        m_taken(m_row, *color);
}

std::optional<QColor> colorAbout(const zre::Image& picture, QPoint pixel)
{
    const QRect whole(0, 0, picture.width, picture.height);
    if (!whole.contains(pixel))
        return std::nullopt;
    const QRect patch = whole.intersected(QRect(pixel - QPoint(1, 1), QSize(3, 3)));
    std::array<float, 3> mean{};
    for (int channel = 0; channel < 3; ++channel) {
        const float* plane = picture.plane(std::min(channel, picture.channels - 1));
        float& sum = mean[static_cast<std::size_t>(channel)];
        for (int y = patch.top(); y <= patch.bottom(); ++y)
            for (int x = patch.left(); x <= patch.right(); ++x)
                sum += plane[static_cast<std::size_t>(y) * static_cast<std::size_t>(picture.width) +
                             static_cast<std::size_t>(x)];
        sum = sum > 0.0f ? std::min(sum / static_cast<float>(patch.width() * patch.height()), 1.0f)
                         : 0.0f;
    }
    return QColor::fromRgbF(mean[0], mean[1], mean[2]);
}
