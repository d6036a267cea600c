#include "app/prefs/theme_palette.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace theme {

namespace {

struct RoleRow
{
    QPalette::ColorRole role;
    QRgb dark;
    QRgb light;
};

constexpr std::array kRoles{
    RoleRow{QPalette::Window, 0xff2b2b2b, 0xffefefef},
    RoleRow{QPalette::WindowText, 0xffe2e2e2, 0xff1b1b1b},
    RoleRow{QPalette::Base, 0xff1f1f1f, 0xffffffff},
    RoleRow{QPalette::AlternateBase, 0xff262626, 0xfff5f5f5},
    RoleRow{QPalette::Text, 0xffe2e2e2, 0xff1b1b1b},
    RoleRow{QPalette::PlaceholderText, 0xff9c9c9c, 0xff6a6a6a},
    RoleRow{QPalette::Button, 0xff3a3a3a, 0xffe6e6e6},
    RoleRow{QPalette::ButtonText, 0xffe6e6e6, 0xff1b1b1b},
    RoleRow{QPalette::BrightText, 0xffffffff, 0xff000000},
    RoleRow{QPalette::ToolTipBase, 0xff3f3f3f, 0xfffbfbfb},
    RoleRow{QPalette::ToolTipText, 0xfff0f0f0, 0xff1b1b1b},
    RoleRow{QPalette::Light, 0xff505050, 0xffffffff},
    RoleRow{QPalette::Midlight, 0xff444444, 0xfff7f7f7},
    RoleRow{QPalette::Mid, 0xff232323, 0xffb8b8b8},
    RoleRow{QPalette::Dark, 0xff1a1a1a, 0xff9a9a9a},
    RoleRow{QPalette::Shadow, 0xff0d0d0d, 0xff6e6e6e},
    RoleRow{QPalette::Link, 0xff7fbaf0, 0xff1d5f9e},
    RoleRow{QPalette::LinkVisited, 0xffb9a3e8, 0xff6a4a9c},
};

/// Relative luminance of one channel.
double linear(double channel)
{
    return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double luminance(const QColor& colour)
{
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
           0.0722 * linear(colour.blueF());
}

} // namespace

double contrastRatio(const QColor& a, const QColor& b)
{
    const auto [low, high] = std::minmax({luminance(a), luminance(b)});
    return (high + 0.05) / (low + 0.05);
}

QColor textOn(const QColor& background)
{
    const QColor white(Qt::white);
    const QColor black(Qt::black);
    return contrastRatio(white, background) >= contrastRatio(black, background) ? white : black;
}

QPalette palette(bool dark, const QColor& accent)
{
    QPalette palette;
    for (const RoleRow& row : kRoles)
        palette.setColor(row.role, QColor(dark ? row.dark : row.light));
    palette.setColor(QPalette::Highlight, accent);
    palette.setColor(QPalette::HighlightedText, textOn(accent));
    const QColor faded(dark ? 0xff7a7a7a : 0xff9a9a9a);
    for (const QPalette::ColorRole role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::PlaceholderText})
        palette.setColor(QPalette::Disabled, role, faded);
    palette.setColor(QPalette::Disabled, QPalette::Highlight,
                     QColor(dark ? 0xff444444 : 0xffc8c8c8));
    palette.setColor(QPalette::Disabled, QPalette::HighlightedText, faded);
    return palette;
}

QColor mutedText(bool dark)
{
    return QColor(dark ? 0xffa6a6a6 : 0xff5e5e5e);
}

QColor controlEdge()
{
    return QColor(0xff808080);
}

QColor separator(bool dark)
{
    return QColor(dark ? 0xff1c1c1c : 0xffcdcdcd);
}

} // namespace theme
