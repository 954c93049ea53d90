#include "VeltoKit/providers/Provider.h"

#include <QHashFunctions>

#include "VeltoKit/engines/AnthropicBackend.h"
#include "VeltoKit/engines/GeminiBackend.h"
#include "VeltoKit/platform/PlatformText.h"

namespace velto {

namespace {

using Flavor = Provider::Flavor;

enum Entry {
    claudeEntry,
    openAIEntry,
    geminiEntry,
    metaEntry,
    localEntry,
    customEntry,
    cliEntry,
    echoEntry
};

const QString localDefault = QStringLiteral("http://localhost:11434/v1");
const QString openRouter = QStringLiteral("https://openrouter.ai/api/v1");

QList<Provider> catalogue() {
    return {
        {QStringLiteral("anthropic"), QStringLiteral("Claude"), Flavor::anthropic,
         AnthropicBackend::publicBaseUrl(), true, QStringLiteral("console.anthropic.com"),
         QStringLiteral("La mejor calidad para subtítulos. Se paga por uso."),
         QStringLiteral("cloud"), false},
        {QStringLiteral("openai"), QStringLiteral("ChatGPT (OpenAI)"), Flavor::openAICompatible,
         QStringLiteral("https://api.openai.com/v1"), true,
         QStringLiteral("platform.openai.com/api-keys"),
         QStringLiteral("Los modelos GPT. Se paga por uso."),
         QStringLiteral("bubble.left.and.text.bubble.right"), false},
        {QStringLiteral("gemini"), QStringLiteral("Google Gemini"), Flavor::gemini,
         GeminiBackend::publicBaseUrl(), true, QStringLiteral("aistudio.google.com/apikey"),
         QStringLiteral("Tiene un nivel gratuito generoso, útil para películas largas."),
         QStringLiteral("sparkles"), false},
        {QStringLiteral("meta"), QStringLiteral("Meta Llama"), Flavor::openAICompatible,
         QStringLiteral("https://api.llama.com/v1"), true,
         QStringLiteral("llama.developer.meta.com"),
         QStringLiteral("Los modelos Llama de Meta. Ojo: Meta AI, el asistente de WhatsApp e "
                        "Instagram, no tiene API pública; esto es la API de Llama, que es lo que "
                        "Meta sí ofrece para conectar."),
         QStringLiteral("l.square"), false},
        {QStringLiteral("local"), QStringLiteral("Modelo local"), Flavor::openAICompatible,
         localDefault, false, QString(),
         QStringLiteral("Corre en ") + PlatformText::thisComputer() +
             QStringLiteral(": Ollama, LM Studio, llama.cpp. Gratis y sin conexión."),
         QStringLiteral("desktopcomputer"), true},
        {QStringLiteral("custom"), QStringLiteral("Otro servicio"), Flavor::openAICompatible,
         openRouter, true, QStringLiteral("el panel del servicio que uses"),
         QStringLiteral("Cualquier servicio que hable el formato de OpenAI: OpenRouter, Groq, "
                        "DeepSeek, Mistral, Together, xAI y otros."),
         QStringLiteral("globe"), true},
        {QStringLiteral("claudeCLI"), QStringLiteral("Claude Code (CLI)"), Flavor::claudeCLI,
         QString(), false, QString(),
         QStringLiteral("Usa el binario «claude» de ") + PlatformText::thisComputer() +
             QStringLiteral(", con su propia sesión."),
         QStringLiteral("terminal"), false},
        {QStringLiteral("echo"), QStringLiteral("Prueba (no traduce)"), Flavor::echo, QString(),
         false, QString(),
         QStringLiteral("Antepone «[ES]» a cada línea. Sirve para probar todo el proceso sin "
                        "gastar nada."),
         QStringLiteral("testtube.2"), false},
    };
}

const Provider& entry(Entry which) {
    return Provider::all().at(which);
}

} // namespace

QList<Provider::Preset> Provider::presets() const {
    if (id == u"local") {
        return {
            {QStringLiteral("ollama"), QStringLiteral("Ollama"), localDefault,
             u'«' + PlatformText::installOllama() +
                 QStringLiteral("», después «ollama pull qwen3:8b»")},
            {QStringLiteral("lmstudio"), QStringLiteral("LM Studio"),
             QStringLiteral("http://localhost:1234/v1"),
             QStringLiteral("Activá el servidor en la pestaña Developer")},
            {QStringLiteral("llamacpp"), QStringLiteral("llama.cpp"),
             QStringLiteral("http://localhost:8080/v1"),
             QStringLiteral("«llama-server -m modelo.gguf»")},
        };
    }
    if (id == u"custom") {
        return {
            {QStringLiteral("openrouter"), QStringLiteral("OpenRouter"), openRouter,
             QStringLiteral("Un solo lugar para modelos de muchos proveedores")},
            {QStringLiteral("groq"), QStringLiteral("Groq"),
             QStringLiteral("https://api.groq.com/openai/v1"),
             QStringLiteral("Muy rápido; sirve para películas largas")},
            {QStringLiteral("deepseek"), QStringLiteral("DeepSeek"),
             QStringLiteral("https://api.deepseek.com/v1"), QStringLiteral("Económico")},
            {QStringLiteral("mistral"), QStringLiteral("Mistral"),
             QStringLiteral("https://api.mistral.ai/v1"), QString()},
            {QStringLiteral("together"), QStringLiteral("Together"),
             QStringLiteral("https://api.together.xyz/v1"), QString()},
            {QStringLiteral("xai"), QStringLiteral("xAI (Grok)"),
             QStringLiteral("https://api.x.ai/v1"), QString()},
        };
    }
    return {};
}

const QList<Provider>& Provider::all() {
    static const QList<Provider> providers = catalogue();
    return providers;
}

const Provider& Provider::claude() {
    return entry(claudeEntry);
}
const Provider& Provider::openAI() {
    return entry(openAIEntry);
}
const Provider& Provider::gemini() {
    return entry(geminiEntry);
}
const Provider& Provider::metaLlama() {
    return entry(metaEntry);
}
const Provider& Provider::local() {
    return entry(localEntry);
}
const Provider& Provider::custom() {
    return entry(customEntry);
}
const Provider& Provider::claudeCLI() {
    return entry(cliEntry);
}
const Provider& Provider::echo() {
    return entry(echoEntry);
}

const Provider& Provider::byID(QStringView id) {
    for (const Provider& provider : all()) {
        if (provider.id == id)
            return provider;
    }
    return claude();
}

size_t qHash(const Provider::Preset& preset, size_t seed) {
    return qHashMulti(seed, preset.id, preset.name, preset.baseURL, preset.hint);
}

size_t qHash(const Provider& provider, size_t seed) {
    return qHashMulti(seed, provider.id, provider.name, static_cast<int>(provider.flavor),
                      provider.defaultBaseURL, provider.needsKey, provider.keySource, provider.note,
                      provider.symbol, provider.editableBaseURL);
}

} // namespace velto
