#include <future>
#include <sys/resource.h>

#include <QDateTime>
#include <QLocale>

#include <gtest/gtest.h>

#include "VeltoKit/core/VeltoError.h"
#include "VeltoKit/engines/GeminiBackend.h"
#include "VeltoKit/engines/OpenAICompatibleBackend.h"
#include "support/Eventually.h"
#include "support/ScriptedHttpServer.h"

using namespace Qt::StringLiterals;
using namespace velto;
using namespace velto::test;
using namespace std::chrono_literals;
using Reply = ScriptedReply;

namespace {

enum class Engine { openAI, gemini };

const QByteArray openAIAnswer = R"({"choices":[{"message":{"content":"hola"}}]})";
const QByteArray geminiAnswer =
    R"({"candidates":[{"content":{"parts":[{"text":"hola"}]},"finishReason":"STOP"}]})";

std::shared_ptr<const TranslationBackend> engineAt(Engine engine, const QString& baseUrl,
                                                   Retry::Wait wait = Retry::cancellableWait) {
    HttpBackend::Settings settings{u"clave-de-prueba"_s,           u"m"_s,         baseUrl, 30,
                                   std::make_shared<HttpClient>(), std::move(wait)};
    if (engine == Engine::gemini)
        return std::make_shared<GeminiBackend>(std::move(settings), 0.3, 1000);
    return std::make_shared<OpenAICompatibleBackend>(std::move(settings), u"Local"_s, 0.3);
}

QString ask(const TranslationBackend& engine, std::stop_token stop = {}) {
    return engine.complete(u"Sos traductor."_s, u"Traducí: Hi"_s, stop);
}

long peakKilobytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

QByteArray httpDate(const QDateTime& when) {
    return QLocale::c().toString(when.toUTC(), u"ddd, dd MMM yyyy HH:mm:ss 'GMT'"_s).toLatin1();
}

} // namespace

TEST(EnginePushback, AServiceThatAsksForAPauseGetsAtLeastThatPause) {
    struct Row {
        Engine engine;
        Reply busy;
        std::chrono::milliseconds atLeast;
    };
    // The date comes first: it is counted from now.
    const QList<Row> rows{
        {Engine::openAI,
         {.status = 503,
          .body = "{}",
          .headers = {{"Retry-After", httpDate(QDateTime::currentDateTimeUtc().addSecs(3))}}},
         2000ms},
        {Engine::openAI, {.status = 429, .body = "{}", .headers = {{"Retry-After", "2"}}}, 2000ms},
        {Engine::gemini,
         {.status = 429,
          .body = R"({"error":{"code":429,"message":"Quota exceeded. Please retry in 1.5s."}})"},
         1500ms},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.busy.status);
        ScriptedHttpServer server;
        server.script(row.busy);
        server.script({.body = row.engine == Engine::gemini ? geminiAnswer : openAIAnswer});
        EXPECT_EQ(ask(*engineAt(row.engine, server.baseUrl())), u"hola"_s);
        const auto requests = server.requests();
        ASSERT_EQ(requests.size(), 2);
        EXPECT_GE(requests[1].arrival - requests[0].arrival, row.atLeast);
    }

    // A pause of an hour still ends at once when the job is cancelled.
    ScriptedHttpServer patient;
    patient.script({.status = 429, .body = "{}", .headers = {{"Retry-After", "3600"}}}, 10);
    std::stop_source stop;
    const auto engine = engineAt(Engine::openAI, patient.baseUrl());
    auto answer = std::async(std::launch::async, [&] { return ask(*engine, stop.get_token()); });
    ASSERT_TRUE(eventually([&] { return patient.hits() == 1; }));
    stop.request_stop();
    ASSERT_TRUE(eventually([&] { return answer.wait_for(0s) == std::future_status::ready; }));
    EXPECT_THROW(answer.get(), Cancelled);
}

TEST(EnginePushback, HugeAnswersAndErrorPagesEndInAShortSentence) {
    const QByteArray megabyte(1024 * 1024, 'x');
    const QByteArray page = "<!DOCTYPE html>\n<html><head><title>503 Service Unavailable</title>"
                            "<style>body{font:12px}</style></head><body><h1>Service "
                            "Unavailable</h1><p>The server is temporarily busy.</p></body></html>";
    struct Row {
        Reply reply;
        QString startsWith;
    };
    const QList<Row> rows{
        {{.body = megabyte, .repeat = 200}, u"La respuesta de 127.0.0.1:"_s},
        {{.status = 503, .body = page, .contentType = "text/html"},
         u"El servicio está saturado (503): 503 Service Unavailable Service Unavailable The "
         "server is temporarily busy."_s},
    };
    const long before = peakKilobytes();
    for (const Row& row : rows) {
        ScriptedHttpServer server;
        server.answerWith([&](const ReceivedRequest&) { return row.reply; });
        const auto engine = engineAt(Engine::openAI, server.baseUrl(),
                                     [](std::chrono::seconds, std::stop_token) {});
        QString message;
        try {
            ask(*engine);
        } catch (const VeltoError& error) {
            message = error.description();
        }
        EXPECT_TRUE(message.startsWith(row.startsWith)) << message.toStdString();
        EXPECT_FALSE(message.contains(u'<')) << message.toStdString();
        EXPECT_LT(message.size(), 300);
    }
    EXPECT_LT(peakKilobytes() - before, 100 * 1024) << "kilobytes more at the peak";
}
