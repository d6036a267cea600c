#include "app/prefs/preferences_dialog.h"

#include <algorithm>
#include <array>
#include <utility>

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include "app/persist/appcfg.h"
#include "app/prefs/models_group.h"
#include "app/prefs/path_label.h"
#include "app/prefs/theme_manager.h"

namespace {

struct ToolbarRow
{
    appcfg::ToolbarGroup group;
    const char* label;
    const char* toolTip;
};

constexpr std::array kToolbarRows{
    ToolbarRow{appcfg::ToolbarGroup::LoadSave, "Load and save", "The button that opens an image."},
    ToolbarRow{appcfg::ToolbarGroup::Export, "Export",
               "The button that writes the current view into a file."},
    ToolbarRow{appcfg::ToolbarGroup::View, "View",
               "The buttons of the views and of the preview's scale."},
    ToolbarRow{appcfg::ToolbarGroup::Play, "Play",
               "The buttons that play the parallax motion and the flyby."},
    ToolbarRow{appcfg::ToolbarGroup::Tools, "Tools",
               "The buttons that undo, redo and open this dialog."},
};

constexpr std::array kModes{"System", "Light", "Dark"}; // in the order of ThemeManager::Mode

constexpr int kHintWidth = 400; ///< a wrapped text without one asks for more lines than it needs

QIcon swatch(const QColor& color, const QColor& edge)
{
    QIcon icon;
    for (const int density : {1, 2, 3}) {
        QPixmap pixmap(QSize(28, 14) * density);
        pixmap.fill(edge);
        QPainter(&pixmap).fillRect(pixmap.rect().adjusted(density, density, -density, -density),
                                   color);
        pixmap.setDevicePixelRatio(density);
        icon.addPixmap(pixmap);
    }
    return icon;
}

QHBoxLayout* rowOf(std::initializer_list<QWidget*> widgets)
{
    auto* row = new QHBoxLayout;
    for (QWidget* widget : widgets)
        row->addWidget(widget);
    row->addStretch();
    return row;
}

/// `page` in a frame that scrolls where the screen is too low for it.
QScrollArea* scrolling(QWidget* page)
{
    auto* area = new QScrollArea;
    area->setWidget(page);
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setFocusPolicy(Qt::NoFocus);
    return area;
}

} // namespace

PreferencesDialog::PreferencesDialog(PreferenceQuestions questions, QWidget* parent)
    : QDialog(parent)
    , m_questions(std::move(questions))
{
    setWindowTitle("Preferences");
    auto* page = new QWidget;
    auto* column = new QVBoxLayout(page);
    column->setSpacing(8);
    for (QWidget* group : {interfaceGroup(), toolbarGroup(), foldersGroup(), renderingGroup(),
                           videoGroup(), modelsGroup()})
        column->addWidget(group);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->addWidget(scrolling(page));
    outer->addWidget(buttons);
    buttons->setContentsMargins(8, 0, 8, 8);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(&ThemeManager::instance(), &ThemeManager::themeChanged, this,
            &PreferencesDialog::refreshLook);
    for (QPushButton* button : findChildren<QPushButton*>())
        button->setAutoDefault(button->parent() == buttons);
    refreshLook();
    refreshPaths();
    constexpr int kAroundWindow = 80; // title bar and panels of a desktop
    setMinimumWidth(580);
    resize(580, std::min(page->sizeHint().height() + buttons->sizeHint().height() + 12,
                         screen()->availableGeometry().height() - kAroundWindow));
}

QLabel* PreferencesDialog::hint(const QString& text)
{
    auto* label = new QLabel(text);
    label->setWordWrap(true);
    label->setMinimumWidth(kHintWidth);
    m_hints << label;
    return label;
}

QPushButton* PreferencesDialog::colorButton(const QString& title, const QString& toolTip,
                                            QColor (*get)(), void (*set)(const QColor&))
{
    auto* button = new QPushButton;
    button->setToolTip(toolTip);
    button->setAccessibleName(title);
    button->setIconSize(QSize(28, 14));
    connect(button, &QPushButton::clicked, this, [this, title, get, set] {
        if (const QColor chosen = m_questions.chooseColor(title, get()); chosen.isValid())
            set(chosen);
    });
    m_refreshColors.push_back([this, button, get] {
        button->setIcon(swatch(get(), palette().color(QPalette::WindowText)));
        button->setText(" " + get().name());
    });
    return button;
}

