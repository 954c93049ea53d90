#include "cli/CliOptions.h"

#include <cmath>
#include <optional>

#include <QFileInfo>

#include "VeltoKit/engines/AnthropicBackend.h"
#include "VeltoKit/providers/Provider.h"

namespace velto::cli {
namespace {

QString tryHelp() {
    return QStringLiteral(" Probá «veltomkv-cli --help».");
}

// Walks the arguments once; a usage error is thrown as a UsageError value and caught at the top.
class Parser {
public:
    explicit Parser(const QStringList& arguments)
        : m_arguments(arguments) {}

    ParsedCommandLine parse() {
        bool onlyFiles = false;
        for (m_position = 0; m_position < m_arguments.size(); ++m_position) {
            const QString argument = m_arguments[m_position];
            if (onlyFiles || !argument.startsWith(u'-')) {
                m_options.videos.append(argument);
            } else if (argument == QStringLiteral("--")) {
                onlyFiles = true;
            } else if (argument == QStringLiteral("--help") || argument == QStringLiteral("-h")) {
                return ShowHelp{};
            } else if (argument == QStringLiteral("--version")) {
                return ShowVersion{};
            } else {
                option(argument);
            }
        }
        check();
        return m_options;
    }

private:
    void option(const QString& argument) {
        const qsizetype equals = argument.indexOf(u'=');
        m_name = equals < 0 ? argument : argument.left(equals);
        m_inlineValue = equals < 0 ? std::nullopt : std::optional(argument.mid(equals + 1));
        if (takesValue())
            return;
        if (m_inlineValue) {
            throw UsageError{QStringLiteral("«") + m_name + QStringLiteral("» no lleva valor.") +
                             tryHelp()};
        }
        JobOptions& job = m_options.job;
        if (m_name == QStringLiteral("--strip-sdh"))
            job.stripSDH = true;
        else if (m_name == QStringLiteral("--keep-parens"))
            job.stripParens = false;
        else if (m_name == QStringLiteral("--default"))
            job.makeDefault = true;
        else if (m_name == QStringLiteral("--no-cache"))
            job.useCache = false;
        else if (m_name == QStringLiteral("--force"))
            job.force = true;
        else if (m_name == QStringLiteral("--sidecar"))
            outputs(JobOutputs::videoAndSidecar);
        else if (m_name == QStringLiteral("--sidecar-only"))
            outputs(JobOutputs::sidecarOnly);
        else if (m_name == QStringLiteral("--list-tracks"))
            m_options.listTracks = true;
        else if (m_name == QStringLiteral("--list-names"))
            m_options.listNames = true;
        else if (m_name == QStringLiteral("--list-models"))
            m_options.listModels = true;
        else if (m_name == QStringLiteral("--check"))
            m_options.check = true;
        else if (m_name == QStringLiteral("--estimate"))
            m_options.estimate = true;
        else if (m_name == QStringLiteral("--json"))
            m_options.outputMode = OutputMode::json;
        else if (QFileInfo::exists(argument))
            throw UsageError{QStringLiteral("«") + argument +
                             QStringLiteral("» parece un archivo. Para que no se lea como opción, "
                                            "poné «--» antes: veltomkv-cli -- ") +
                             argument};
        else
            throw UsageError{QStringLiteral("No conozco la opción «") + m_name +
                             QStringLiteral("».") + tryHelp()};
    }

    void outputs(JobOutputs outputs) {
        JobOutputs& chosen = m_options.job.outputs;
        if (chosen != JobOutputs::video && chosen != outputs)
            throw UsageError{QStringLiteral("«--sidecar» y «--sidecar-only» no van juntos: el "
                                            "primero escribe también el video, el segundo no.")};
        chosen = outputs;
    }

