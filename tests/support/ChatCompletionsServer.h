#pragma once

#include <functional>
#include <mutex>

#include <QByteArray>
#include <QJsonArray>
#include <QList>
#include <QString>
#include <QStringList>

#include "VeltoKit/translation/TokenUsage.h"
#include "support/LocalListener.h"

namespace velto::test {

// A local OpenAI-compatible server on 127.0.0.1 that answers block prompts the way a small
// reasoning model does: its thinking first, then every block "translated" as "es: " + text.
// It lists `models`, rejects any key but `key` with 401, and can be told to lose the last block
// of its first multi-block answer, so the translator's recovery has something to do.
class ChatCompletionsServer {
public:
    struct Behaviour {
        // Empty: any key, or none, is welcome, as on a local server.
        QString key = QStringLiteral("sk-prueba");
        QStringList models = {QStringLiteral("modelo-b"), QStringLiteral("modelo-a")};
        bool loseABlockOnce = false;
        // 0: any free port.
        int port = 0;
        // Rewrites a block's answer; the default prefixes "es: ".
        std::function<QString(int number, const QString& text)> translate{};
        // Reports the tokens of each answer as hosted services do, counted with TokenCount.
        bool reportUsage = false;
    };

    explicit ChatCompletionsServer(Behaviour behaviour);

    // The address a user types: "http://127.0.0.1:PORT/v1".
    QString baseUrl() const;
    int completions() const;
    // What the reported usages add up to.
    TokenUsage reportedUsage() const;
    // The Authorization headers received, in order.
    QList<QByteArray> authorizations() const;
    // The system prompt of every completion asked for, in order of arrival.
    QStringList systemPrompts() const;

private:
    QByteArray answer(const QByteArray& requestBody);
    QByteArray reply(const QString& content, const QJsonArray& messages);

    Behaviour m_behaviour;
    mutable std::mutex m_mutex;
    int m_completions = 0;
    TokenUsage m_usage;
    bool m_lostOne = false;
    QList<QByteArray> m_authorizations;
    QStringList m_systemPrompts;
    LocalListener m_listener;
};

} // namespace velto::test
