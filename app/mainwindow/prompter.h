#pragma once

#include <optional>

#include <QColor>
#include <QImage>
#include <QStringList>

class QWidget;

/// Every question and message that stops the user. Controllers speak to this interface only, so
/// that a test can script the answers.
class Prompter
{
public:
    virtual ~Prompter() = default;

    /// The file chosen to be opened; empty when the user cancels. `startAt` is a folder, `filter`
    /// in the form of the toolkit's file dialogs.
    virtual QString openFile(const QString& title, const QString& startAt,
                             const QString& filter) = 0;
    /// The file to be written, overwriting already agreed to; empty when the user cancels.
    /// `startAt` is the suggested path.
    virtual QString saveFile(const QString& title, const QString& startAt,
                             const QString& filter) = 0;
    /// The folder chosen; empty when the user cancels.
    virtual QString openFolder(const QString& title, const QString& startAt) = 0;
    /// The colour chosen; invalid when the user cancels.
    virtual QColor chooseColor(const QString& title, const QColor& current) = 0;
    /// A warning that the user can switch off for good, by a box labelled `offer`: whether it was.
    virtual bool remind(const QString& title, const QString& text, const QString& details,
                        const QString& offer) = 0;
    /// A question of one button, `accept`, and one to cancel, with a box labelled `offer` that
    /// ends the question for good: whether it was ticked. Nothing when the user cancels.
    virtual std::optional<bool> confirm(const QString& title, const QString& text,
                                        const QString& accept, const QString& offer) = 0;
    virtual void warn(const QString& title, const QString& text) = 0;
    /// A box of information; `richText` may hold simple HTML.
    virtual void tell(const QString& title, const QString& richText) = 0;
    /// A question with a button for each of `choices`, the first being the default, and one to
    /// cancel. The index of the choice; nothing when the user cancels.
    virtual std::optional<int> choose(const QString& title, const QString& text,
                                      const QStringList& choices) = 0;
    /// Tells that the file `path` was made, and offers to open it and its folder.
    virtual void showMade(const QString& title, const QString& text, const QString& path) = 0;
    /// A picture of its own, until the user closes it.
    virtual void showPicture(const QString& title, QImage picture) = 0;
};

/// Asks through the desktop's dialogs, above `parent`.
class DesktopPrompter final : public Prompter
{
public:
    explicit DesktopPrompter(QWidget* parent)
        : m_parent(parent)
    {
    }

    QString openFile(const QString& title, const QString& startAt, const QString& filter) override;
    QString saveFile(const QString& title, const QString& startAt, const QString& filter) override;
    QString openFolder(const QString& title, const QString& startAt) override;
    QColor chooseColor(const QString& title, const QColor& current) override;
    bool remind(const QString& title, const QString& text, const QString& details,
                const QString& offer) override;
    std::optional<bool> confirm(const QString& title, const QString& text, const QString& accept,
                                const QString& offer) override;
    void warn(const QString& title, const QString& text) override;
    void tell(const QString& title, const QString& richText) override;
    std::optional<int> choose(const QString& title, const QString& text,
                              const QStringList& choices) override;
    void showMade(const QString& title, const QString& text, const QString& path) override;
    void showPicture(const QString& title, QImage picture) override;

private:
    QWidget* m_parent; ///< not owned
};
