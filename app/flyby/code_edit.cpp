#include "app/flyby/code_edit.h"

#include <algorithm>
#include <cmath>

#include <QAbstractItemView>
#include <QCompleter>
#include <QFontDatabase>
#include <QHelpEvent>
#include <QMimeData>
#include <QPainter>
#include <QScrollBar>
#include <QStringListModel>
#include <QTextBlock>
#include <QToolTip>
#include <QUrl>

#include "app/flyby/script_completion.h"
#include "app/prefs/theme_manager.h"

namespace {

constexpr int kMargin = 8;   ///< pixels beside the numbers
constexpr int kMarkSize = 7; ///< of an error's dot

/// What is wrong with a line; the document moves it along with the line.
class LineMark final : public QTextBlockUserData
{
public:
    explicit LineMark(QString text)
        : message(std::move(text))
    {
    }
    QString message;
};

QString messageOf(const QTextBlock& block)
{
    const auto* mark = static_cast<const LineMark*>(block.userData());
    return mark ? mark->message : QString();
}

QColor errorColor()
{
    return ThemeManager::instance().effectiveDark() ? QColor(255, 110, 100) : QColor(190, 30, 30);
}

/// `share` of `over` laid on `ground`.
QColor mixed(const QColor& ground, const QColor& over, double share)
{
    const auto channel = [share](int a, int b) {
        return static_cast<int>(std::lround(a + (b - a) * share));
    };
    return {channel(ground.red(), over.red()), channel(ground.green(), over.green()),
            channel(ground.blue(), over.blue())};
}

} // namespace

Gutter::Gutter(CodeEdit& edit)
    : QWidget(&edit)
    , m_edit(edit)
{
}

QSize Gutter::sizeHint() const
{
    return {m_edit.lineNumberAreaWidth(), 0};
}

void Gutter::paintEvent(QPaintEvent* event)
{
    m_edit.lineNumberAreaPaintEvent(event);
}

bool Gutter::event(QEvent* event)
{
    if (event->type() != QEvent::ToolTip)
        return QWidget::event(event);
    const auto* help = static_cast<QHelpEvent*>(event);
    const QString message = m_edit.markAt(help->pos().y());
    if (message.isEmpty())
        QToolTip::hideText();
    else // as rich text a message could bring marks of its own
        QToolTip::showText(help->globalPos(), "<p>" + message.toHtmlEscaped() + "</p>", this);
    return true;
}

CodeEdit::CodeEdit(QWidget* parent)
    : QPlainTextEdit(parent)
    , m_gutter(new Gutter(*this))
    , m_completer(new QCompleter(this))
    , m_candidates(new QStringListModel(this))
{
    setObjectName("scriptText");
    setAccessibleName(tr("Flyby script"));
    setLineWrapMode(QPlainTextEdit::NoWrap);
    setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    m_completer->setModel(m_candidates);
    m_completer->setWidget(this);
    m_completer->setCaseSensitivity(Qt::CaseInsensitive);
    m_completer->setCompletionMode(QCompleter::PopupCompletion);
    connect(m_completer, qOverload<const QString&>(&QCompleter::activated), this,
            &CodeEdit::insertCompletion);
    connect(this, &QPlainTextEdit::blockCountChanged, this, &CodeEdit::updateGutterWidth);
    connect(this, &QPlainTextEdit::updateRequest, this, &CodeEdit::updateGutter);
    connect(this, &QPlainTextEdit::cursorPositionChanged, this, &CodeEdit::highlightCurrentLine);
    connect(&ThemeManager::instance(), &ThemeManager::themeChanged, this,
            &CodeEdit::highlightCurrentLine);
    connect(verticalScrollBar(), &QScrollBar::valueChanged, this, &CodeEdit::showMarks);
    updateMetrics();
    highlightCurrentLine();
}

int CodeEdit::lineNumberAreaWidth() const
{
    constexpr int kLeastDigits = 2; // so that the text does not jump at the tenth line
    const int digits =
        std::max(kLeastDigits, static_cast<int>(QString::number(blockCount()).size()));
    return fontMetrics().horizontalAdvance('9') * digits + 2 * kMargin + kMarkSize;
}

void CodeEdit::updateMetrics()
{
    constexpr int kTabColumns = 4;
    setTabStopDistance(fontMetrics().horizontalAdvance(' ') * kTabColumns);
    updateGutterWidth(blockCount());
}

void CodeEdit::updateGutterWidth(int)
{
    const int width = lineNumberAreaWidth();
    setViewportMargins(width, 0, 0, 0);
    const QRect inside = contentsRect();
    m_gutter->setGeometry(inside.left(), inside.top(), width, inside.height());
}

void CodeEdit::updateGutter(const QRect& area, int scrolledBy)
{
    if (scrolledBy)
        m_gutter->scroll(0, scrolledBy);
    else
        m_gutter->update(0, area.y(), m_gutter->width(), area.height());
}

