#include "support/ChatCompletionsServer.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <httplib.h>

#include "VeltoKit/translation/BlockProtocol.h"
#include "VeltoKit/translation/TokenCount.h"

namespace velto::test {

namespace {

QByteArray json(const QJsonObject& object) {
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

} // namespace

ChatCompletionsServer::ChatCompletionsServer(Behaviour behaviour)
    : m_behaviour(std::move(behaviour)) {
    httplib::Server& server = m_listener.server();
    // One request per connection: an idle kept-alive one would hold the server's stop for
    // seconds.
    server.set_keep_alive_max_count(1);
    if (!m_behaviour.translate) {
        m_behaviour.translate = [](int, const QString& text) -> QString {
            return QStringLiteral("es: ") + text;
        };
    }
    const auto authorized = [this](const httplib::Request& request, httplib::Response& response) {
        const QByteArray header =
            QByteArray::fromStdString(request.get_header_value("Authorization"));
        std::lock_guard lock(m_mutex);
        m_authorizations.append(header);
        if (m_behaviour.key.isEmpty() || header == "Bearer " + m_behaviour.key.toUtf8())
            return true;
        response.status = 401;
        response.set_content(R"({"error":{"message":"Incorrect API key provided"}})",
                             "application/json");
        return false;
    };
    server.Get("/v1/models", [this, authorized](const auto& request, auto& response) {
        if (!authorized(request, response))
            return;
        QJsonArray data;
        for (const QString& model : m_behaviour.models)
            data.append(QJsonObject{{QStringLiteral("id"), model}});
        response.set_content(json({{QStringLiteral("data"), data}}).toStdString(),
                             "application/json");
    });
    server.Post("/v1/chat/completions", [this, authorized](const auto& request, auto& response) {
        if (!authorized(request, response))
            return;
        response.set_content(answer(QByteArray::fromStdString(request.body)).toStdString(),
                             "application/json");
    });
    m_listener.listen(m_behaviour.port);
}

QString ChatCompletionsServer::baseUrl() const {
    return QStringLiteral("http://127.0.0.1:%1/v1").arg(m_listener.port());
}

int ChatCompletionsServer::completions() const {
    std::lock_guard lock(m_mutex);
    return m_completions;
}

QList<QByteArray> ChatCompletionsServer::authorizations() const {
    std::lock_guard lock(m_mutex);
    return m_authorizations;
}

QStringList ChatCompletionsServer::systemPrompts() const {
    std::lock_guard lock(m_mutex);
    return m_systemPrompts;
}

QByteArray ChatCompletionsServer::answer(const QByteArray& requestBody) {
    const QJsonArray messages =
        QJsonDocument::fromJson(requestBody).object().value(QStringLiteral("messages")).toArray();
    {
        std::lock_guard lock(m_mutex);
        ++m_completions;
        m_systemPrompts.append(
            messages.first().toObject().value(QStringLiteral("content")).toString());
    }
    const QString prompt = messages.last().toObject().value(QStringLiteral("content")).toString();
    const qsizetype start = prompt.indexOf(BlockProtocol::header());
    if (start < 0)
        return reply(QStringLiteral("<think>Me piden PONG.</think>PONG"), messages);
    const std::map<int, QString> blocks =
        BlockProtocol::split(start < 0 ? prompt : prompt.mid(start));

    QList<std::pair<int, QString>> answered;
    for (const auto& [number, text] : blocks)
        answered.append({number, m_behaviour.translate(number, text)});
    {
        std::lock_guard lock(m_mutex);
        if (m_behaviour.loseABlockOnce && !m_lostOne && answered.size() > 1) {
            answered.removeLast();
            m_lostOne = true;
        }
    }
    return reply(QStringLiteral("<think>Veamos: son ") + QString::number(blocks.size()) +
                     QStringLiteral(" bloques.</think>\n") + BlockProtocol::build(answered),
                 messages);
}

TokenUsage ChatCompletionsServer::reportedUsage() const {
    std::lock_guard lock(m_mutex);
    return m_usage;
}

QByteArray ChatCompletionsServer::reply(const QString& content, const QJsonArray& messages) {
    const QJsonObject message{{QStringLiteral("role"), QStringLiteral("assistant")},
                              {QStringLiteral("content"), content}};
    QJsonObject answer{
        {QStringLiteral("choices"),
         QJsonArray{QJsonObject{{QStringLiteral("message"), message},
                                {QStringLiteral("finish_reason"), QStringLiteral("stop")}}}}};
    if (m_behaviour.reportUsage) {
        TokenUsage used{0, TokenCount::approximate(content)};
        for (const QJsonValue& sent : messages)
            used.input += TokenCount::approximate(sent[QStringLiteral("content")].toString());
        answer.insert(QStringLiteral("usage"),
                      QJsonObject{{QStringLiteral("prompt_tokens"), used.input},
                                  {QStringLiteral("completion_tokens"), used.output}});
        std::lock_guard lock(m_mutex);
        m_usage += used;
    }
    return json(answer);
}

} // namespace velto::test