    // Handles the options that carry a value; false when m_name is not one of them.
    bool takesValue() {
        JobOptions& job = m_options.job;
        if (m_name == QStringLiteral("--variant"))
            job.variant = variant(value());
        else if (m_name == QStringLiteral("--title"))
            job.trackTitle = value();
        else if (m_name == QStringLiteral("--source-language"))
            job.sourceLanguage = value();
        else if (m_name == QStringLiteral("--batch-size"))
            job.batchSize = count(1);
        else if (m_name == QStringLiteral("--concurrency"))
            job.concurrency = count(1);
        else if (m_name == QStringLiteral("--context-lines"))
            job.contextLines = count(0);
        else if (m_name == QStringLiteral("--track"))
            job.forcedTrackIndex = count(0);
        else if (m_name == QStringLiteral("--output"))
            job.outputURL = value();
        else if (m_name == QStringLiteral("--glossary"))
            m_options.glossaryFile = value();
        else if (m_name == QStringLiteral("--provider") || m_name == QStringLiteral("--engine"))
            m_options.engine.providerID = providerID(value());
        else if (m_name == QStringLiteral("--set-key"))
            m_options.setKeyFor = providerID(value());
        else if (m_name == QStringLiteral("--price"))
            m_options.price = price(value());
        else if (m_name == QStringLiteral("--max-cost"))
            job.maxCost = dollars(value(), false);
        else
            return engineSetting();
        return true;
    }

    bool engineSetting() {
        EngineOverrides& engine = m_options.engine;
        if (m_name == QStringLiteral("--model"))
            engine.model = value();
        else if (m_name == QStringLiteral("--base-url"))
            engine.baseURL = value();
        else if (m_name == QStringLiteral("--effort"))
            engine.effort = effort(value());
        else if (m_name == QStringLiteral("--cli-model"))
            engine.cliModel = value();
        else if (m_name == QStringLiteral("--claude-path"))
            engine.claudePath = value();
        else
            return false;
        return true;
    }

    QString value() {
        if (m_inlineValue)
            return *m_inlineValue;
        if (m_position + 1 >= m_arguments.size()) {
            throw UsageError{QStringLiteral("A «") + m_name +
                             QStringLiteral("» le falta el valor.") + tryHelp()};
        }
        return m_arguments[++m_position];
    }

    qint64 count(qint64 minimum) {
        const QString text = value();
        bool ok = false;
        const qint64 number = text.toLongLong(&ok);
        if (!ok || number < minimum) {
            throw UsageError{
                QStringLiteral("«") + m_name + QStringLiteral("» espera un número entero desde ") +
                QString::number(minimum) + QStringLiteral(", no «") + text + QStringLiteral("».")};
        }
        return number;
    }

    // "0.5" or "0,5"; zero is refused where it would make no sense (a cap of nothing).
    double dollars(QString text, bool zeroAllowed) const {
        bool ok = false;
        const double amount = QString(text).replace(u',', u'.').trimmed().toDouble(&ok);
        if (!ok || amount < 0 || (amount == 0 && !zeroAllowed) || !std::isfinite(amount)) {
            throw UsageError{QStringLiteral("«") + m_name +
                             QStringLiteral("» espera dólares, como 0.50, no «") + text +
                             QStringLiteral("».")};
        }
        return amount;
    }

    TokenPrice price(const QString& text) const {
        const QStringList parts = text.split(u',');
        if (parts.size() != 2) {
            throw UsageError{QStringLiteral("«--price» espera dos precios separados por coma, en "
                                            "dólares por millón de tokens de entrada y de salida: "
                                            "--price 3,15 o --price 0.15,0.6.")};
        }
        return {dollars(parts[0], true), dollars(parts[1], true)};
    }

    static SpanishVariant variant(const QString& text) {
        if (auto variant = spanishVariantFromRawValue(text))
            return *variant;
        throw UsageError{QStringLiteral("No conozco la variante «") + text +
                         QStringLiteral("». Elegí neutro, rioplatense, latino o espana.")};
    }

    static QString providerID(const QString& text) {
        QStringList ids;
        for (const Provider& provider : Provider::all()) {
            if (provider.id == text)
                return text;
            ids.append(provider.id);
        }
        throw UsageError{QStringLiteral("No conozco el motor «") + text +
                         QStringLiteral("». Elegí uno de estos: ") +
                         ids.join(QStringLiteral(", ")) + u'.'};
    }