QWidget* PreferencesDialog::interfaceGroup()
{
    auto* modes = new QComboBox;
    modes->setObjectName("themeMode");
    modes->setAccessibleName("Theme");
    modes->setToolTip("The look of all windows.");
    for (const char* mode : kModes)
        modes->addItem(mode);
    const auto showMode = [modes] {
        const QSignalBlocker quiet(modes);
        modes->setCurrentIndex(static_cast<int>(ThemeManager::instance().mode()));
    };
    showMode();
    connect(modes, &QComboBox::currentIndexChanged, this, [](int index) {
        ThemeManager::instance().setMode(static_cast<ThemeManager::Mode>(index));
    });
    connect(&ThemeManager::instance(), &ThemeManager::themeChanged, modes, showMode);

    QPushButton* accent = colorButton(
        "Accent color", "Marks what is selected and switched on.",
        [] { return ThemeManager::instance().accent(); },
        [](const QColor& color) { ThemeManager::instance().setAccent(color); });
    accent->setObjectName("accentColor");
    QPushButton* secondary = colorButton(
        "Secondary color", "Titles of sections.",
        [] { return ThemeManager::instance().sectionTitleColor(); },
        [](const QColor& color) { ThemeManager::instance().setSectionTitleColor(color); });
    secondary->setObjectName("secondaryColor");
    auto* restore = new QPushButton("Restore defaults");
    restore->setObjectName("restoreLook");
    restore->setToolTip("Go back to the theme and colors that the program came with.");
    connect(restore, &QPushButton::clicked, this, [] { //
        ThemeManager::instance().restoreDefaults();
    });

    auto* raw = new QCheckBox("Show parameter values as [0,1] instead of %");
    raw->setObjectName("rawValues");
    raw->setToolTip("How the boxes beside the sliders show their values.");
    raw->setChecked(!appcfg::showValuesAsPercent());
    connect(raw, &QCheckBox::toggled, this, [this](bool checked) {
        appcfg::setShowValuesAsPercent(!checked);
        emit settingsChanged();
    });

    auto* group = new QGroupBox("Interface");
    auto* form = new QFormLayout(group);
    form->addRow("Theme:", rowOf({modes}));
    form->addRow(hint("Applies immediately. \"System\" follows your OS light/dark setting."));
    form->addRow("Accent color:", rowOf({accent}));
    form->addRow("Secondary color:", rowOf({secondary, restore}));
    form->addRow("Units:", raw);
    form->addRow(QString(), hint("Checked: raw 0..1. Unchecked: 0-100%."));
    return group;
}

QWidget* PreferencesDialog::toolbarGroup()
{
    auto* group = new QGroupBox("Main toolbar");
    auto* row = new QHBoxLayout(group);
    for (const ToolbarRow& each : kToolbarRows) {
        auto* box = new QCheckBox(each.label);
        box->setToolTip(each.toolTip);
        box->setChecked(appcfg::toolbarGroupShown(each.group));
        connect(box, &QCheckBox::toggled, this, [this, which = each.group](bool shown) {
            appcfg::setToolbarGroupShown(which, shown);
            emit settingsChanged();
        });
        row->addWidget(box);
        row->addSpacing(12);
    }
    row->addStretch();
    return group;
}

