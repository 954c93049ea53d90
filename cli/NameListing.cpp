#include "cli/NameListing.h"

#include <QDir>
#include <QFileInfo>

#include "VeltoKit/core/VeltoError.h"
#include "VeltoKit/job/SourceNames.h"
#include "VeltoKit/media/FFmpeg.h"
#include "VeltoKit/translation/Glossary.h"
#include "cli/CliOptions.h"
#include "cli/CliRunner.h"
#include "cli/TerminalText.h"

namespace velto::cli {

int listNames(const CliOptions& options, const FFmpeg& ffmpeg, std::stop_token stop) {
    int status = success;
    QList<Glossary::Entry> entries;
    for (const QString& video : options.videos) {
        try {
            for (const QString& name : SourceNames::of(ffmpeg, video, options.job, stop))
                entries.append({name, {}});
        } catch (const VeltoError& error) {
            writeText(stderr, QFileInfo(video).fileName() + QStringLiteral(": ") +
                                  error.description() + u'\n');
            status = jobFailed;
        }
    }
    writeText(stdout,
              Glossary(entries).text(
                  {QStringLiteral("Nombres y términos: uno por línea; después de un tabulador, "
                                  "cómo va en español."),
                   QStringLiteral("Sin nada después del tabulador, se deja tal cual.")}));
    return status;
}

Glossary readGlossaryFile(const QString& path) {
    if (!QFileInfo(path).isFile()) {
        throw FileError(QStringLiteral("No encontré la lista de nombres «") +
                        QDir::toNativeSeparators(path) + QStringLiteral("»."));
    }
    return Glossary::load(path);
}

} // namespace velto::cli
