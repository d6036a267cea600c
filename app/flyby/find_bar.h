#pragma once

#include <QWidget>

class QLabel;
class QLineEdit;
class QPlainTextEdit;

/// A line for looking a text up in an editor, hidden until it is asked for.
class FindBar final : public QWidget
{
    Q_OBJECT

public:
    FindBar(QPlainTextEdit& edit, QWidget* parent);

    /// Shows the bar with the text selected in the editor.
    void open();
    void find(bool backward);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void close();

    QPlainTextEdit& m_edit;
    QLineEdit* m_text; ///< children, as the next
    QLabel* m_result;
};
