#include "app/flyby/script_editor.h"

#include <deque>

#include <QApplication>
#include <QDragEnterEvent>
#include <QFile>
#include <QLabel>
#include <QMimeData>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTextBlock>

#include <gtest/gtest.h>

#include "app/flyby/code_edit.h"
#include "app/persist/appcfg.h"
#include "app/prefs/theme_manager.h"

namespace {

class ScriptEditorTest : public testing::Test
{
protected:
    ScriptEditorTest() { editor.setContext(640, 480, 24); }

    QString answer(const QString& title, const QString& startAt, const QString& filter)
    {
        asked << title + "|" + startAt + "|" + filter;
        const QString next = answers.empty() ? QString() : answers.front();
        if (!answers.empty())
            answers.pop_front();
        return next;
    }

    void press(const char* button)
    {
        for (QPushButton* each : editor.findChildren<QPushButton*>())
            if (each->text() == button)
                return each->click();
        FAIL() << button;
    }

    QString status() { return editor.findChild<QLabel*>("scriptStatus")->text(); }
    CodeEdit& text() { return *editor.findChild<CodeEdit*>(); }

    QTemporaryDir folder;
    std::deque<QString> answers;
    QStringList asked;
    ScriptEditor editor{
        {[this](const QString& t, const QString& s, const QString& f) { return answer(t, s, f); },
         [this](const QString& t, const QString& s, const QString& f) { return answer(t, s, f); }}};
};

} // namespace

TEST_F(ScriptEditorTest, ButtonsStandInOrderAndHandTheTextOn)
{
    QStringList texts;
    for (const QPushButton* button : editor.findChildren<QPushButton*>())
        texts << button->text();
    EXPECT_EQ(texts, QStringList({"Validate", "Load...", "Save...", "Apply", "Play", "Close"}));
    QSignalSpy applied(&editor, &ScriptEditor::applyRequested);
    editor.setScript("hold 3");
    press("Apply");
    press("Play");
    ASSERT_EQ(applied.size(), 2);
    EXPECT_EQ(applied[0], QVariantList({"hold 3", false}));
    EXPECT_EQ(applied[1], QVariantList({"hold 3", true}));
}

TEST_F(ScriptEditorTest, SavedScriptsComeBackAsTheyWere)
{
    const QString filter = "|Zerrith script (*.zrsc);;Flyby script (*.txt *.flyby);;All files (*)";
    const QString script = "# größer\nhold 3\n\n";
    const QString path = folder.filePath("mine");
    QSignalSpy used(&editor, &ScriptEditor::fileUsed);
    QTest::keyClicks(&text(), "x");
    EXPECT_TRUE(editor.isWindowModified());
    editor.setScript(script);
    EXPECT_FALSE(editor.isWindowModified());
    answers = {path};
    press("Save...");
    EXPECT_EQ(status(), "Saved to " + path + ".zrsc");
    EXPECT_EQ(appcfg::lastDialogPath("lastScriptPath"), path + ".zrsc");
    editor.setScript("hold 1");
    answers = {path + ".zrsc"};
    press("Load...");
    EXPECT_EQ(editor.scriptText(), script);
    EXPECT_EQ(status(), "Valid: 3 frames (~0.1 s).");
    EXPECT_EQ(used.size(), 2);
    EXPECT_EQ(asked.back(), "Load Flyby Script|" + path + ".zrsc" + filter);
    text().undo();
    EXPECT_EQ(editor.scriptText(), "hold 1");

    // Another file stands where the suffix leads: asked again, and kept when that is cancelled.
    answers = {path};
    press("Save...");
    EXPECT_EQ(asked.back(), "Save Flyby Script|" + path + ".zrsc" + filter);
    QFile file(path + ".zrsc");
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), script.toUtf8());
}

TEST_F(ScriptEditorTest, FilesThatFailChangeNothing)
{
    QSignalSpy used(&editor, &ScriptEditor::fileUsed);
    editor.setScript("hold 3");
    const QString missing = folder.filePath("no/such.zrsc");
    for (const QString& path : {missing, folder.path()}) {
        answers = {path};
        press("Load...");
        EXPECT_EQ(status(), "Could not read: " + path);
    }
    answers = {missing};
    press("Save...");
    EXPECT_EQ(status(), "Could not write: " + missing);
    EXPECT_EQ(editor.scriptText(), "hold 3");
    EXPECT_EQ(used.size(), 0);
}

