#pragma once

#include <QString>

namespace velto {

// The few words of the user-facing texts that name the operating system. The macOS wording
// is the reference; Linux and Windows get their natural equivalent.
namespace PlatformText {

enum class System { macOS, gnuLinux, windows };

System current();

// "brew install ffmpeg" / "sudo apt install ffmpeg" / "winget install ffmpeg"
QString installFfmpeg(System system = current());
// "el Llavero de macOS" / "el llavero del sistema" / "el Administrador de credenciales de Windows"
QString keychainName(System system = current());
// "esta Mac" / "esta computadora"
QString thisComputer(System system = current());
// "Mostrar en Finder" / "Mostrar en la carpeta" / "Mostrar en el Explorador"
QString revealInFileBrowser(System system = current());
// How Ollama, the usual local model server, is installed here.
QString installOllama(System system = current());

} // namespace PlatformText
} // namespace velto
