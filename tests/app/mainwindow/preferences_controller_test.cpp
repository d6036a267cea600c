#include "app/mainwindow/preferences_controller.h"

#include <QApplication>
#include <QDialog>
#include <QPushButton>
#include <QTimer>
#include <QWidget>

#include <gtest/gtest.h>

#include "app/persist/appcfg.h"
#include "tests/app/mainwindow/fake_host.h"
#include "tests/app/private_settings.h"

namespace {

struct Preferring : testing::Test
{
    PrivateSettings own;
    FakeHost host;
    QWidget window;
    PreferencesController controller{host, window, [] {}, [] {}};
    QByteArray searchPath = qgetenv("PATH");

    Preferring() { qputenv("PATH", own.path("none").toLocal8Bit()); }
    ~Preferring() override { qputenv("PATH", searchPath); }
};

} // namespace

TEST_F(Preferring, TheReminderOfFfmpegComesUntilItIsSwitchedOff)
{
    controller.warnIfNoFfmpeg();
    controller.warnIfNoFfmpeg();
    EXPECT_EQ(host.script.asked.size(), 2);
    EXPECT_EQ(host.script.asked.first(),
              "ffmpeg not found|ffmpeg was not found on your PATH.|It is required for MP4 / video "
              "export. Point Zerrith at your ffmpeg executable in Edit > Preferences. Everything "
              "else works without it.\n\nYou can turn this reminder off or back on at any time "
              "under Edit > Preferences > Video export.|Don't remind me again");
    host.script.answers = {"switch it off"};
    controller.warnIfNoFfmpeg();
    EXPECT_TRUE(appcfg::ffmpegWarningDismissed());
    controller.warnIfNoFfmpeg();
    EXPECT_EQ(host.script.asked.size(), 3);
}

TEST_F(Preferring, NobodyIsRemindedWhereThereIsAnFfmpeg)
{
    appcfg::setFfmpegConfigured(QApplication::applicationFilePath()); // any file
    controller.warnIfNoFfmpeg();
    EXPECT_TRUE(host.script.asked.isEmpty());
}

TEST_F(Preferring, TheDialogAsksThroughThePrompter)
{
    host.script.answers = {own.path(""), "/bin/sh", "#336699"};
    QTimer::singleShot(0, &window, [] {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        ASSERT_TRUE(dialog);
        for (const char* name : {"chooseWorkFolder", "locateFfmpeg", "accentColor"})
            dialog->findChild<QPushButton*>(name)->click();
        dialog->reject();
    });
    controller.showPreferences();
    EXPECT_EQ(appcfg::defaultWorkFolder(), own.path(""));
    EXPECT_EQ(appcfg::ffmpegConfigured(), "/bin/sh");
    EXPECT_EQ(appcfg::themeAccent(), "#336699");
}