void CodeEdit::resizeEvent(QResizeEvent* event)
{
    QPlainTextEdit::resizeEvent(event);
    updateGutterWidth(blockCount());
    showMarks();
}

void CodeEdit::changeEvent(QEvent* event)
{
    QPlainTextEdit::changeEvent(event);
    if (event->type() == QEvent::FontChange && m_gutter)
        updateMetrics();
}

void CodeEdit::lineNumberAreaPaintEvent(QPaintEvent* event)
{
    constexpr double kGroundShare = 0.06;
    constexpr double kNumberShare = 0.55;
    QPainter painter(m_gutter);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor base = palette().color(QPalette::Base);
    const QColor ink = palette().color(QPalette::Text);
    painter.fillRect(event->rect(), mixed(base, ink, kGroundShare));
    painter.setFont(font());
    const int current = textCursor().blockNumber();
    for (QTextBlock block = firstVisibleBlock(); block.isValid(); block = block.next()) {
        const QRectF row = blockBoundingGeometry(block).translated(contentOffset());
        if (row.top() > event->rect().bottom())
            break;
        if (row.bottom() < event->rect().top())
            continue;
        const bool marked = block.userData();
        painter.setPen(marked                           ? errorColor()
                       : block.blockNumber() == current ? ink
                                                        : mixed(base, ink, kNumberShare));
        painter.drawText(QRectF(0, row.top(), m_gutter->width() - kMargin, fontMetrics().height()),
                         Qt::AlignRight, QString::number(block.blockNumber() + 1));
        if (!marked)
            continue;
        painter.setPen(Qt::NoPen);
        painter.setBrush(errorColor());
        painter.drawEllipse(QRectF(kMargin / 2.0,
                                   row.top() + (fontMetrics().height() - kMarkSize) / 2.0,
                                   kMarkSize, kMarkSize));
    }
}

void CodeEdit::highlightCurrentLine()
{
    showMarks();
    const QTextCursor cursor = textCursor();
    emit hintChanged(flybyscript::hintAt(cursor.block().text(), cursor.positionInBlock()));
}

/// The line of the cursor, and a wave below the lines that are wrong. Only those in view have one:
/// the toolkit goes through them all at every turn.
void CodeEdit::showMarks()
{
    constexpr double kLineShare = 0.12;
    QList<QTextEdit::ExtraSelection> selections;
    QTextEdit::ExtraSelection line;
    line.format.setBackground(
        mixed(palette().color(QPalette::Base), palette().color(QPalette::Highlight), kLineShare));
    line.format.setProperty(QTextFormat::FullWidthSelection, true);
    line.cursor = textCursor();
    line.cursor.clearSelection();
    if (!document()->isEmpty()) // it would hide the first line of the placeholder
        selections << line;
    for (QTextBlock block = firstVisibleBlock(); block.isValid(); block = block.next()) {
        if (blockBoundingGeometry(block).translated(contentOffset()).top() > viewport()->height())
            break;
        if (!block.userData())
            continue;
        QTextEdit::ExtraSelection wave;
        wave.format.setUnderlineStyle(QTextCharFormat::WaveUnderline);
        wave.format.setUnderlineColor(errorColor());
        wave.cursor = QTextCursor(block);
        wave.cursor.movePosition(QTextCursor::EndOfBlock, QTextCursor::KeepAnchor);
        selections << wave;
    }
    setExtraSelections(selections);
    m_gutter->update();
}

void CodeEdit::setMarks(const std::map<int, QString>& messages)
{
    for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
        const auto message = messages.find(block.blockNumber() + 1);
        block.setUserData(message == messages.end() ? nullptr : new LineMark(message->second));
    }
    showMarks();
}

QString CodeEdit::markOf(int line) const
{
    return messageOf(document()->findBlockByNumber(line - 1));
}

QString CodeEdit::markAt(int y) const
{
    return messageOf(cursorForPosition({0, y}).block());
}

void CodeEdit::goToLine(int line)
{
    const QTextBlock block = document()->findBlockByNumber(std::min(line, blockCount()) - 1);
    if (!block.isValid())
        return;
    setTextCursor(QTextCursor(block));
    centerCursor();
    setFocus();
}

bool CodeEdit::goToNextMark()
{
    const int count = blockCount();
    const int current = textCursor().blockNumber();
    for (int step = 1; step <= count; ++step) {
        const int number = (current + step) % count;
        if (!document()->findBlockByNumber(number).userData())
            continue;
        goToLine(number + 1);
        return true;
    }
    return false;
}

void CodeEdit::replaceText(const QString& text)
{
    QTextCursor cursor(document());
    cursor.select(QTextCursor::Document);
    cursor.insertText(text);
    moveCursor(QTextCursor::Start);
}

