#include "app/mainwindow/prompter.h"

#include <utility>

#include <QCheckBox>
#include <QColorDialog>
#include <QDesktopServices>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QPushButton>
#include <QUrl>
#include <QVBoxLayout>

#include "app/mainwindow/preview_view.h"

/// Names may be long and hold no blank to break a line at.
static QString breakable(const QString& text)
{
    constexpr int kLongestWord = 48;
    constexpr QChar kMayBreak(0x200B);
    QString out;
    int letters = 0;
    for (const QChar letter : text) {
        out += letter;
        letters = letter.isSpace() ? 0 : letters + 1;
        if (letters >= kLongestWord && !letter.isHighSurrogate()) {
            out += kMayBreak;
            letters = 0;
        }
    }
    return out;
}

/// The head and the end of what is too long for a box.
static QString shortened(const QString& text)
{
    constexpr int kHead = 3;
    constexpr qsizetype kMostRows = 20;
    constexpr qsizetype kRowLetters = 48;
    const QStringList lines = text.split('\n');
    qsizetype end = lines.size();
    for (qsizetype rows = 0; end > kHead && rows < kMostRows; --end)
        rows += 1 + lines[end - 1].size() / kRowLetters;
    if (end <= kHead)
        return text;
    return lines.first(kHead).join('\n') + "\n...\n" + lines.sliced(end).join('\n');
}

QString DesktopPrompter::openFile(const QString& title, const QString& startAt,
                                  const QString& filter)
{
    return QFileDialog::getOpenFileName(m_parent, title, startAt, filter, nullptr,
                                        QFileDialog::HideNameFilterDetails);
}

QString DesktopPrompter::saveFile(const QString& title, const QString& startAt,
                                  const QString& filter)
{
    // Not the static function: only a dialog with a default suffix asks about overwriting the file
    // that will really be written.
    QFileDialog dialog(m_parent, title, startAt, filter);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(QFileInfo(startAt).suffix());
    QObject::connect(&dialog, &QFileDialog::filterSelected, [&dialog](const QString& chosen) {
        const QString suffix = chosen.section("*.", 1).section(')', 0, 0).section(' ', 0, 0);
        dialog.setDefaultSuffix(suffix);
        const QString name = QFileInfo(dialog.selectedFiles().value(0)).completeBaseName();
        dialog.selectFile(name + "." + suffix);
    });
    return dialog.exec() == QDialog::Accepted ? dialog.selectedFiles().value(0) : QString();
}

QString DesktopPrompter::openFolder(const QString& title, const QString& startAt)
{
    return QFileDialog::getExistingDirectory(m_parent, title, startAt);
}

QColor DesktopPrompter::chooseColor(const QString& title, const QColor& current)
{
    return QColorDialog::getColor(current, m_parent, title);
}

bool DesktopPrompter::remind(const QString& title, const QString& text, const QString& details,
                             const QString& offer)
{
    QMessageBox box(QMessageBox::Warning, title, text, QMessageBox::Ok, m_parent);
    box.setInformativeText(details);
    auto* off = new QCheckBox(offer, &box);
    box.setCheckBox(off);
    box.exec();
    return off->isChecked();
}

std::optional<bool> DesktopPrompter::confirm(const QString& title, const QString& text,
                                             const QString& accept, const QString& offer)
{
    QMessageBox box(QMessageBox::Question, title, breakable(text), QMessageBox::Cancel, m_parent);
    box.setTextFormat(Qt::PlainText);
    QPushButton* accepted = box.addButton(accept, QMessageBox::AcceptRole);
    box.setDefaultButton(accepted);
    auto* off = new QCheckBox(offer, &box);
    box.setCheckBox(off);
    box.exec();
    return box.clickedButton() == accepted ? std::optional(off->isChecked()) : std::nullopt;
}

void DesktopPrompter::warn(const QString& title, const QString& text)
{
    // Plain text: the message may quote a file name with markup in it.
    const QString told = text.trimmed();
    const QString shown = shortened(told);
    QMessageBox box(QMessageBox::Warning, title, breakable(shown), QMessageBox::Ok, m_parent);
    box.setTextFormat(Qt::PlainText);
    if (shown != told)
        box.setDetailedText(told);
    box.exec();
}

void DesktopPrompter::tell(const QString& title, const QString& richText)
{
    QMessageBox box(QMessageBox::NoIcon, title, richText, QMessageBox::Ok, m_parent);
    box.setTextFormat(Qt::RichText);
    box.setTextInteractionFlags(Qt::TextBrowserInteraction);
    box.exec();
}

std::optional<int> DesktopPrompter::choose(const QString& title, const QString& text,
                                           const QStringList& choices)
{
    QMessageBox box(QMessageBox::Question, title, breakable(text), QMessageBox::Cancel, m_parent);
    box.setTextFormat(Qt::PlainText);
    QList<QAbstractButton*> buttons;
    for (const QString& choice : choices)
        buttons << box.addButton(choice, QMessageBox::AcceptRole);
    box.setDefaultButton(qobject_cast<QPushButton*>(buttons.value(0)));
    box.exec();
    const qsizetype chosen = buttons.indexOf(box.clickedButton());
    return chosen < 0 ? std::nullopt : std::optional(static_cast<int>(chosen));
}

void DesktopPrompter::showMade(const QString& title, const QString& text, const QString& path)
{
    QMessageBox box(QMessageBox::Information, title, breakable(text), QMessageBox::Close, m_parent);
    box.setTextFormat(Qt::PlainText);
    QPushButton* file = box.addButton("Open file", QMessageBox::AcceptRole);
    QPushButton* folder = box.addButton("Show in folder", QMessageBox::AcceptRole);
    box.setDefaultButton(QMessageBox::Close);
    box.exec();
    QString wanted;
    if (box.clickedButton() == file)
        wanted = path;
    else if (box.clickedButton() == folder)
        wanted = QFileInfo(path).absolutePath();
    if (!wanted.isEmpty() && !QDesktopServices::openUrl(QUrl::fromLocalFile(wanted)))
        warn(title, "The desktop knows no program that opens it:\n" + wanted);
}

void DesktopPrompter::showPicture(const QString& title, QImage picture)
{
    QDialog dialog(m_parent);
    dialog.setWindowTitle(title);
    dialog.resize(960, 640);
    auto* view = new PreviewView(&dialog);
    view->setAcceptDrops(false);
    auto* layout = new QVBoxLayout(&dialog);
    layout->setContentsMargins({});
    layout->addWidget(view);
    view->setPreview(std::move(picture));
    dialog.exec();
}
