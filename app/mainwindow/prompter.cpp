#include "app/mainwindow/prompter.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>

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

void DesktopPrompter::warn(const QString& title, const QString& text)
{
    // Plain text: the message may quote a file name with markup in it.
    QMessageBox box(QMessageBox::Warning, title, text, QMessageBox::Ok, m_parent);
    box.setTextFormat(Qt::PlainText);
    box.exec();
}

void DesktopPrompter::tell(const QString& title, const QString& richText)
{
    QMessageBox box(QMessageBox::NoIcon, title, richText, QMessageBox::Ok, m_parent);
    box.setTextFormat(Qt::RichText);
    box.setTextInteractionFlags(Qt::TextBrowserInteraction);
    box.exec();
}
