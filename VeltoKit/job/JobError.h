#pragma once

#include <optional>

#include <QString>
#include <QStringList>

#include "VeltoKit/core/VeltoError.h"

namespace velto {

// The job's refusals, raised before anything is written. Each says what is wrong and carries
// what it is about; the way out (a control in the window, a flag in the terminal) is each front
// end's to add, so the sentence never names a control that only one of them has.
class JobError : public VeltoError {
public:
    enum class Kind {
        noSourceTrack,
        bitmapOnly,
        noSubtitles,
        alreadySpanish,
        sameInputOutput,
        badOptions,
        badOutput,
        outputFolderReadOnly,
        cacheUnavailable,
    };

    // No text track in the language looked for, named in Spanish.
    static JobError noSourceTrack(const QString& languageName);
    // A track chosen by number that the file does not have.
    static JobError unknownTrack(qint64 index);
    // Every subtitle track is an image; `codecs` sorted.
    static JobError bitmapOnly(const QStringList& codecs);
    // The chosen track is an image.
    static JobError imageTrack(qint64 index, const QString& codec);
    static JobError noSubtitles();
    static JobError alreadySpanish();
    static JobError sameInputOutput();
    // A number the engine cannot work with, said before anything starts.
    static JobError badOptions(const QString& message);
    // An output that is a folder, or whose extension names no container the mux can write.
    static JobError badOutput(const QString& message);
    static JobError outputFolderReadOnly(const QString& folder);
    static JobError cacheUnavailable(const QString& folder);

    Kind kind() const { return m_kind; }
    // The track the refusal is about, when it names one.
    std::optional<qint64> trackIndex() const { return m_trackIndex; }
    // The folder the refusal is about, when it names one.
    const QString& folder() const { return m_folder; }

private:
    JobError(Kind kind, QString description);

    Kind m_kind;
    std::optional<qint64> m_trackIndex;
    QString m_folder;
};

} // namespace velto
