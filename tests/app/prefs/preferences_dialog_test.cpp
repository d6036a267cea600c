#include "app/prefs/preferences_dialog.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QPushButton>

#include <gtest/gtest.h>

#include "app/persist/appcfg.h"
#include "app/prefs/theme_manager.h"
#include "engine/inference/ai_depth.h"
#include "engine/inference/starless_ai.h"
#include "tests/app/private_settings.h"

namespace {

struct Preferences : testing::Test
{
    PrivateSettings own;
    QString folder;
    QString program;
    QColor color;
    QString model;
    QStringList titles;

    Preferences() { ThemeManager::instance().init(); }

    PreferenceQuestions answers()
    {
        return {[this](const QString&, const QString&) { return folder; },
                [this](const QString&, const QString&) { return program; },
                [this](const QString&, const QColor&) { return color; },
                [this](const QString& title, const QString&) {
                    titles << title;
                    return model;
                }};
    }
};

void press(const PreferencesDialog& dialog, const char* name)
{
    auto* button = dialog.findChild<QPushButton*>(name);
    ASSERT_TRUE(button) << name;
    button->click();
}

} // namespace

TEST_F(Preferences, TheThemeAppliesAndIsStoredAtOnce)
{
    PreferencesDialog dialog(answers());
    auto* modes = dialog.findChild<QComboBox*>("themeMode");
    modes->setCurrentText("Light");
    EXPECT_FALSE(ThemeManager::instance().effectiveDark());
    EXPECT_EQ(appcfg::themeMode(), 1);
    press(dialog, "restoreLook");
    EXPECT_EQ(modes->currentText(), "System");
    EXPECT_EQ(appcfg::themeMode(), 0);
}

TEST_F(Preferences, ACancelledQuestionChangesNothing)
{
    appcfg::setDefaultWorkFolder("/work here");
    appcfg::setFfmpegConfigured("/bin/true");
    PreferencesDialog dialog(answers());
    for (const char* name : {"accentColor", "secondaryColor", "chooseWorkFolder", "locateFfmpeg",
                             "starModelLoad", "depthModelLoad"})
        press(dialog, name);
    EXPECT_TRUE(appcfg::aiModelConfigured().isEmpty());
    EXPECT_TRUE(appcfg::themeAccent().isEmpty());
    EXPECT_TRUE(appcfg::themeSectionTitleColor().isEmpty());
    EXPECT_EQ(appcfg::defaultWorkFolder(), "/work here");
    EXPECT_EQ(appcfg::ffmpegConfigured(), "/bin/true");
}

TEST_F(Preferences, AnswersAreStoredEachUnderItsOwnSetting)
{
    PreferencesDialog dialog(answers());
    color = QColor("#804020");
    press(dialog, "accentColor");
    color = QColor("#ccbb88");
    press(dialog, "secondaryColor");
    folder = own.path("");
    press(dialog, "chooseWorkFolder");
    program = "/bin/true";
    press(dialog, "locateFfmpeg");
    EXPECT_EQ(appcfg::themeAccent(), "#804020");
    EXPECT_EQ(appcfg::themeSectionTitleColor(), "#ccbb88");
    EXPECT_EQ(appcfg::defaultWorkFolder(), folder);
    EXPECT_EQ(appcfg::ffmpegConfigured(), "/bin/true");
    EXPECT_EQ(dialog.findChild<QLabel*>("ffmpegPath")->text(), "/bin/true");

    press(dialog, "clearWorkFolder");
    press(dialog, "autoDetectFfmpeg");
    EXPECT_TRUE(appcfg::defaultWorkFolder().isEmpty());
    EXPECT_TRUE(appcfg::ffmpegConfigured().isEmpty());
    EXPECT_FALSE(dialog.findChild<QPushButton*>("clearWorkFolder")->isEnabled());
}

