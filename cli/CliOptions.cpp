#include "cli/CliOptions.h"

#include <optional>

#include <QFileInfo>

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
        else if (m_name == QStringLiteral("--list-tracks"))
            m_options.listTracks = true;
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
        else if (m_name == QStringLiteral("--engine"))
            m_options.engine = engine(value());
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

    static SpanishVariant variant(const QString& text) {
        if (auto variant = spanishVariantFromRawValue(text))
            return *variant;
        throw UsageError{QStringLiteral("No conozco la variante «") + text +
                         QStringLiteral("». Elegí neutro, rioplatense, latino o espana.")};
    }

    static QString engine(const QString& text) {
        if (text == QStringLiteral("echo"))
            return text;
        throw UsageError{QStringLiteral("No conozco el motor «") + text +
                         QStringLiteral("». Por ahora el único es «echo», que no traduce.")};
    }

    void check() const {
        if (m_options.videos.contains(QString())) {
            throw UsageError{QStringLiteral("Uno de los videos llegó sin nombre («»). Revisá las "
                                            "comillas del comando.")};
        }
        if (m_options.videos.isEmpty()) {
            throw UsageError{
                QStringLiteral("Falta el video. Usá: veltomkv-cli [opciones] VIDEO...") +
                tryHelp()};
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
        "\n"
        "Agrega a cada video una pista de subtítulos en español, traducida de su pista de\n"
        "texto, y escribe una copia (Pelicula.mkv → Pelicula.es.mkv). El original no se toca.\n"
        "Con varios videos los traduce uno por uno; si uno falla, sigue con el próximo.\n"
        "\n"
        "Opciones:\n"
        "  --engine NOMBRE         motor de traducción (por ahora solo «echo», que no traduce)\n"
        "  --variant VARIANTE      neutro (predeterminada), rioplatense, latino o espana\n"
        "  --source-language COD   idioma a traducir, código ISO 639 (predeterminado: eng)\n"
        "  --track N               traducir la pista con ese número en vez de elegirla sola\n"
        "  --strip-sdh             quitar descripciones de sonido y nombres de quien habla\n"
        "  --keep-parens           con --strip-sdh, dejar el texto entre paréntesis\n"
        "  --default               marcar la pista nueva como predeterminada\n"
        "  --title TÍTULO          título de la pista nueva (predeterminado: Español (traducido))\n"
        "  --output ARCHIVO        dónde escribir el resultado (solo con un video)\n"
        "  --force                 traducir aunque el video ya tenga subtítulos en español\n"
        "  --batch-size N          subtítulos por pedido al motor (predeterminado: 40)\n"
        "  --concurrency N         pedidos al mismo tiempo (predeterminado: 3)\n"
        "  --context-lines N       líneas anteriores enviadas como contexto (predeterminado: 4)\n"
        "  --no-cache              no leer ni guardar el caché de traducciones\n"
        "  --list-tracks           solo mostrar las pistas de subtítulos de cada video\n"
        "  --json                  un objeto JSON por evento, para scripts\n"
        "  --help                  esta ayuda\n"
        "  --version               la versión\n"
        "\n"
        "Salida: 0 si todo salió bien, 1 si falló algún video, 2 si las opciones no son\n"
        "válidas y 130 si lo cancelaste con Ctrl-C.\n"
        "Si se cierra la salida (por ejemplo, con | head), cancela, limpia y sale con 141.\n");
}

} // namespace velto::cli
