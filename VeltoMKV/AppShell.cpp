#include "VeltoMKV/AppShell.h"

#include <QApplication>
#include <QLibraryInfo>
#include <QSettings>
#include <QTranslator>

#include "VeltoKit/platform/Keychain.h"
#include "VeltoKit/providers/Provider.h"
#include "VeltoMKV/AppIcon.h"
#include "VeltoMKV/MainWindow.h"
#include "VeltoMKV/OpenFileRelay.h"
#include "VeltoMKV/SettingsPresenter.h"
#include "VeltoMKV/state/AppState.h"

namespace velto {

AppShell::AppShell(std::unique_ptr<QSettings> store, Preferences::KeyReader readKey,
                   std::function<std::optional<FFmpeg>(const std::optional<QString>&)> locateTools)
    : m_preferences(std::make_unique<Preferences>(std::move(store), std::move(readKey)))
    , m_state(std::make_unique<AppState>(std::move(locateTools)))
    , m_relay(std::make_unique<OpenFileRelay>())
    , m_settings(std::make_unique<SettingsPresenter>())
    , m_window(std::make_unique<MainWindow>(*m_state, *m_preferences, *m_settings, *m_relay)) {
    qApp->installEventFilter(m_relay.get());
}

AppShell::~AppShell() {
    qApp->removeEventFilter(m_relay.get());
    // The window goes first: its pages watch the state and the preferences.
    m_window.reset();
}

void AppShell::configureApplication() {
    QApplication::setApplicationName(QStringLiteral("VeltoMKV"));
    QApplication::setOrganizationName(QStringLiteral("VeltoMKV"));
    QApplication::setApplicationDisplayName(QStringLiteral("VeltoMKV"));
    QApplication::setApplicationVersion(QStringLiteral(VELTO_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("veltomkv"));
    QApplication::setWindowIcon(appIcon());
    QApplication::setQuitOnLastWindowClosed(true);
    // Qt's own dialogs (open, save, questions) speak the program's language.
    auto* qtTexts = new QTranslator(qApp);
    if (qtTexts->load(QStringLiteral("qtbase_es"),
                      QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QApplication::installTranslator(qtTexts);
}

Preferences::KeyReader AppShell::keychainReader() {
    // A store that keeps silent throws after its deadline; the window reads the engine through
    // Preferences::engineConfigurationOrTrouble and shows the store's sentence.
    return &Keychain::get;
}

void AppShell::openArguments(const QStringList& arguments) {
    for (const QString& argument : arguments) {
        if (!argument.startsWith(u'-')) {
            m_relay->setPending(argument);
            return;
        }
    }
}

void AppShell::show() {
    m_window->show();
    // Without a window manager nobody else gives the new window the keyboard. (The offscreen
    // platform of the tests has no stacking to change.)
    if (QGuiApplication::platformName() != QStringLiteral("offscreen")) {
        m_window->raise();
        m_window->activateWindow();
    }
    m_state->checkTools(*m_preferences);
}

} // namespace velto