TEST_F(Preferences, AModelIsInUseOnceItIsChosen)
{
    struct Case
    {
        const char* name;
        QString (*configured)();
        std::string (*inUse)();
    };
    model = own.path("chosen.onnx");
    ASSERT_TRUE(QFile(model).open(QIODevice::WriteOnly));
    for (const Case& c :
         {Case{"starModel", appcfg::aiModelConfigured, zre::StarlessAI::modelPath},
          {"depthModel", appcfg::aiDepthModelConfigured, zre::AiDepth::modelPath}}) {
        const QString name = c.name;
        PreferencesDialog dialog(answers());
        const std::string standard = c.inUse();
        auto* clear = dialog.findChild<QPushButton*>(name + "Default");
        EXPECT_FALSE(clear->isEnabled());
        bool inUseFirst = false;
        const auto told = QObject::connect(&dialog, &PreferencesDialog::modelsChanged,
                                           [&] { inUseFirst = c.inUse() == model.toStdString(); });
        press(dialog, qPrintable(name + "Load"));
        EXPECT_EQ(c.configured(), model);
        EXPECT_TRUE(inUseFirst);
        QObject::disconnect(told);
        clear->click();
        EXPECT_TRUE(c.configured().isEmpty());
        EXPECT_EQ(c.inUse(), standard);
    }
    EXPECT_EQ(titles, QStringList({"Locate the AI Star Separation model",
                                   "Locate the Landscape AI Depth model"}));
}

TEST_F(Preferences, TheWarningIsWantedWhileItIsNotDismissed)
{
    PreferencesDialog dialog(answers());
    auto* warn = dialog.findChild<QCheckBox*>("warnFfmpeg");
    EXPECT_TRUE(warn->isChecked());
    warn->click();
    EXPECT_TRUE(appcfg::ffmpegWarningDismissed());
}

TEST_F(Preferences, TheColorOfStarsIsStoredBeforeItIsTold)
{
    PreferencesDialog dialog(answers());
    bool told = true;
    QObject::connect(&dialog, &PreferencesDialog::settingsChanged, &dialog,
                     [&told] { told = appcfg::starTrueColor(); });
    dialog.findChild<QCheckBox*>("starTrueColor")->click();
    EXPECT_FALSE(told);
    EXPECT_FALSE(PreferencesDialog(answers()).findChild<QCheckBox*>("starTrueColor")->isChecked());
}

TEST_F(Preferences, AToolbarSwitchIsStoredBeforeItIsTold)
{
    PreferencesDialog dialog(answers());
    bool storedFirst = false;
    QObject::connect(&dialog, &PreferencesDialog::settingsChanged, [&] {
        storedFirst = !appcfg::toolbarGroupShown(appcfg::ToolbarGroup::Export);
    });
    for (QCheckBox* box : dialog.findChildren<QCheckBox*>())
        if (box->text() == "Export")
            box->click();
    EXPECT_TRUE(storedFirst);
    EXPECT_TRUE(appcfg::toolbarGroupShown(appcfg::ToolbarGroup::View));
}

TEST_F(Preferences, EveryControlHasANameAndSaysWhatItDoes)
{
    PreferencesDialog dialog(answers());
    QWidgetList controls;
    for (QAbstractButton* button : dialog.findChildren<QAbstractButton*>())
        controls << button;
    for (QComboBox* box : dialog.findChildren<QComboBox*>())
        controls << box;
    EXPECT_GE(controls.size(), 14);
    for (const QWidget* control : controls) {
        const QAccessibleInterface* spoken =
            QAccessible::queryAccessibleInterface(const_cast<QWidget*>(control));
        const QString name = spoken->text(QAccessible::Name);
        EXPECT_FALSE(name.isEmpty()) << control->objectName().toStdString();
        EXPECT_TRUE(name == "Close" || !control->toolTip().isEmpty()) << name.toStdString();
    }
}

// A long path is shortened in the dialog; it must not push the buttons off the screen.
TEST_F(Preferences, ALongPathDoesNotWidenTheDialog)
{
    PreferencesDialog narrow(answers());
    appcfg::setDefaultWorkFolder("/" + QString("folder/").repeated(200));
    PreferencesDialog dialog(answers());
    EXPECT_EQ(dialog.sizeHint(), narrow.sizeHint());
}
