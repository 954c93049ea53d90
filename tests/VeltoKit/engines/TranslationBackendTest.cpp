#include "VeltoKit/translation/TranslationBackend.h"

#include <thread>

#include "VeltoKit/engines/EchoBackend.h"
#include "support/EngineTesting.h"

using namespace velto;
using namespace velto::test;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using Waits = std::vector<std::chrono::seconds>;

TEST(Retry, RetriesAllButFatalErrorsWithCappedDoublingWaitsAndRethrowsTheLast) {
    std::stop_source stop;
    stop.request_stop();
    Waits waits;
    const Retry::Wait record = [&](std::chrono::seconds pause, std::stop_token token) {
        EXPECT_TRUE(token.stop_requested());
        waits.push_back(pause);
    };
    // A cancellation is retried too: the wait hears the stop, the next attempt reports it.
    const auto lastSucceeds = [&](int attempt) {
        if (attempt < 6)
            throwIfStopped(stop.get_token());
        return attempt;
    };
    EXPECT_EQ(Retry::withBackoff(7, lastSucceeds, stop.get_token(), record), 6);
    EXPECT_EQ(waits, (Waits{1s, 2s, 4s, 8s, 16s, 16s}));

    waits.clear();
    const auto failing = [](int attempt) -> int {
        const auto kind = attempt == 2 ? TranslationError::fatal : TranslationError::transient;
        throw kind(QString::number(attempt));
    };
    const auto outcome = [&](int attempts) {
        return outcomeOf([&] { Retry::withBackoff(attempts, failing, stop.get_token(), record); });
    };
    EXPECT_EQ(outcome(2), u"1"_s);
    EXPECT_EQ(outcome(9), u"2 (fatal)"_s);
    EXPECT_EQ(outcome(0), u"Fallo desconocido"_s);
    EXPECT_EQ(waits, (Waits{1s, 1s, 2s}));
}

TEST(Retry, TheRealWaitWakesWhenStoppedBeforeOrDuringIt) {
    std::stop_source before;
    before.request_stop();
    Retry::cancellableWait(1h, before.get_token());
    // The stopper gets the mutex only once the wait has released it to sleep; a wait deaf to
    // the stop hangs the test here.
    std::mutex mutex;
    std::unique_lock lock(mutex);
    std::stop_source during;
    std::jthread stopper([&] {
        const std::lock_guard asleep(mutex);
        during.request_stop();
    });
    Retry::cancellableWaitHolding(1h, during.get_token(), lock);
}

namespace {

class Answering : public TranslationBackend {
public:
    explicit Answering(QString answer)
        : m_answer(std::move(answer)) {}
    QString label() const override { return {}; }
    QString complete(const QString&, const QString&, std::stop_token) const override {
        return m_answer;
    }

private:
    QString m_answer;
};

} // namespace

TEST(TranslationBackend, DefaultPreflightWantsPongAnywhereAndQuotesAnythingElse) {
    EXPECT_NO_THROW(Answering(u"Claro: pong.\n"_s).preflight({}));
    const QString start = u"El motor respondió algo inesperado al chequeo inicial: "_s;
    EXPECT_EQ(fatalMessageOf([] { Answering(u"Listo"_s).preflight({}); }), start + u"Listo"_s);
    EXPECT_EQ(fatalMessageOf([] { Answering(QString(250, u'x')).preflight({}); }),
              start + QString(200, u'x'));
    EXPECT_NO_THROW(EchoBackend().preflight({}));
}
