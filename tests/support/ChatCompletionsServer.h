#pragma once

#include <functional>
#include <mutex>

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

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
    };

    explicit ChatCompletionsServer(Behaviour behaviour);

    // The address a user types: "http://127.0.0.1:PORT/v1".
    QString baseUrl() const;
    int completions() const;
    // The Authorization headers received, in order.
    QList<QByteArray> authorizations() const;
    // The system prompt of every completion asked for, in order of arrival.
    QStringList systemPrompts() const;

private:
    QByteArray answer(const QByteArray& requestBody);
    static QByteArray reply(const QString& content);

    Behaviour m_behaviour;
    mutable std::mutex m_mutex;
    int m_completions = 0;
    bool m_lostOne = false;
    QList<QByteArray> m_authorizations;
    QStringList m_systemPrompts;
    LocalListener m_listener;
};

} // namespace velto::test
