#include "app/flyby/script_editor.h"

#include <array>
#include <utility>

#include <QElapsedTimer>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QShortcut>
#include <QTimer>
#include <QVBoxLayout>

#include "app/flyby/code_edit.h"
#include "app/flyby/find_bar.h"
#include "app/flyby/flyby_highlighter.h"
#include "app/flyby/script_reference.h"
#include "app/persist/appcfg.h"
#include "app/prefs/theme_manager.h"

static constexpr const char* kPlaceholder = "# Flyby camera script\n"
                                            "#   moveto: x y frames\n"
                                            "#   flyto:  x y frames away\n"
                                            "#   flyin:  x y frames zoom away\n"
                                            "#   zoomto: zoom frames\n"
                                            "# Empty = the built-in push-in loop.";

ScriptEditor::ScriptEditor(ScriptFileQuestions questions, QWidget* parent)
    : QDialog(parent)
    , m_questions(std::move(questions))
    , m_edit(new CodeEdit(this))
    , m_find(new FindBar(*m_edit, this))
    , m_hint(new QLabel(this))
    , m_delay(new QTimer(this))
{
    setWindowTitle(tr("Flyby Script Editor[*]"));
    setObjectName("scriptEditor");
    setWindowFlag(Qt::WindowMaximizeButtonHint);
    m_edit->setPlaceholderText(kPlaceholder);
    new FlybyHighlighter(m_edit->document());
    m_hint->setObjectName("commandHint");
    m_hint->setTextFormat(Qt::PlainText);
    m_hint->setWordWrap(true);
    m_hint->setMinimumHeight(fontMetrics().height());
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_edit, 1);
    layout->addWidget(m_find);
    layout->addWidget(m_hint);
    layout->addWidget(buildStatus());
    layout->addWidget(buildButtons());
    m_delay->setSingleShot(true);
    connect(m_delay, &QTimer::timeout, this, &ScriptEditor::refreshStatus);
    connect(m_edit, &QPlainTextEdit::textChanged, this, &ScriptEditor::onTextChanged);
    connect(m_edit, &CodeEdit::fileDropped, this, &ScriptEditor::loadFile,
            Qt::QueuedConnection); // not amid the drop
    const auto showHint = [this](const QString& hint) {
        m_hint->setText(hint.isEmpty() ? tr("Ctrl+Space completes; F1 tells all commands and keys.")
                                       : hint);
    };
    showHint({});
    connect(m_edit, &CodeEdit::hintChanged, m_hint, showHint);
    connect(m_edit->document(), &QTextDocument::modificationChanged, this,
            &QWidget::setWindowModified);
    const auto showHintMuted = [this] {
        const ThemeManager& theme = ThemeManager::instance();
        m_hint->setStyleSheet(theme.mutedLabelStyle(theme.effectiveDark(), 0));
    };
    showHintMuted();
    connect(&ThemeManager::instance(), &ThemeManager::themeChanged, m_hint, showHintMuted);
    addShortcuts();
    resize(720, 560);
    restoreGeometry(appcfg::scriptEditorGeometry());
    refreshStatus();
    m_edit->setFocus();
}

/// The status on a strip that is dark in either theme, as its light letters need.
QWidget* ScriptEditor::buildStatus()
{
    auto* strip = new QFrame(this);
    strip->setObjectName("statusStrip");
    strip->setStyleSheet("#statusStrip { background: #26282b; border-radius: 3px; }");
    m_statusLabel = new QLabel(strip);
    m_statusLabel->setObjectName("scriptStatus");
    m_statusLabel->setAccessibleName(tr("Status"));
    m_statusLabel->setStyleSheet("color:#bbb; font-size:11px;");
    m_statusLabel->setTextFormat(Qt::PlainText);
    m_statusLabel->setWordWrap(true);
    m_statusLabel->installEventFilter(this);
    auto* layout = new QHBoxLayout(strip);
    layout->setContentsMargins(8, 4, 8, 4);
    layout->addWidget(m_statusLabel);
    return strip;
}

QWidget* ScriptEditor::buildButtons()
{
    auto* row = new QWidget(this);
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins({});
    const auto add = [&](const char* text, const char* toolTip, auto clicked) {
        auto* button = new QPushButton(tr(text), row);
        button->setToolTip(tr(toolTip));
        button->setAutoDefault(false);
        layout->addWidget(button);
        connect(button, &QPushButton::clicked, this, clicked);
        return button;
    };
    add("Validate", "Checks the script and goes to the first error.", [this] {
        refreshStatus();
        goToComplaint();
    });
    add("Load...", "Replaces the text by a file's. (Ctrl+O)", [this] { loadScript(); });
    add("Save...", "Writes the text into a file. (Ctrl+S)", [this] { saveScript(); });
    layout->addStretch(1);
    add("Apply", "Makes this the flyby of the open document. (Ctrl+Return)",
        [this] { apply(false); });
    m_play = add("Play", "Applies the script and plays it. (F5)", [this] { apply(true); });
    add("Close", "Closes the editor; the text stays.", [this] { close(); });
    return row;
}