QWidget* PreferencesDialog::foldersGroup()
{
    m_workFolder = pathLabel();
    m_workFolder->setObjectName("workFolder");
    auto* choose = new QPushButton("Choose folder...");
    choose->setObjectName("chooseWorkFolder");
    choose->setToolTip("The folder in which dialogs open first.");
    m_clearFolder = new QPushButton("Clear");
    m_clearFolder->setObjectName("clearWorkFolder");
    m_clearFolder->setToolTip("Go back to opening dialogs where you last worked.");
    connect(choose, &QPushButton::clicked, this, [this] {
        const QString folder = m_questions.chooseFolder("Default folder for saved new work",
                                                        appcfg::defaultWorkFolder());
        if (!folder.isEmpty())
            appcfg::setDefaultWorkFolder(folder);
        refreshPaths();
    });
    connect(m_clearFolder, &QPushButton::clicked, this, [this] {
        appcfg::setDefaultWorkFolder({});
        refreshPaths();
    });

    auto* group = new QGroupBox("Folders");
    auto* column = new QVBoxLayout(group);
    column->addWidget(new QLabel("Default folder for saved new work:"));
    column->addWidget(m_workFolder);
    column->addLayout(rowOf({choose, m_clearFolder}));
    return group;
}

QWidget* PreferencesDialog::renderingGroup()
{
    auto* trueColor = new QCheckBox("Stars keep their true color on any background");
    trueColor->setObjectName("starTrueColor");
    trueColor->setToolTip("Stars take their colors from the image. Off, they keep the light that "
                          "was left when the background was taken away.");
    trueColor->setChecked(appcfg::starTrueColor());
    connect(trueColor, &QCheckBox::toggled, this, [this](bool checked) {
        appcfg::setStarTrueColor(checked);
        emit settingsChanged();
    });
    auto* group = new QGroupBox("Rendering");
    auto* column = new QVBoxLayout(group);
    column->addWidget(trueColor);
    return group;
}

QWidget* PreferencesDialog::videoGroup()
{
    m_ffmpeg = pathLabel();
    m_ffmpeg->setObjectName("ffmpegPath");
    auto* locate = new QPushButton("Locate ffmpeg");
    locate->setObjectName("locateFfmpeg");
    locate->setToolTip("Choose the ffmpeg program to use.");
    m_autoDetect = new QPushButton("Auto-detect");
    m_autoDetect->setObjectName("autoDetectFfmpeg");
    m_autoDetect->setToolTip("Clear the manual path and fall back to ffmpeg on your PATH.");
    connect(locate, &QPushButton::clicked, this, [this] {
        const QString program =
            m_questions.chooseProgram("Locate ffmpeg", appcfg::ffmpegResolved());
        if (!program.isEmpty())
            appcfg::setFfmpegConfigured(program);
        refreshPaths();
    });
    connect(m_autoDetect, &QPushButton::clicked, this, [this] {
        appcfg::setFfmpegConfigured({});
        refreshPaths();
    });
    auto* warn = new QCheckBox("Warn at startup if ffmpeg is not found");
    warn->setObjectName("warnFfmpeg");
    warn->setToolTip("Reminds you at each start while no ffmpeg program is there.");
    warn->setChecked(!appcfg::ffmpegWarningDismissed());
    connect(warn, &QCheckBox::toggled, this,
            [](bool wanted) { appcfg::setFfmpegWarningDismissed(!wanted); });

    auto* group = new QGroupBox("Video export (ffmpeg)");
    auto* column = new QVBoxLayout(group);
    column->addWidget(m_ffmpeg);
    column->addLayout(rowOf({locate, m_autoDetect}));
    column->addWidget(warn);
    return group;
}

QWidget* PreferencesDialog::modelsGroup()
{
    auto* group = new ModelsGroup(m_questions.chooseModel);
    connect(group, &ModelsGroup::modelsChanged, this, &PreferencesDialog::modelsChanged);
    return group;
}

void PreferencesDialog::refreshLook()
{
    const ThemeManager& theme = ThemeManager::instance();
    for (QLabel* label : m_hints)
        label->setStyleSheet(theme.mutedLabelStyle(theme.effectiveDark(), 0));
    for (const std::function<void()>& refresh : m_refreshColors)
        refresh();
}

void PreferencesDialog::refreshPaths()
{
    const QString folder = appcfg::defaultWorkFolder();
    showPath(m_workFolder, folder, "Not set: dialogs open where you last worked.");
    m_clearFolder->setEnabled(!folder.isEmpty());
    const QString detected = appcfg::ffmpegResolved();
    showPath(m_ffmpeg, detected, "ffmpeg was not found on your PATH.");
    m_autoDetect->setEnabled(!appcfg::ffmpegConfigured().isEmpty());
}
