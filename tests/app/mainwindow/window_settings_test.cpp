#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

#include "app/mainwindow/main_window.h"
#include "app/panel/control_panel.h"
#include "app/persist/appcfg_table.h"
#include "engine/qt/zre_qt.h"
#include "tests/app/mainwindow/scripted_prompter.h"
#include "tests/app/private_settings.h"
#include "tests/support/testkit.h"

namespace {

/// A store in which every setting reads `text`.
void fillStore(const PrivateSettings& settings, const QByteArray& text)
{
    QByteArray entries;
    for (const appcfg::Row& row : appcfg::allSettings()) {
        const QByteArray key = row.key;
        const auto cut = static_cast<int>(key.indexOf('/'));
        entries += "[" + (cut < 0 ? QByteArray("General") : key.left(cut)) + "]\n" +
                   key.mid(cut + 1).replace('/', '\\') + "=" + text + "\n";
    }
    QDir().mkpath(QFileInfo(settings.storeFile()).path());
    QFile file(settings.storeFile());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(entries);
}

} // namespace

// A window that settings can keep from opening, or shrink to nothing, cannot be mended from within.
TEST(WindowSettings, AGarbledStoreLeavesAWindowThatWorks)
{
    const QString image = QString::fromStdString((zrtest::scratchFolder() / "small.png").string());
    ASSERT_TRUE(zre_qt::toQImage(zrtest::noise(60, 40, 1, 3)).save(image));
    for (const QByteArray text :
         {"abc", "-1", "999999999999999", "@ByteArray(\\x1\\xd9\\xd0\\xcb\\0\\x3\\0\\0\\xff\\xff)",
          "@Rect(1 2 3 4)", "@Invalid()", "/no/such/file.png, /no/such/other.png | "}) {
        const PrivateSettings settings;
        fillStore(settings, text);
        Script script;
        MainWindow window{std::make_unique<ScriptedPrompter>(script)};
        window.show();
        QApplication::processEvents();
        EXPECT_GE(window.width(), window.minimumSizeHint().width()) << text.constData();
        EXPECT_GT(window.findChild<ControlPanel*>()->width(), 100) << text.constData();
        EXPECT_EQ(window.findChild<ControlPanel*>()->currentTab(), "Stars") << text.constData();
        EXPECT_TRUE(window.loadImageFromPath(image)) << text.constData();
        EXPECT_TRUE(window.findChild<QAction*>("view.sbs")->isEnabled()) << text.constData();
        window.close();
    }
}
