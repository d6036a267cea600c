#pragma once

#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryDir>

/// Keeps the settings and files of the user out of the tests, and those of the tests away from the
/// user: an empty store of its own from construction on.
class PrivateSettings
{
public:
    PrivateSettings()
    {
        QStandardPaths::setTestModeEnabled(true);
        for (const QSettings::Scope scope : {QSettings::UserScope, QSettings::SystemScope})
            QSettings::setPath(QSettings::NativeFormat, scope, m_folder.filePath("settings"));
    }

    QString path(const QString& name) const { return m_folder.filePath(name); }
    QString storeFile() const { return path("settings/Corvelle Works/Zerrith Studio.conf"); }

private:
    QTemporaryDir m_folder;
};
