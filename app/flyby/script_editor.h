#pragma once

#include <QDialog>

#include "app/flyby/script_status.h"
#include "app/session/script_file.h"

class CodeEdit;
class FindBar;
class QLabel;
class QPushButton;
class QTimer;
class ScriptReference;

/// The questions for files that the editor passes on.
struct ScriptFileQuestions
{
    flybyscript::AskFile openFile;
    flybyscript::AskFile saveFile;
};

/// The window "Flyby Script Editor": the text of a flight, what the compiler says of it, and the
/// buttons that hand it on.
class ScriptEditor final : public QDialog
{
    Q_OBJECT

public:
    explicit ScriptEditor(ScriptFileQuestions questions, QWidget* parent = nullptr);

    /// Replaces the text; the user can undo that. It counts as saved.
    void setScript(const QString& text);
    QString scriptText() const;
    /// The size of the source in pixels, 0 without one, and the frame rate, 24 where below 1.
    void setContext(int w, int h, int fps);
    /// Whether there is something that "Play" could start.
    void setPlayable(bool playable);
    /// The text was neither saved nor applied since it was last changed.
    bool isEdited() const;
    /// The text is safe: applied or saved.
    void markSaved();
    /// The user wrote something that no file holds yet.
    bool isOnlyHere() const;
    /// A file holds the text, or it can be had again as it is.
    void markStored();
    /// Asks where and saves; whether the text is in a file now.
    bool saveScript();
    /// What became of the text, in place of what the compiler says, until the next change.
    void showStatus(const QString& text);

signals:
    void applyRequested(const QString& text, bool play);
    void fileUsed(const QString& path);
    void switchToFlybyRequested();

protected:
    void hideEvent(QHideEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* buildStatus();
    QWidget* buildButtons();
    void addShortcuts();
    void onTextChanged();
    void refreshStatus();
    void goToComplaint();
    void loadScript();
    void loadFile(const QString& path);
    void fileHolds(const QString& path);
    void apply(bool play);
    void showReference();

    ScriptFileQuestions m_questions;
    ScriptContext m_context;
    ScriptStatus m_status;
    CodeEdit* m_edit; ///< children, as all that follow
    FindBar* m_find;
    QLabel* m_hint;
    QLabel* m_statusLabel;
    QPushButton* m_play = nullptr;
    QTimer* m_delay;
    ScriptReference* m_reference = nullptr; ///< made when first shown
    qint64 m_lastMilliseconds = 0;          ///< that the last refresh of the status took
    bool m_written = false;                 ///< by the user, since the text was stored last
    QString m_stored;                       ///< the text at that time
};
