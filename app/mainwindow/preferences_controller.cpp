#include "app/mainwindow/preferences_controller.h"

#include <utility>

#include "app/mainwindow/prompter.h"
#include "app/mainwindow/shell_host.h"
#include "app/persist/appcfg.h"
#include "app/prefs/learned_models.h"
#include "app/prefs/preferences_dialog.h"

PreferencesController::PreferencesController(ShellHost& host, QWidget& window,
                                             std::function<void()> settingsChanged,
                                             std::function<void()> modelsChanged)
    : m_host(host)
    , m_window(window)
    , m_settingsChanged(std::move(settingsChanged))
    , m_modelsChanged(std::move(modelsChanged))
{
    useConfiguredModels();
}

void PreferencesController::showPreferences()
{
    Prompter& prompter = m_host.prompter();
    PreferencesDialog dialog({[&](const QString& title, const QString& startAt) {
                                  return prompter.openFolder(title, startAt);
                              },
                              [&](const QString& title, const QString& startAt) {
                                  return prompter.openFile(title, startAt, {});
                              },
                              [&](const QString& title, const QColor& current) {
                                  return prompter.chooseColor(title, current);
                              },
                              [&](const QString& title, const QString& startAt) {
                                  return prompter.openFile(title, startAt,
                                                           "ONNX model (*.onnx);;All files (*)");
                              }},
                             &m_window);
    QObject::connect(&dialog, &PreferencesDialog::settingsChanged, m_settingsChanged);
    QObject::connect(&dialog, &PreferencesDialog::modelsChanged, m_modelsChanged);
    dialog.exec();
}

void PreferencesController::warnIfNoFfmpeg()
{
    if (appcfg::ffmpegAvailable() || appcfg::ffmpegWarningDismissed())
        return;
    const bool dismissed = m_host.prompter().remind(
        "ffmpeg not found", "ffmpeg was not found on your PATH.",
        "It is required for MP4 / video export. Point Zerrith at your ffmpeg executable in Edit > "
        "Preferences. Everything else works without it.\n\n"
        "You can turn this reminder off or back on at any time under Edit > Preferences > Video "
        "export.",
        "Don't remind me again");
    if (dismissed)
        appcfg::setFfmpegWarningDismissed(true);
}
