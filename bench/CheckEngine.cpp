// Maintainers' check of a network engine against its live service: the self-check, then one
// real batch of two subtitles through the translator. Driven by scripts/check-engines, which
// passes the keys through the environment.
#include <memory>

#include <QString>
#include <QTextStream>

#include "VeltoKit/engines/AnthropicBackend.h"
#include "VeltoKit/engines/GeminiBackend.h"
#include "VeltoKit/engines/OpenAICompatibleBackend.h"
#include "VeltoKit/translation/Translator.h"

using namespace velto;

namespace {

QString environment(const char* name, const QString& fallback = {}) {
    const QString value = qEnvironmentVariable(name);
    return value.isEmpty() ? fallback : value;
}

std::shared_ptr<const TranslationBackend> makeBackend(const QString& engine) {
    const std::shared_ptr<HttpClient> http = HttpClient::shared();
    if (engine == u"anthropic") {
        return std::make_shared<AnthropicBackend>(
            HttpBackend::Settings{environment("ANTHROPIC_API_KEY"),
                                  environment("ANTHROPIC_MODEL", AnthropicBackend::defaultModel()),
                                  AnthropicBackend::publicBaseUrl(), 300, http},
            AnthropicBackend::Effort::low, 16000);
    }
    if (engine == u"openai") {
        return std::make_shared<OpenAICompatibleBackend>(
            HttpBackend::Settings{
                environment("OPENAI_API_KEY"),
                environment("OPENAI_MODEL", QStringLiteral("gpt-4o-mini")),
                environment("OPENAI_BASE_URL", QStringLiteral("https://api.openai.com/v1")), 600,
                http},
            QStringLiteral("OpenAI"), 0.3);
    }
    if (engine == u"gemini") {
        return std::make_shared<GeminiBackend>(
            HttpBackend::Settings{environment("GEMINI_API_KEY"),
                                  environment("GEMINI_MODEL", QStringLiteral("gemini-2.5-flash")),
                                  GeminiBackend::publicBaseUrl(), 300, http},
            0.3, 16000);
    }
    return nullptr;
}

} // namespace

int main(int argc, char** argv) {
    QTextStream out(stdout);
    QTextStream err(stderr);
    const std::shared_ptr<const TranslationBackend> backend =
        makeBackend(argc > 1 ? QString::fromLocal8Bit(argv[1]) : QString());
    if (!backend) {
        err << "Uso: CheckEngine anthropic|openai|gemini\n";
        return 2;
    }
    try {
        backend->preflight({});
        out << backend->label() << ": el chequeo inicial respondió PONG.\n" << Qt::flush;
        const Translator translator(backend, QStringLiteral("inglés"), SpanishVariant::rioplatense,
                                    10, 0, 1, nullptr);
        const Translator::Result result =
            translator.translateAll({QStringLiteral("Where were you last night?"),
                                     QStringLiteral("<i>I'll tell you</i>\ntomorrow.")},
                                    {}, {});
        for (const QString& translation : result.translations)
            out << "  " << QString(translation).replace(u'\n', QStringLiteral(" / ")) << '\n';
        for (const QString& warning : result.warnings)
            err << "  " << warning << '\n';
        if (result.progress.failed > 0) {
            err << backend->label() << ": la tanda no volvió completa.\n";
            return 1;
        }
        out << backend->label() << ": la tanda volvió traducida.\n";
        return 0;
    } catch (const VeltoError& error) {
        err << backend->label() << ": " << error.description() << '\n';
        return 1;
    }
}
