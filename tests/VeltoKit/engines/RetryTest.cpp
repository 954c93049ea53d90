#include "VeltoKit/engines/Retry.h"

#include <vector>

#include <gtest/gtest.h>

#include "VeltoKit/engines/TranslationBackend.h"

using namespace velto;
using namespace std::chrono_literals;

namespace {

struct RecordedWaits {
    std::vector<std::chrono::seconds> waits;
    Retry::Wait wait() {
        return [this](std::chrono::seconds d, std::stop_token) { waits.push_back(d); };
    }
};

} // namespace

TEST(Retry, RetriesNonFatalFailuresWithDoublingWaitsAndRethrowsTheLast) {
    RecordedWaits recorded;
    std::vector<int> attempts;
    try {
        Retry::withBackoff(
            4,
            [&](int attempt) -> int {
                attempts.push_back(attempt);
                throw TranslationError(QStringLiteral("saturado ") + QString::number(attempt),
                                       false);
            },
            {}, recorded.wait());
        FAIL() << "expected a TranslationError";
    } catch (const TranslationError& error) {
        EXPECT_EQ(error.message(), QStringLiteral("saturado 3"));
    }
    EXPECT_EQ(attempts, (std::vector<int>{0, 1, 2, 3}));
    EXPECT_EQ(recorded.waits, (std::vector<std::chrono::seconds>{1s, 2s, 4s}));
}

TEST(Retry, FatalErrorStopsAtOnceAndSuccessReturnsItsValue) {
    RecordedWaits recorded;
    int calls = 0;
    EXPECT_THROW(Retry::withBackoff(
                     4,
                     [&](int) -> int {
                         ++calls;
                         throw TranslationError(QStringLiteral("clave"), true);
                     },
                     {}, recorded.wait()),
                 TranslationError);
    EXPECT_EQ(calls, 1);
    EXPECT_TRUE(recorded.waits.empty());

    const int value = Retry::withBackoff(
        4,
        [](int attempt) {
            if (attempt < 2)
                throw std::runtime_error("transport");
            return attempt * 10;
        },
        {}, recorded.wait());
    EXPECT_EQ(value, 20);
    EXPECT_EQ(recorded.waits, (std::vector<std::chrono::seconds>{1s, 2s}));
}

TEST(Retry, ZeroAttemptsIsAnUnknownFailureAndTheCapIsSixteenSeconds) {
    try {
        Retry::withBackoff(0, [](int) { return 1; }, {});
        FAIL();
    } catch (const TranslationError& error) {
        EXPECT_EQ(error.message(), QStringLiteral("Fallo desconocido"));
        EXPECT_FALSE(error.fatal());
    }
    EXPECT_EQ(Retry::backoffDelay(3), 8s);
    EXPECT_EQ(Retry::backoffDelay(4), 16s);
    EXPECT_EQ(Retry::backoffDelay(9), 16s);
}

TEST(Retry, CancellableWaitReturnsAtOnceWhenStopped) {
    std::stop_source source;
    source.request_stop();
    const auto start = std::chrono::steady_clock::now();
    Retry::cancellableWait(3600s, source.get_token());
    EXPECT_LT(std::chrono::steady_clock::now() - start, 60s);
}

TEST(Retry, WaitsHearTheStopAndTheNextAttemptReportsTheCancellation) {
    std::stop_source source;
    source.request_stop();
    std::vector<int> attempts;
    std::vector<bool> waitsStopped;
    EXPECT_THROW(Retry::withBackoff(
                     3,
                     [&](int attempt) -> int {
                         attempts.push_back(attempt);
                         throwIfStopped(source.get_token());
                         return attempt;
                     },
                     source.get_token(),
                     [&](std::chrono::seconds, std::stop_token stop) {
                         waitsStopped.push_back(stop.stop_requested());
                     }),
                 Cancelled);
    EXPECT_EQ(attempts, (std::vector<int>{0, 1, 2}));
    EXPECT_EQ(waitsStopped, (std::vector<bool>{true, true}));

    RecordedWaits recorded;
    EXPECT_THROW(Retry::withBackoff(
                     1, [](int) -> int { throw TranslationError(QStringLiteral("x"), false); }, {},
                     recorded.wait()),
                 TranslationError);
    EXPECT_TRUE(recorded.waits.empty());
}

namespace {

class ScriptedBackend : public TranslationBackend {
public:
    explicit ScriptedBackend(QString answer)
        : m_answer(std::move(answer)) {}
    QString label() const override { return QStringLiteral("guion"); }
    QString complete(const QString&, const QString&, std::stop_token) const override {
        return m_answer;
    }

private:
    QString m_answer;
};

} // namespace

TEST(TranslationBackend, DefaultPreflightAcceptsAnyPongAndRejectsTheRestFatally) {
    EXPECT_NO_THROW(ScriptedBackend(QStringLiteral("pong.")).preflight({}));
    EXPECT_NO_THROW(ScriptedBackend(QStringLiteral("Claro: PONG\n")).preflight({}));
    try {
        ScriptedBackend(QStringLiteral("Listo")).preflight({});
        FAIL();
    } catch (const TranslationError& error) {
        EXPECT_TRUE(error.fatal());
        EXPECT_EQ(error.message(),
                  QStringLiteral("El motor respondió algo inesperado al chequeo inicial: Listo"));
    }
    try {
        ScriptedBackend(QString(250, u'x')).preflight({});
        FAIL();
    } catch (const TranslationError& error) {
        EXPECT_TRUE(error.message().endsWith(u": " + QString(200, u'x')));
    }
}
