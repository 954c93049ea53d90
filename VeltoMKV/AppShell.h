#pragma once

#include <functional>
#include <memory>
#include <optional>

#include <QStringList>

#include "VeltoKit/media/FFmpeg.h"
#include "VeltoKit/providers/Preferences.h"

class QSettings;

namespace velto {

class AppState;
class MainWindow;
class OpenFileRelay;
class SettingsPresenter;

// The application around the window: one preferences object, one state, the relay for files
// handed over by the system and the settings presenter, wired together. Built after the
// QApplication; the program, its start-up benchmark and the tests all start it the same way.
class AppShell {
public:
    AppShell(std::unique_ptr<QSettings> store, Preferences::KeyReader readKey,
             std::function<std::optional<FFmpeg>(const std::optional<QString>&)> locateTools = {});
    ~AppShell();
    AppShell(const AppShell&) = delete;
    AppShell& operator=(const AppShell&) = delete;

    // Names, icon, Qt's Spanish texts and the file-open watch of the application; call once
    // per process.
    static void configureApplication();
    // Reads keys for every provider that can send one, so the echo engine and the claude
    // program never wait on the credential store.
    static Preferences::KeyReader keychainReader();

    // Files named on the command line open as if handed over by the system.
    void openArguments(const QStringList& arguments);
    // Shows the window and starts looking for ffmpeg.
    void show();

    Preferences& preferences() { return *m_preferences; }
    AppState& state() { return *m_state; }
    OpenFileRelay& relay() { return *m_relay; }
    SettingsPresenter& settings() { return *m_settings; }
    MainWindow& window() { return *m_window; }

private:
    std::unique_ptr<Preferences> m_preferences;
    std::unique_ptr<AppState> m_state;
    std::unique_ptr<OpenFileRelay> m_relay;
    std::unique_ptr<SettingsPresenter> m_settings;
    std::unique_ptr<MainWindow> m_window;
};

} // namespace velto
