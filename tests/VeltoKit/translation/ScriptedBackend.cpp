#include "ScriptedBackend.h"

#include "VeltoKit/translation/BlockProtocol.h"

namespace velto::test {

ScriptedBackend::ScriptedBackend(Answer answer)
    : m_answer(std::move(answer)) {}

QString ScriptedBackend::label() const {
    return QStringLiteral("guion");
}

QString ScriptedBackend::complete(const QString&, const QString& prompt,
                                  std::stop_token stop) const {
    const QStringList texts = requestedTexts(prompt);
    {
        std::lock_guard lock(m_mutex);
        m_requests.append(texts);
    }
    return m_answer(texts, std::move(stop));
}

QList<QStringList> ScriptedBackend::requests() const {
    std::lock_guard lock(m_mutex);
    return m_requests;
}

QStringList requestedTexts(const QString& prompt) {
    const QString header = BlockProtocol::header();
    QStringList texts;
    for (const auto& [number, text] :
         BlockProtocol::split(prompt.sliced(prompt.lastIndexOf(header) + header.size())))
        texts.append(text);
    return texts;
}

QString answerWith(const QStringList& translations) {
    QList<std::pair<int, QString>> blocks;
    for (qsizetype k = 0; k < translations.size(); ++k)
        blocks.append({static_cast<int>(k + 1), translations[k]});
    return BlockProtocol::build(blocks);
}

QStringList echoed(const QStringList& texts) {
    QStringList result;
    for (const QString& text : texts)
        result.append(QStringLiteral("[ES] ") + text);
    return result;
}

QStringList numberedTexts(int count) {
    QStringList texts;
    for (int i = 0; i < count; ++i)
        texts.append(QString::number(i));
    return texts;
}

} // namespace velto::test
