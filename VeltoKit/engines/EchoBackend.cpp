#include "VeltoKit/engines/EchoBackend.h"

#include <QStringList>

#include "VeltoKit/translation/BlockProtocol.h"

namespace velto {

QString EchoBackend::label() const {
    return QStringLiteral("Prueba (sin traducir)");
}

QString EchoBackend::complete(const QString&, const QString& prompt, std::stop_token) const {
    // Only the blocks after the last header: the context lines before it are never echoed.
    const QString header = BlockProtocol::header();
    const qsizetype at = prompt.lastIndexOf(header);
    const QString blocks = at < 0 ? prompt : prompt.sliced(at + header.size());
    QStringList answer;
    for (const auto& [number, text] : BlockProtocol::split(blocks))
        answer.append(BlockProtocol::marker(number) + QStringLiteral("\n[ES] ") + text);
    return answer.join(u'\n');
}

void EchoBackend::preflight(std::stop_token) const {}

} // namespace velto
