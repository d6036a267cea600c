#pragma once

#include <functional>
#include <vector>

#include <QDialog>

class QLabel;
class QPushButton;

/// The questions that the dialog passes on; each answer is empty when the user cancels.
struct PreferenceQuestions
{
    std::function<QString(const QString& title, const QString& startAt)> chooseFolder;
    std::function<QString(const QString& title, const QString& startAt)> chooseProgram;
    std::function<QColor(const QString& title, const QColor& current)> chooseColor;
    std::function<QString(const QString& title, const QString& startAt)> chooseModel;
};

/// The settings of the user. Every change takes effect and is stored at once.
class PreferencesDialog final : public QDialog
{
    Q_OBJECT

public:
    explicit PreferencesDialog(PreferenceQuestions questions, QWidget* parent = nullptr);

signals:
    /// A setting changed that others show: the groups of the toolbar, or the units of values.
    void settingsChanged();
    /// Another learned model is in use.
    void modelsChanged();

private:
    QWidget* interfaceGroup();
    QWidget* toolbarGroup();
    QWidget* foldersGroup();
    QWidget* renderingGroup();
    QWidget* videoGroup();
    QWidget* modelsGroup();

    QPushButton* colorButton(const QString& title, const QString& toolTip, QColor (*get)(),
                             void (*set)(const QColor&));
    QLabel* hint(const QString& text);
    void refreshLook();
    void refreshPaths();

    PreferenceQuestions m_questions;
    QList<QLabel*> m_hints;
    QLabel* m_workFolder = nullptr; ///< all owned by their layouts
    QLabel* m_ffmpeg = nullptr;
    QPushButton* m_clearFolder = nullptr;
    QPushButton* m_autoDetect = nullptr;
    std::vector<std::function<void()>> m_refreshColors;
};
