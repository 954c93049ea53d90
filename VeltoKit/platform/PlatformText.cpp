#include "VeltoKit/platform/PlatformText.h"

#include "VeltoKit/core/EnumTable.h"

namespace velto::PlatformText {
namespace {

struct Words {
    System value;
    QStringView installFfmpeg;
    QStringView keychainName;
    QStringView thisComputer;
    QStringView revealInFileBrowser;
    QStringView installOllama;
};

constexpr Words words[] = {
    {System::macOS, u"brew install ffmpeg", u"el Llavero de macOS", u"esta Mac",
     u"Mostrar en Finder", u"brew install ollama"},
    {System::gnuLinux, u"sudo apt install ffmpeg", u"el llavero del sistema", u"esta computadora",
     u"Mostrar en la carpeta", u"curl -fsSL https://ollama.com/install.sh | sh"},
    {System::windows, u"winget install ffmpeg", u"el Administrador de credenciales de Windows",
     u"esta computadora", u"Mostrar en el Explorador", u"winget install Ollama.Ollama"},
};
static_assert(EnumTable::coversInOrder(words, System::windows));

} // namespace

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
    return EnumTable::row(words, system).installFfmpeg.toString();
}

QString keychainName(System system) {
    return EnumTable::row(words, system).keychainName.toString();
}

QString thisComputer(System system) {
    return EnumTable::row(words, system).thisComputer.toString();
}

QString revealInFileBrowser(System system) {
    return EnumTable::row(words, system).revealInFileBrowser.toString();
}

QString installOllama(System system) {
    return EnumTable::row(words, system).installOllama.toString();
}

} // namespace velto::PlatformText
