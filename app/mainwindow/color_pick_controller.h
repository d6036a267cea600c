#pragma once

#include <functional>
#include <optional>

#include <QColor>
#include <QPoint>

class PreviewView;
class ShellHost;
namespace zre {
struct Image;
}

/// Takes the colour of a colour row from the picture under the user's next click in the preview.
class ColorPickController
{
public:
    /// `taken` receives the row and the colour.
    ColorPickController(ShellHost& host, PreviewView& preview,
                        std::function<void(int row, const QColor&)> taken);

    void pickColor(int row);

private:
    void take(QPoint pixel);

    ShellHost& m_host;
    PreviewView& m_preview;
    std::function<void(int, const QColor&)> m_taken;
    int m_row = 0;
};

/// The mean colour of the 3 x 3 pixels about `pixel`, as many of them as lie in the picture; none
/// for a pixel outside. A noisy picture has no colour in a single pixel.
std::optional<QColor> colorAbout(const zre::Image& picture, QPoint pixel);
