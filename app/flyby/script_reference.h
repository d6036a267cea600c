#pragma once

#include <QDialog>

/// The language of flyby scripts on one page, as simple HTML.
QString scriptReferenceText();

/// Shows that page, beside the editor.
class ScriptReference final : public QDialog
{
    Q_OBJECT

public:
    explicit ScriptReference(QWidget* parent);
};
