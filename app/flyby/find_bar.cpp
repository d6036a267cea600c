#include "app/flyby/find_bar.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QToolButton>

FindBar::FindBar(QPlainTextEdit& edit, QWidget* parent)
    : QWidget(parent)
    , m_edit(edit)
    , m_text(new QLineEdit(this))
    , m_result(new QLabel(this))
{
    setObjectName("findBar");
    m_text->setPlaceholderText(tr("Find"));
    m_text->setAccessibleName(tr("Find"));
    m_text->setClearButtonEnabled(true);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(m_text, 1);
    layout->addWidget(m_result);
    const auto addButton = [&](Qt::ArrowType arrow, const QString& name, bool backward) {
        auto* button = new QToolButton(this);
        button->setArrowType(arrow);
        button->setToolTip(name);
        button->setAccessibleName(name);
        layout->addWidget(button);
        connect(button, &QToolButton::clicked, this, [this, backward] { find(backward); });
    };
    addButton(Qt::UpArrow, tr("Previous (Shift+F3)"), true);
    addButton(Qt::DownArrow, tr("Next (F3)"), false);
    connect(m_text, &QLineEdit::textEdited, this, [this] {
        QTextCursor cursor = m_edit.textCursor(); // what is being written may go on where it is
        cursor.setPosition(cursor.selectionStart());
        m_edit.setTextCursor(cursor);
        find(false);
    });
    hide();
}

void FindBar::open()
{
    const QString selected = m_edit.textCursor().selectedText();
    if (!selected.isEmpty() && !selected.contains(QChar::ParagraphSeparator))
        m_text->setText(selected);
    m_result->clear();
    show();
    m_text->setFocus();
    m_text->selectAll();
}

void FindBar::find(bool backward)
{
    m_result->clear();
    if (m_text->text().isEmpty())
        return;
    const QTextDocument::FindFlags flags =
        backward ? QTextDocument::FindBackward : QTextDocument::FindFlags();
    if (m_edit.find(m_text->text(), flags))
        return;
    const QTextCursor before = m_edit.textCursor();
    m_edit.moveCursor(backward ? QTextCursor::End : QTextCursor::Start);
    if (m_edit.find(m_text->text(), flags))
        return;
    m_edit.setTextCursor(before);
    m_result->setText(tr("Not found"));
}

void FindBar::close()
{
    hide();
    m_edit.setFocus();
}

void FindBar::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Escape:
        close();
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        find(event->modifiers() & Qt::ShiftModifier);
        break;
    default:
        QWidget::keyPressEvent(event);
    }
}