    static QString effort(const QString& text) {
        if (AnthropicBackend::effortFromRawValue(text))
            return text;
        QStringList raws;
        for (AnthropicBackend::Effort effort : AnthropicBackend::efforts())
            raws.append(AnthropicBackend::rawValue(effort));
        throw UsageError{QStringLiteral("No conozco el esfuerzo «") + text +
                         QStringLiteral("». Elegí uno de estos: ") +
                         raws.join(QStringLiteral(", ")) + u'.'};
    }

    void check() const {
        if (m_options.videos.contains(QString())) {
            throw UsageError{QStringLiteral("Uno de los videos llegó sin nombre («»). Revisá las "
                                            "comillas del comando.")};
        }
        const int commands =
            int(m_options.setKeyFor.has_value()) + int(m_options.listModels) + int(m_options.check);
        if (commands > 1) {
            throw UsageError{QStringLiteral("«--set-key», «--list-models» y «--check» van de a "
                                            "uno.") +
                             tryHelp()};
        }
        if (commands == 1) {
            if (!m_options.videos.isEmpty()) {
                throw UsageError{QStringLiteral("«--set-key», «--list-models» y «--check» no "
                                                "llevan videos.") +
                                 tryHelp()};
            }
            return;
        }
        if (m_options.videos.isEmpty()) {
            throw UsageError{
                QStringLiteral("Falta el video. Usá: veltomkv-cli [opciones] VIDEO...") +
                tryHelp()};
        }
        if (m_options.job.outputURL && m_options.job.outputs == JobOutputs::sidecarOnly) {
            throw UsageError{QStringLiteral("Con «--sidecar-only» no se escribe ningún video, así "
                                            "que «--output» no tiene qué nombrar. El subtítulo va "
                                            "siempre junto al video original.")};
        }
        if (m_options.job.outputURL && m_options.videos.size() > 1) {
            throw UsageError{QStringLiteral("«--output» sirve para un solo video y llegaron ") +
                             QString::number(m_options.videos.size()) + QStringLiteral(".")};
        }
    }

