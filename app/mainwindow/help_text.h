#pragma once

#include <QList>
#include <QString>

class QAction;

/// The box "About": name, version, licence and what the program is built on, as simple HTML.
QString aboutText();

/// How the panel's tab titled `tab` is used, as simple HTML; empty for a tab that there is not.
QString tabHelpText(const QString& tab);

/// A table of every action of `actions` with a shortcut, and of what the mouse does in the preview.
QString shortcutsText(const QList<QAction*>& actions);
