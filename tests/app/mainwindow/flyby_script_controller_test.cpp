#include "app/mainwindow/flyby_script_controller.h"

#include <QFile>
#include <QLabel>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

#include "app/flyby/code_edit.h"
#include "app/flyby/script_editor.h"
#include "app/persist/appcfg.h"
#include "tests/app/mainwindow/fake_host.h"
#include "tests/app/private_settings.h"
#include "tests/support/testkit.h"

namespace {

struct Editing : testing::Test
{
    const PrivateSettings own;
    FakeHost host;
    QWidget window;
    int plays = 0;
    int changes = 0;
    FlybyScriptController scripts{host, window, [this] { ++plays; }, [this] { ++changes; }};

    void SetUp() override
    {
        appcfg::setFlybyContinuousLoop(false);
        host.document.installSource("a", zrtest::noise(60, 40, 1, 9), {}, {});
        host.document.flybyScript = "hold 3";
        scripts.showScriptEditor();
    }
    ScriptEditor& editor() { return *window.findChild<ScriptEditor*>(); }
    QString status() { return editor().findChild<QLabel*>("scriptStatus")->text(); }
    QPushButton& button(const QString& text)
    {
        for (QPushButton* each : editor().findChildren<QPushButton*>())
            if (each->text() == text)
                return *each;
        throw std::runtime_error(text.toStdString());
    }
    CodeEdit& text() { return *editor().findChild<CodeEdit*>(); }
    void type(const QString& keys) { QTest::keyClicks(&text(), keys); }
};

TEST_F(Editing, TheTextBecomesTheFlybyOfTheDocument)
{
    EXPECT_EQ(editor().scriptText(), "hold 3");
    type("# ");
    type("hold 5");
    button("Apply").click();
    EXPECT_EQ(host.document.flybyScript, "# hold 5hold 3");
    EXPECT_EQ(host.document.flybyScriptSize, QSize(60, 40));
    EXPECT_EQ(status(), "Applied.  Script produced no frames - using the built-in flyby.");
    EXPECT_FALSE(editor().isEdited());
    EXPECT_EQ(changes, 1);
    editor().setScript("hold 7");
    button("Play").click();
    EXPECT_EQ(host.statuses.back(), "Compiled: 7 frames.");
    EXPECT_EQ(plays, 1);
    EXPECT_EQ(changes, 1) << "playing takes the change along";

    host.busyRun([&] {
        editor().setScript("hold 9");
        button("Apply").click();
    });
    EXPECT_EQ(host.document.flybyScript, "hold 7") << "work under way reads it";
    host.document.clear();
    scripts.refresh();
    EXPECT_FALSE(button("Play").isEnabled());
    editor().setScript("hold 9");
    EXPECT_EQ(status(), "Open an image to validate against its size.");
    button("Apply").click();
    EXPECT_EQ(host.document.flybyScript, "hold 9");
    EXPECT_EQ(changes, 1);
}

TEST_F(Editing, TheEditorFollowsTheDocumentUnlessTheUserIsWriting)
{
    host.document.flybyScript = "hold 4";
    scripts.refresh();
    EXPECT_EQ(editor().scriptText(), "hold 4");
    type("#");
    host.document.flybyScript = "hold 6";
    scripts.refresh();
    EXPECT_EQ(editor().scriptText(), "#hold 4");
    scripts.showDocumentScript();
    EXPECT_EQ(editor().scriptText(), "hold 6");
    text().undo();
    EXPECT_EQ(editor().scriptText(), "#hold 4");
    scripts.closeScriptEditor();
    host.document.flybyScript = "hold 2";
    scripts.showScriptEditor();
    EXPECT_EQ(editor().scriptText(), "#hold 4") << "closing the editor loses nothing";
}

TEST_F(Editing, TheWindowDoesNotTakeAnUnsavedScriptWithIt)
{
    const QString path = QString::fromStdString((zrtest::scratchFolder() / "kept").string());
    const auto nothing = [](Editing&) {};
    struct Row
    {
        void (*deeds)(Editing& e);
        std::deque<int> choices;
        std::deque<QString> answers;
        bool asked;
        bool closes;
    };
    const Row rows[] = {
        {nothing, {}, {}, false, true},
        {[](Editing& e) { e.type("#"); }, {}, {}, true, false},
        {[](Editing& e) { e.type("#"); }, {1}, {}, true, true},
        {[](Editing& e) { e.type("#"), e.text().undo(); }, {}, {}, false, true},
        {[](Editing& e) { e.type("#"); }, {0}, {}, true, false},
        {[](Editing& e) { e.type("#"); }, {0}, {path}, true, true},
        {[](Editing& e) { e.type("#"), e.button("Apply").click(); }, {}, {}, true, false},
        {[](Editing& e) { e.type("#"), e.button("Save...").click(); },
         {},
         {path, path},
         false,
         true},
        {[](Editing& e) { e.type("#"), e.button("Load...").click(); },
         {},
         {path + ".zrsc"},
         false,
         true},
        {[](Editing& e) { e.type("#"), e.editor().setScript(" \n"); }, {}, {}, false, true},
        {[](Editing& e) { e.type("#"), e.scripts.noteStored("#hold 3"); }, {}, {}, false, true},
        {[](Editing& e) { e.type("#"), e.scripts.noteStored("hold 3"); }, {}, {}, true, false},
    };
    int number = 0;
    for (const Row& row : rows) {
        editor().setScript("hold 3");
        editor().markStored();
        host.script.questions.clear();
        host.script.choices = row.choices;
        host.script.answers = row.answers;
        row.deeds(*this);
        EXPECT_EQ(scripts.mayClose(), row.closes) << number;
        EXPECT_EQ(!host.script.questions.isEmpty(), row.asked) << number;
        ++number;
    }
    QFile file(path + ".zrsc");
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), "#hold 3");
}

} // namespace
