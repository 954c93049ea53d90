#include "VeltoKit/platform/PlatformText.h"

namespace velto::PlatformText {

System current() {
#if defined(Q_OS_MACOS)
    return System::macOS;
#elif defined(Q_OS_WIN)
    return System::windows;
#else
    return System::gnuLinux;
#endif
}

QString installFfmpeg(System system) {
    switch (system) {
    case System::macOS:
        return QStringLiteral("brew install ffmpeg");
    case System::windows:
        return QStringLiteral("winget install ffmpeg");
    case System::gnuLinux:
        break;
    }
    return QStringLiteral("sudo apt install ffmpeg");
}

QString keychainName(System system) {
    switch (system) {
    case System::macOS:
        return QStringLiteral("el Llavero de macOS");
    case System::windows:
        return QStringLiteral("el Administrador de credenciales de Windows");
    case System::gnuLinux:
        break;
    }
    return QStringLiteral("el llavero del sistema");
}

QString thisComputer(System system) {
    return system == System::macOS ? QStringLiteral("esta Mac")
                                   : QStringLiteral("esta computadora");
}

QString revealInFileBrowser(System system) {
    switch (system) {
    case System::macOS:
        return QStringLiteral("Mostrar en Finder");
    case System::windows:
        return QStringLiteral("Mostrar en el Explorador");
    case System::gnuLinux:
        break;
    }
    return QStringLiteral("Mostrar en la carpeta");
}

} // namespace velto::PlatformText
