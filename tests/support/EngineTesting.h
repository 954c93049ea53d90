#pragma once

#include <chrono>
#include <functional>
#include <mutex>
#include <optional>
#include <stop_token>
#include <vector>

#include <QByteArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QString>

#include <gtest/gtest.h>

#include "VeltoKit/engines/Retry.h"
#include "VeltoKit/engines/TranslationError.h"
#include "support/QStringPrinter.h"
#include "support/ScriptedHttpServer.h"

namespace velto::test {

// A retry wait that records the pauses instead of sleeping.
class RecordedWaits {
public:
    Retry::Wait wait() {
        return [this](std::chrono::seconds pause, std::stop_token) {
            std::lock_guard lock(m_mutex);
            m_waits.push_back(pause);
        };
    }
    std::vector<std::chrono::seconds> waits() const {
        std::lock_guard lock(m_mutex);
        return m_waits;
    }
    void clear() {
        std::lock_guard lock(m_mutex);
        m_waits.clear();
    }

private:
    mutable std::mutex m_mutex;
    std::vector<std::chrono::seconds> m_waits;
};

// The error of type `Error` that `call` throws, if it throws one; other exceptions pass.
template <typename Error = TranslationError, typename Call>
std::optional<Error> errorOf(Call&& call) {
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
    EXPECT_TRUE(error && error->fatal());
    return error ? error->message() : QString();
}

inline QJsonObject jsonObject(const char* json) {
    return QJsonDocument::fromJson(json).object();
}

// An HTTP answer and the engine error it must become.
struct FailureRow {
    int status;
    QByteArray body;
    QString message;
    bool fatal;
};

// Serves `row` to every attempt of `call` and checks the error, that a fatal one is sent once
// and a transient one `attempts` times with the back-off waits in between.
inline void expectFailure(ScriptedHttpServer& server, RecordedWaits& waits, int attempts,
                          const FailureRow& row, const std::function<void()>& call) {
    SCOPED_TRACE(::testing::Message()
                 << "status " << row.status << ": " << row.body.left(80).data());
    server.reset();
    waits.clear();
    server.script({row.status, row.body}, attempts);
    const std::optional<TranslationError> error = errorOf(call);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->message().toStdString(), row.message.toStdString());
    EXPECT_EQ(error->fatal(), row.fatal);
    EXPECT_EQ(server.hits(), row.fatal ? 1 : attempts);
    std::vector<std::chrono::seconds> expected;
    for (int attempt = 0; !row.fatal && attempt < attempts - 1; ++attempt)
        expected.push_back(Retry::backoffDelay(attempt));
    EXPECT_EQ(waits.waits(), expected);
}

} // namespace velto::test
