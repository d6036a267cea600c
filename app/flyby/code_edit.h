#pragma once

#include <map>

#include <QPlainTextEdit>
#include <QStringList>

class CodeEdit;
class QCompleter;
class QStringListModel;

/// The strip of line numbers at the left of a `CodeEdit`.
class Gutter final : public QWidget
{
    Q_OBJECT

public:
    explicit Gutter(CodeEdit& edit);
    QSize sizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    CodeEdit& m_edit;
};

/// A plain text editor for flyby scripts: line numbers, marks of erroneous lines, completion.
class CodeEdit final : public QPlainTextEdit
{
    Q_OBJECT

public:
    explicit CodeEdit(QWidget* parent = nullptr);

    int lineNumberAreaWidth() const;
    void lineNumberAreaPaintEvent(QPaintEvent* event);

    /// Marks lines, from 1, with what is wrong there; a mark stays with its line while it is
    /// edited. Replaces all marks.
    void setMarks(const std::map<int, QString>& messages);
    /// What is wrong with a line, from 1; empty where nothing is.
    QString markOf(int line) const;
    /// The message of the line at `y` of the gutter.
    QString markAt(int y) const;

    /// Puts the cursor at the start of a line, from 1.
    void goToLine(int line);
    /// Goes to the next marked line, round the end; whether there is one.
    bool goToNextMark();
    /// Replaces the whole text as one step that can be undone.
    void replaceText(const QString& text);
    /// Makes comments of the lines selected, or code again where all of them are comments.
    void toggleComments();
    /// Offers what may stand at the cursor; `asked` by the user, and not in passing.
    void complete(bool asked);
    QStringList offered() const;

signals:
    /// How the command under the cursor is used.
    void hintChanged(const QString& hint);
    /// A file was dropped or pasted in the place of a text.
    void fileDropped(const QString& path);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;
    void insertFromMimeData(const QMimeData* source) override;

private slots:
    void updateGutterWidth(int blockCount);
    void updateGutter(const QRect& area, int scrolledBy);
    void highlightCurrentLine();

private:
    bool completing() const;
    void insertCompletion(const QString& candidate);
    void updateMetrics();
    void showMarks();

    Gutter* m_gutter; ///< children, as the next two
    QCompleter* m_completer;
    QStringListModel* m_candidates;
    int m_wordStart = 0; ///< column of the word that is being completed
};