TEST_F(ScriptEditorTest, MarksFollowTheErrorsAndTheEdits)
{
    editor.setScript("hold 1\nfly\nhold 2\nsoar");
    EXPECT_EQ(text().markOf(2), "Unknown command 'fly'.");
    EXPECT_EQ(text().markOf(1), QString());
    press("Validate");
    EXPECT_EQ(text().textCursor().blockNumber(), 1);
    EXPECT_TRUE(text().goToNextMark());
    EXPECT_EQ(text().textCursor().blockNumber(), 3);
    EXPECT_TRUE(text().goToNextMark()); // round the end
    EXPECT_EQ(text().textCursor().blockNumber(), 1);
    QTest::keyClicks(&text(), "# "); // out goes "fly"
    EXPECT_EQ(text().markOf(2), QString());
    EXPECT_EQ(status(), "Line 4: Unknown command 'soar'.");
    text().goToLine(1);
    QTest::keyClick(&text(), Qt::Key_Return);
    EXPECT_EQ(text().markOf(5), "Unknown command 'soar'.");
    editor.setContext(0, 0, 0);
    EXPECT_EQ(text().markOf(5), QString());
}

TEST_F(ScriptEditorTest, OnlyTheErrorsInViewCostAnything)
{
    const int lines = 20000;
    editor.setScript(QString("fly\n").repeated(lines));
    editor.show();
    for (const int line : {1, lines / 2, lines}) {
        text().goToLine(line);
        EXPECT_EQ(text().markOf(line), "Unknown command 'fly'.");
        int waves = 0;
        for (const QTextEdit::ExtraSelection& each : text().extraSelections())
            waves += each.format.underlineStyle() == QTextCharFormat::WaveUnderline &&
                     each.cursor.blockNumber() == line - 1;
        EXPECT_EQ(waves, 1) << line;
        EXPECT_LT(text().extraSelections().size(), 200);
    }
}

TEST_F(ScriptEditorTest, AFileThatIsDroppedIsLoaded)
{
    QFile file(folder.filePath("dropped.zrsc"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("hold 8");
    file.close();
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(file.fileName())});
    QDragEnterEvent enter({30, 5}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(text().viewport(), &enter);
    QDropEvent drop({30, 5}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(text().viewport(), &drop);
    QApplication::processEvents();
    EXPECT_EQ(editor.scriptText(), "hold 8");
    EXPECT_FALSE(editor.isOnlyHere());
}

TEST_F(ScriptEditorTest, CompletesWhileTypingAndWhenAsked)
{
    editor.show();
    QTest::keyClicks(&text(), "flyi");
    EXPECT_EQ(text().offered(), QStringList("flyin"));
    QTest::keyClick(text().window()->focusWidget(), Qt::Key_Escape);
    QTest::keyClick(&text(), Qt::Key_Space, Qt::ControlModifier);
    EXPECT_EQ(editor.scriptText(), "flyin: "); // the only one
    EXPECT_TRUE(editor.findChild<QLabel*>("commandHint")
                    ->text()
                    .startsWith("flyin: x y frames zoom away [roll]"));
}

TEST_F(ScriptEditorTest, CommentsGoOnAndOff)
{
    const QString script = "hold 1\n\n  hold 2\n# note\nhold 3";
    editor.setScript(script);
    QTextCursor cursor = text().textCursor();
    cursor.movePosition(QTextCursor::Down, QTextCursor::KeepAnchor, 4); // not into the last line
    text().setTextCursor(cursor);
    text().toggleComments();
    EXPECT_EQ(editor.scriptText(), "# hold 1\n\n  # hold 2\n# # note\nhold 3");
    text().toggleComments();
    EXPECT_EQ(editor.scriptText(), script);
    text().undo();
    EXPECT_EQ(editor.scriptText(), "# hold 1\n\n  # hold 2\n# # note\nhold 3");
}
