#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

#include "VeltoKit/engines/HttpClient.h"
#include "VeltoKit/engines/Retry.h"
#include "VeltoKit/translation/TranslationBackend.h"
#include "support/ScriptedHttpServer.h"

namespace velto::test {

// The error of type `Error` that `call` throws, if it throws one; other exceptions pass.
template <typename Error = TranslationError>
std::optional<Error> errorOf(const std::function<void()>& call) {
    try {
        call();
    } catch (const Error& error) {
        return error;
    }
    return std::nullopt;
}

// The message of the fatal TranslationError that `call` throws; a test failure otherwise.
inline QString fatalMessageOf(const std::function<void()>& call) {
    const std::optional<TranslationError> error = errorOf(call);
    EXPECT_TRUE(error && error->isFatal());
    return error ? error->message() : QString();
}

// The message of the TranslationError that `call` throws, marked " (fatal)" when fatal.
inline QString outcomeOf(const std::function<void()>& call) {
    const TranslationError error = errorOf(call).value();
    return error.isFatal() ? error.message() + QStringLiteral(" (fatal)") : error.message();
}

inline QJsonObject json(const QByteArray& text) {
    return QJsonDocument::fromJson(text).object();
}

// An error body in the shape of the Anthropic and Gemini APIs.
inline QByteArray apiError(const char* message) {
    return R"({"error":{"message":")" + QByteArray(message) + "\"}}";
}

// HTTP answers and the engine error each must become; "%1" in the message is the status.
struct FailureRow {
    const char* statuses; // separated by blanks
    QByteArray body;
    QString message;
    bool fatal;
};

// A scripted server, a client, and retry waits recorded instead of slept.
class EngineTest : public ::testing::Test {
protected:
    static QString ask(const TranslationBackend& engine, std::stop_token stop = {}) {
        return engine.complete(QStringLiteral("Sos traductor."), QStringLiteral("Traducí: Hi"),
                               stop);
    }

    // Serves each row to every attempt of `call`: a fatal error must end it after one request, a
    // transient one after `attempts`, with the back-off waits in between.
    void expectFailures(int attempts, const std::vector<FailureRow>& rows,
                        const std::function<void()>& call) {
        for (const FailureRow& row : rows) {
            for (const QByteArray& number : QByteArray(row.statuses).split(' ')) {
                const int status = number.toInt();
                SCOPED_TRACE(::testing::Message() << status << ' ' << row.body.left(80).data());
                server.reset();
                waits.clear();
                server.script({status, row.body}, attempts);
                const std::optional<TranslationError> error = errorOf(call);
                ASSERT_TRUE(error);
                EXPECT_EQ(
                    error->message(),
                    QString(row.message).replace(QStringLiteral("%1"), QString::number(status)));
                EXPECT_EQ(error->isFatal(), row.fatal);
                EXPECT_EQ(server.hits(), row.fatal ? 1 : attempts);
                EXPECT_EQ(waits.size(), size_t(row.fatal ? 0 : attempts - 1));
            }
        }
    }

    ScriptedHttpServer server;
    std::shared_ptr<HttpClient> http = std::make_shared<HttpClient>();
    std::vector<std::chrono::seconds> waits;
    const Retry::Wait wait = [this](std::chrono::seconds pause, std::stop_token) {
        waits.push_back(pause);
    };
};

} // namespace velto::test
