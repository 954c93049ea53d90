// Maintainers' check of a network engine against its live service: the self-check, then one
// real batch of two numbered blocks. Driven by scripts/check-engines, which passes the keys
// through the environment.
#include <cstdio>
#include <memory>

#include <QString>
#include <QTextStream>

#include "VeltoKit/engines/AnthropicBackend.h"
#include "VeltoKit/engines/GeminiBackend.h"
#include "VeltoKit/engines/OpenAICompatibleBackend.h"

using namespace velto;

namespace {

QString environment(const char* name, const QString& fallback = {}) {
    const QString value = qEnvironmentVariable(name);
    return value.isEmpty() ? fallback : value;
}

std::unique_ptr<TranslationBackend> makeBackend(const QString& engine) {
    const std::shared_ptr<HttpClient> http = HttpClient::shared();
    if (engine == u"anthropic") {
        return std::make_unique<AnthropicBackend>(
            environment("ANTHROPIC_API_KEY"),
            environment("ANTHROPIC_MODEL", AnthropicBackend::defaultModel()),
            AnthropicBackend::Effort::low, 16000, 300, http);
    }
    if (engine == u"openai") {
        return std::make_unique<OpenAICompatibleBackend>(
            environment("OPENAI_BASE_URL", QStringLiteral("https://api.openai.com/v1")),
            environment("OPENAI_MODEL", QStringLiteral("gpt-4o-mini")),
            environment("OPENAI_API_KEY"), QStringLiteral("OpenAI"), 0.3, 600, http);
    }
    if (engine == u"gemini") {
        return std::make_unique<GeminiBackend>(
            environment("GEMINI_API_KEY"),
            environment("GEMINI_MODEL", QStringLiteral("gemini-2.5-flash")),
            GeminiBackend::publicBaseUrl(), 0.3, 16000, 300, http);
    }
    return nullptr;
}

} // namespace

int main(int argc, char** argv) {
    QTextStream out(stdout);
    QTextStream err(stderr);
    const std::unique_ptr<TranslationBackend> backend =
        makeBackend(argc > 1 ? QString::fromLocal8Bit(argv[1]) : QString());
    if (!backend) {
        err << "Uso: CheckEngine anthropic|openai|gemini\n";
        return 2;
    }
    try {
        backend->preflight({});
        out << backend->label() << ": el chequeo inicial respondió PONG.\n" << Qt::flush;
        const QString answer = backend->complete(
            QStringLiteral("Traducí al español rioplatense cada bloque numerado. Conservá cada "
                           "marcador #@#N#@# en su propia línea y no agregues nada más."),
            QStringLiteral("BLOQUES A TRADUCIR:\n#@#1#@#\nWhere were you last night?\n#@#2#@#\n"
                           "I'll tell you tomorrow."),
            {});
        out << answer << '\n';
        if (!answer.contains(u"#@#1#@#") || !answer.contains(u"#@#2#@#")) {
            err << backend->label() << ": la respuesta no trae los dos bloques.\n";
            return 1;
        }
        out << backend->label() << ": la tanda volvió con sus dos bloques.\n";
        return 0;
    } catch (const VeltoError& error) {
        err << backend->label() << ": " << error.description() << '\n';
        return 1;
    }
}