void ScriptEditor::addShortcuts()
{
    struct Key
    {
        const char* keys;
        void (*run)(ScriptEditor&);
    };
    static constexpr std::array kKeys{
        Key{"Ctrl+O", [](ScriptEditor& e) { e.loadScript(); }},
        Key{"Ctrl+S", [](ScriptEditor& e) { e.saveScript(); }},
        Key{"Ctrl+Return", [](ScriptEditor& e) { e.apply(false); }},
        Key{"F5",
            [](ScriptEditor& e) {
                if (e.m_play->isEnabled())
                    e.apply(true);
            }},
        Key{"Ctrl+F", [](ScriptEditor& e) { e.m_find->open(); }},
        Key{"F3", [](ScriptEditor& e) { e.m_find->find(false); }},
        Key{"Shift+F3", [](ScriptEditor& e) { e.m_find->find(true); }},
        Key{"F8", [](ScriptEditor& e) { e.m_edit->goToNextMark(); }},
        Key{"F1", [](ScriptEditor& e) { e.showReference(); }},
    };
    for (const Key& key : kKeys)
        connect(new QShortcut(QKeySequence(key.keys), this), &QShortcut::activated, this,
                [this, run = key.run] { run(*this); });
}

void ScriptEditor::setScript(const QString& text)
{
    const bool written = m_written;
    if (text != scriptText())
        m_edit->replaceText(text);
    m_written = written;
    markSaved();
    refreshStatus();
}

QString ScriptEditor::scriptText() const
{
    return m_edit->toPlainText();
}

void ScriptEditor::setContext(int w, int h, int fps)
{
    constexpr int kUsualFps = 24;
    m_context = {w, h, fps < 1 ? kUsualFps : fps};
    refreshStatus();
}

void ScriptEditor::setPlayable(bool playable)
{
    m_play->setEnabled(playable);
}

bool ScriptEditor::isEdited() const
{
    return m_edit->document()->isModified();
}

void ScriptEditor::markSaved()
{
    m_edit->document()->setModified(false);
}

bool ScriptEditor::isOnlyHere() const
{
    const QString text = scriptText();
    return m_written && text != m_stored && !text.trimmed().isEmpty();
}

void ScriptEditor::markStored()
{
    m_written = false;
    m_stored = scriptText();
}

void ScriptEditor::showStatus(const QString& text)
{
    m_statusLabel->setText(text);
}

// A script that takes long to compile waits for a pause in the typing.
void ScriptEditor::onTextChanged()
{
    constexpr qint64 kUnnoticedMs = 20;
    constexpr int kPauseMs = 250;
    m_written = true;
    if (m_lastMilliseconds > kUnnoticedMs)
        m_delay->start(kPauseMs);
    else
        refreshStatus();
}

void ScriptEditor::refreshStatus()
{
    m_delay->stop();
    QElapsedTimer timer;
    timer.start();
    m_status = scriptStatus(scriptText(), m_context);
    m_lastMilliseconds = timer.elapsed();
    m_statusLabel->setText(m_status.text);
    const bool jumps = !m_status.complaints.empty();
    m_statusLabel->setCursor(jumps ? Qt::PointingHandCursor : Qt::ArrowCursor);
    m_statusLabel->setToolTip(jumps ? tr("Click to go to line %1; F8 goes from one to the next.")
                                          .arg(m_status.complaints.front().line)
                                    : QString());
    std::map<int, QString> marks;
    for (const ScriptStatus::Complaint& complaint : m_status.complaints) {
        QString& mark = marks[complaint.line];
        mark += (mark.isEmpty() ? "" : "\n") + complaint.message;
    }
    m_edit->setMarks(marks);
}

void ScriptEditor::goToComplaint()
{
    if (!m_status.complaints.empty() && m_status.complaints.front().line > 0)
        m_edit->goToLine(m_status.complaints.front().line);
}

void ScriptEditor::loadScript()
{
    const QString path = flybyscript::askScriptToLoad(m_questions.openFile);
    if (!path.isEmpty())
        loadFile(path);
}

void ScriptEditor::loadFile(const QString& path)
{
    const std::optional<QString> text = flybyscript::readScript(path);
    if (!text) {
        showStatus(tr("Could not read: ") + path);
        return;
    }
    setScript(*text);
    fileHolds(path);
}

bool ScriptEditor::saveScript()
{
    const QString path = flybyscript::askWhereToSave(m_questions.saveFile, "flyby.zrsc");
    if (path.isEmpty())
        return false;
    if (!flybyscript::writeScript(path, scriptText())) {
        showStatus(tr("Could not write: ") + path);
        return false;
    }
    markSaved();
    showStatus(tr("Saved to ") + path);
    fileHolds(path);
    return true;
}

void ScriptEditor::fileHolds(const QString& path)
{
    markStored();
    appcfg::rememberDialogPath(appcfg::kSettings.scriptDialog.key, path);
    emit fileUsed(path);
}

void ScriptEditor::apply(bool play)
{
    refreshStatus();
    emit applyRequested(scriptText(), play);
}

void ScriptEditor::showReference()
{
    if (!m_reference)
        m_reference = new ScriptReference(this);
    m_reference->show();
    m_reference->raise();
    m_reference->activateWindow();
}

void ScriptEditor::hideEvent(QHideEvent* event)
{
    appcfg::setScriptEditorGeometry(saveGeometry());
    QDialog::hideEvent(event);
}

// Return belongs to the text, wherever the focus is.
void ScriptEditor::keyPressEvent(QKeyEvent* event)
{
    if (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter)
        QDialog::keyPressEvent(event);
}

bool ScriptEditor::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_statusLabel && event->type() == QEvent::MouseButtonRelease)
        goToComplaint();
    return QDialog::eventFilter(watched, event);
}