void CodeEdit::insertFromMimeData(const QMimeData* source)
{
    const QList<QUrl> urls = source->urls();
    if (urls.size() == 1 && urls.front().isLocalFile())
        emit fileDropped(urls.front().toLocalFile());
    else
        QPlainTextEdit::insertFromMimeData(source);
}

void CodeEdit::toggleComments()
{
    QTextCursor cursor = textCursor();
    const QTextBlock first = document()->findBlock(cursor.selectionStart());
    QTextBlock last = document()->findBlock(cursor.selectionEnd());
    if (last != first && last.position() == cursor.selectionEnd())
        last = last.previous(); // the selection only touches it
    bool allComments = true;
    for (QTextBlock block = first; block.isValid() && block != last.next(); block = block.next()) {
        const QString code = block.text().trimmed();
        allComments = allComments && (code.isEmpty() || code.startsWith('#'));
    }
    cursor.beginEditBlock();
    for (QTextBlock block = first; block.isValid() && block != last.next(); block = block.next()) {
        const QString line = block.text();
        const auto begin =
            std::find_if(line.begin(), line.end(), [](QChar c) { return !c.isSpace(); });
        if (begin == line.end())
            continue;
        const auto indent = static_cast<int>(begin - line.begin());
        QTextCursor edit(block);
        edit.setPosition(block.position() + indent);
        if (!allComments) {
            edit.insertText("# ");
            continue;
        }
        edit.deleteChar();
        if (line.mid(indent + 1, 1) == " ")
            edit.deleteChar();
    }
    cursor.endEditBlock();
}

bool CodeEdit::completing() const
{
    return m_completer->popup()->isVisible();
}

QStringList CodeEdit::offered() const
{
    QStringList all;
    const QAbstractItemModel* model = m_completer->completionModel();
    for (int row = 0; row < model->rowCount(); ++row)
        all << model->index(row, 0).data().toString();
    return all;
}

void CodeEdit::complete(bool asked)
{
    constexpr int kLeastTyped = 2;
    const QTextCursor cursor = textCursor();
    const QString line = cursor.block().text();
    const int column = cursor.positionInBlock();
    const flybyscript::Completion completion =
        flybyscript::completionAt(line, column, [this] { return toPlainText(); });
    const QString typed = line.mid(completion.start, column - completion.start);
    m_wordStart = completion.start;
    m_candidates->setStringList(completion.candidates);
    m_completer->setCompletionPrefix(typed);
    const QStringList fitting = offered();
    const bool wordDone = fitting.contains(typed, Qt::CaseInsensitive);
    if (fitting.isEmpty() || (!asked && (typed.size() < kLeastTyped || wordDone))) {
        m_completer->popup()->hide();
        return;
    }
    if (asked && fitting.size() == 1) {
        insertCompletion(fitting.first());
        return;
    }
    QAbstractItemView* popup = m_completer->popup();
    popup->setCurrentIndex(m_completer->completionModel()->index(0, 0));
    QTextCursor word = cursor;
    word.setPosition(cursor.block().position() + completion.start);
    QRect place = cursorRect(word);
    place.translate(viewportMargins().left(), 0);
    place.setWidth(popup->sizeHintForColumn(0) + popup->verticalScrollBar()->sizeHint().width());
    m_completer->complete(place);
}

void CodeEdit::insertCompletion(const QString& candidate)
{
    m_completer->popup()->hide();
    QTextCursor cursor = textCursor();
    const QTextBlock block = cursor.block();
    const int column = cursor.positionInBlock();
    cursor.setPosition(block.position() + std::min(m_wordStart, column));
    cursor.setPosition(block.position() + column, QTextCursor::KeepAnchor);
    const bool atEnd = column == block.text().size();
    cursor.insertText(candidate + (atEnd ? flybyscript::tailOf(candidate) : QString()));
    setTextCursor(cursor);
}

void CodeEdit::keyPressEvent(QKeyEvent* event)
{
    const bool control = event->modifiers() & Qt::ControlModifier;
    if (completing()) {
        switch (event->key()) {
        case Qt::Key_Enter:
        case Qt::Key_Return:
        case Qt::Key_Tab:
        case Qt::Key_Backtab:
        case Qt::Key_Escape:
            event->ignore(); // the list takes it
            return;
        default:
            break;
        }
    }
    if (control && event->key() == Qt::Key_Space) {
        complete(true);
        return;
    }
    if (control && event->key() == Qt::Key_Slash) {
        toggleComments();
        return;
    }
    QPlainTextEdit::keyPressEvent(event);
    const bool typed = !event->text().isEmpty() && event->text().front().isPrint();
    if (typed || (completing() && event->key() == Qt::Key_Backspace))
        complete(false);
    else if (completing())
        m_completer->popup()->hide();
}
