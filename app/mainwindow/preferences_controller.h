#pragma once

#include <functional>

class QWidget;
class ShellHost;

/// The user's settings: the dialog, the files of the learned models, and the reminder of what is
/// missing on this machine.
class PreferencesController
{
public:
    /// `settingsChanged` is called when the toolbar or the values shown are to follow,
    /// `modelsChanged` when the picture is; the dialog stands above `window`.
    PreferencesController(ShellHost& host, QWidget& window, std::function<void()> settingsChanged,
                          std::function<void()> modelsChanged);

    void showPreferences();
    /// Tells that there is no ffmpeg, until the user does not want to be told.
    void warnIfNoFfmpeg();

private:
    ShellHost& m_host;
    QWidget& m_window;
    std::function<void()> m_settingsChanged;
    std::function<void()> m_modelsChanged;
};
