#include "app/prefs/theme_style_sheet.h"

#include <array>
#include <utility>

#include <QDir>
#include <QImage>
#include <QPainter>
#include <QSaveFile>
#include <QSvgRenderer>

#include "app/prefs/theme_palette.h"

namespace theme {

namespace {

constexpr int kMarkSide = 14;
constexpr const char* kMenuMarkColour = "#e6e6e6";

constexpr const char* kCheckSvg =
    R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 14 14"><path d="M3.2 7.3 L5.9 10 L10.9 4.4")"
    R"( fill="none" stroke="%1" stroke-width="1.9" stroke-linecap="round" stroke-linejoin="round"/></svg>)";
constexpr const char* kDotSvg =
    R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 14 14"><circle cx="7" cy="7" r="2.9")"
    R"( fill="%1"/></svg>)";

struct Mark
{
    const char* file; ///< without suffix
    const char* svg;
    const char* colour;
};

constexpr std::array kMarks{
    Mark{"check_black", kCheckSvg, "black"},
    Mark{"check_white", kCheckSvg, "white"},
    Mark{"dot_black", kDotSvg, "black"},
    Mark{"dot_white", kDotSvg, "white"},
    Mark{"check_menu", kCheckSvg, kMenuMarkColour},
    Mark{"dot_menu", kDotSvg, kMenuMarkColour},
};

bool writeMark(const Mark& mark, int density, const QString& path)
{
    QSvgRenderer drawing(QString(mark.svg).arg(mark.colour).toUtf8());
    QImage picture(kMarkSide * density, kMarkSide * density, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    drawing.render(&painter);
    painter.end();
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) && picture.save(&file, "PNG") && file.commit();
}

/// In the sheet's language a text ends at the next quotation mark.
QString quotable(QString path)
{
    return path.replace('\\', "\\\\").replace('"', "\\\"");
}

constexpr const char* kFrame = R"(
QToolTip { color: @tipText; background: @tipBase; border: 1px solid @edge; padding: 3px 5px; }
QGroupBox { font-weight: 600; margin-top: 20px;
    border: 1px solid @line; border-radius: 5px; }
QGroupBox::title { subcontrol-origin: margin; subcontrol-position: top left; left: 2px; top: 1px;
    color: @section; }
*[sectionTitle="true"] { color: @section; font-weight: 600; }
QPushButton { padding: 4px 12px; }
QDialogButtonBox { dialogbuttonbox-buttons-have-icons: 0; }
QTabWidget::pane { border: none; border-top: 1px solid @line; }
QTabBar { qproperty-drawBase: 0; }
QTabBar::tab { padding: 6px 12px; border: none; border-bottom: 2px solid transparent; color: @muted; }
QTabBar::tab:hover { color: @strong; }
QTabBar::tab:selected { color: @strong; border-bottom-color: @accent; }
QTabBar::tab:focus { background: @faded; }
QStatusBar { border-top: 1px solid @line; }
QStatusBar::item { border: none; }
QSplitter::handle { background: @line; }
QSplitter::handle:hover { background: @accent; }
)";

constexpr const char* kBoxes = R"(
QCheckBox, QRadioButton { spacing: 7px; }
QCheckBox::indicator, QRadioButton::indicator, QGroupBox::indicator { width: 14px; height: 14px;
    border: 1px solid @edge; background: @base; }
QCheckBox::indicator, QGroupBox::indicator { border-radius: 3px; }
QRadioButton::indicator { border-radius: 8px; }
QCheckBox::indicator:hover, QRadioButton::indicator:hover, QCheckBox::indicator:focus,
QRadioButton::indicator:focus { border-color: @strong; }
QCheckBox::indicator:checked, QGroupBox::indicator:checked { background: @accent;
    border-color: @accent; image: url("@marks/check_@mark.png"); }
QRadioButton::indicator:checked { background: @accent; border-color: @accent;
    image: url("@marks/dot_@mark.png"); }
QCheckBox::indicator:checked:focus, QRadioButton::indicator:checked:focus { border-color: @strong; }
QCheckBox::indicator:disabled, QRadioButton::indicator:disabled { border-color: @line;
    background: @window; }
QCheckBox::indicator:checked:disabled, QRadioButton::indicator:checked:disabled {
    background: @faded; border-color: @faded; }
)";

constexpr const char* kMenuBoxes = R"(
QMenu::indicator { width: 14px; height: 14px; left: 5px; }
QMenu::indicator:non-exclusive:checked { image: url("@marks/check_@menuMark.png"); }
QMenu::indicator:exclusive:checked { image: url("@marks/dot_@menuMark.png"); }
)";

} // namespace

QString markColour(const QColor& accent)
{
    return accent.lightnessF() > 0.55f ? "black" : "white";
}

bool writeMarks(const QString& folder)
{
    bool written = true;
    for (const Mark& mark : kMarks)
        for (const int density : {1, 2, 3}) {
            const QString suffix = density > 1 ? QString("@%1x.png").arg(density) : ".png";
            written =
                writeMark(mark, density, QDir(folder).filePath(mark.file + suffix)) && written;
        }
    return written;
}

QString styleSheet(const StyleInputs& inputs)
{
    const QPalette colours = palette(inputs.dark, inputs.accent);
    QString sheet = kFrame;
    if (!inputs.marksFolder.isEmpty())
        sheet += QString(kBoxes) + kMenuBoxes;
    const std::pair<const char*, QString> values[] = {
        {"@tipText", colours.color(QPalette::ToolTipText).name()},
        {"@tipBase", colours.color(QPalette::ToolTipBase).name()},
        {"@window", colours.color(QPalette::Window).name()},
        {"@base", colours.color(QPalette::Base).name()},
        {"@muted", mutedText(inputs.dark).name()},
        {"@faded", colours.color(QPalette::Disabled, QPalette::Highlight).name()},
        {"@strong", colours.color(QPalette::WindowText).name()},
        {"@edge", controlEdge().name()},
        {"@line", separator(inputs.dark).name()},
        {"@section", inputs.sectionTitle.name()},
        {"@accent", inputs.accent.name()},
        {"@menuMark", inputs.dark ? "menu" : "black"},
        {"@marks", quotable(inputs.marksFolder)},
        {"@mark", markColour(inputs.accent)},
    };
    for (const auto& [name, value] : values)
        sheet.replace(name, value);
    return sheet;
}

} // namespace theme