    const QStringList& m_arguments;
    qsizetype m_position = 0;
    QString m_name;
    std::optional<QString> m_inlineValue;
    CliOptions m_options;
};

} // namespace

ParsedCommandLine parseCommandLine(const QStringList& arguments) {
    try {
        return Parser(arguments).parse();
    } catch (const UsageError& error) {
        return error;
    }
}

QString helpText() {
    return QStringLiteral(
        "Uso: veltomkv-cli [opciones] VIDEO...\n"
        "     veltomkv-cli --set-key PROVEEDOR < archivo-con-la-clave\n"
        "     veltomkv-cli [opciones del motor] --list-models | --check\n"
        "\n"
        "Agrega a cada video una pista de subtítulos en español, traducida de su pista de\n"
        "texto, y escribe una copia (Pelicula.mkv → Pelicula.es.mkv), el subtítulo solo\n"
        "(Pelicula.es.srt) o las dos cosas. El original no se toca.\n"
        "Con varios videos los traduce uno por uno; si uno falla, sigue con el próximo.\n"
        "\n"
        "Motor de traducción (lo que des acá vale solo para esta vez; si no, se usa lo que\n"
        "elegiste en la app):\n"
        "  --provider ID           anthropic, openai, gemini, meta, local, custom, claudeCLI o\n"
        "                          echo (prueba: antepone «[ES]» y no traduce nada)\n"
        "  --model NOMBRE          el modelo (mirá cuáles hay con --list-models)\n"
        "  --base-url URL          la dirección del servicio (local y custom)\n"
        "  --effort NIVEL          anthropic: low (predeterminado), medium, high, xhigh o max\n"
        "  --cli-model NOMBRE      claudeCLI: opus, sonnet (predeterminado) o haiku\n"
        "  --claude-path RUTA      claudeCLI: dónde está el programa «claude»\n"
        "  --set-key ID            guardar la clave de ese proveedor en el llavero del sistema,\n"
        "                          leída de la entrada estándar (vacía: la borra)\n"
        "  --list-models           listar los modelos que ofrece el servicio, uno por línea\n"
        "  --check                 probar la conexión con el motor\n"
        "La clave sale de VELTOMKV_API_KEY, si no de ANTHROPIC_API_KEY, OPENAI_API_KEY o\n"
        "GEMINI_API_KEY según el proveedor, y si no del llavero del sistema.\n"
        "\n"
        "Opciones del trabajo:\n"
        "  --variant VARIANTE      neutro (predeterminada), rioplatense, latino o espana\n"
        "  --source-language COD   idioma a traducir, código ISO 639 (predeterminado: eng)\n"
        "  --track N               traducir la pista con ese número en vez de elegirla sola\n"
        "  --strip-sdh             quitar descripciones de sonido y nombres de quien habla\n"
        "  --keep-parens           con --strip-sdh, dejar el texto entre paréntesis\n"
        "  --default               marcar la pista nueva como predeterminada\n"
        "  --title TÍTULO          título de la pista nueva (predeterminado: Español (traducido))\n"
        "  --output ARCHIVO        dónde escribir el video nuevo (solo con un video)\n"
        "  --sidecar               escribir además el subtítulo junto al video original\n"
        "                          (Pelicula.es.srt, o Pelicula.es.ass si la pista es ASS)\n"
        "  --sidecar-only          escribir solo el subtítulo, sin video nuevo (sirve también\n"
        "                          para WebM y AVI)\n"
        "  --force                 traducir aunque el video ya tenga subtítulos en español\n"
        "  --batch-size N          subtítulos por pedido al motor (predeterminado: 40)\n"
        "  --concurrency N         pedidos al mismo tiempo (predeterminado: 3)\n"
        "  --context-lines N       líneas anteriores enviadas como contexto (predeterminado: 4)\n"
        "  --no-cache              sin caché de traducciones (solo ahorra pedidos al reintentar\n"
        "                          dentro de una misma ejecución; cada ejecución empieza de cero)\n"
        "  --estimate              solo estimar pedidos, tokens, costo y tiempo de cada video,\n"
        "                          sin mandar nada al motor\n"
        "  --price ENTRADA,SALIDA  dólares por millón de tokens de entrada y de salida, para\n"
        "                          esta vez (si no: el precio que cargaste en la app o el "
        "conocido)\n"
        "  --max-cost DÓLARES      tope de gasto por video: para antes del pedido que lo pueda\n"
        "                          pasar (si no: el tope que pusiste en la app)\n"
        "  --list-tracks           solo mostrar las pistas de subtítulos de cada video\n"
        "  --list-names            solo mostrar los nombres que aparecen en los videos, como\n"
        "                          lista de nombres y términos\n"
        "  --glossary ARCHIVO      la lista de nombres y términos de esta vez, en lugar de\n"
        "                          «nombres.veltomkv.txt» de la carpeta del video\n"
        "  --json                  un objeto JSON por evento, para scripts\n"
        "  --help                  esta ayuda\n"
        "  --version               la versión\n"
        "\n"
        "Ejemplos:\n"
        "  printf %s \"$CLAVE\" | veltomkv-cli --set-key anthropic\n"
        "  veltomkv-cli --provider anthropic Pelicula.mkv\n"
        "  veltomkv-cli --provider local --base-url http://localhost:11434/v1 --list-models\n"
        "  veltomkv-cli --provider local --model qwen3:8b Pelicula.mkv\n"
        "  veltomkv-cli --provider claudeCLI --cli-model sonnet Pelicula.mkv\n"
        "  veltomkv-cli --provider echo Pelicula.mkv\n"
        "  veltomkv-cli --provider openai --model gpt-5-mini --estimate Pelicula.mkv\n"
        "  veltomkv-cli --provider custom --model deepseek-chat --price 0.28,0.42 --max-cost 0.50 "
        "Pelicula.mkv\n"
        "\n"
        "Salida: 0 si todo salió bien, 1 si falló algún video (o el chequeo), 2 si las\n"
        "opciones no son válidas, 3 si se escribió todo pero quedaron subtítulos sin traducir\n"
        "(cuántos: «failed» en el resultado de --json) y 130 si lo cancelaste con Ctrl-C.\n"
        "Si se cierra la salida (por ejemplo, con | head), cancela, limpia y sale con 141.\n");
}

} // namespace velto::cli
