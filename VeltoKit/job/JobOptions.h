#pragma once

#include <optional>

#include <QString>

#include "VeltoKit/job/JobOutputs.h"
#include "VeltoKit/job/TokenPrice.h"
#include "VeltoKit/translation/Glossary.h"
#include "VeltoKit/translation/SpanishVariant.h"

namespace velto {

// What the user asked of one job. The defaults are the program's; front ends overwrite the
// fields their preferences hold.
struct JobOptions {
    // ISO 639-2 code of the language to translate from; picks the source track.
    QString sourceLanguage = QStringLiteral("eng");
    SpanishVariant variant = SpanishVariant::neutro;
    bool stripSDH = false;
    // Only read when stripSDH is set.
    bool stripParens = true;
    bool makeDefault = false;
    QString trackTitle = QStringLiteral("Español (traducido)");
    qint64 batchSize = 40;
    qint64 concurrency = 3;
    qint64 contextLines = 4;
    bool useCache = true;
    // Absent: beside the source, see JobPlan::defaultOutputURL. Names the video only: the
    // subtitle file always goes beside the source (JobPlan::sidecarURL).
    std::optional<QString> outputURL;
    // Stream index chosen by hand; absent means the automatic choice.
    std::optional<qint64> forcedTrackIndex;
    // Translate even when the file already has full Spanish subtitles.
    bool force = false;
    JobOutputs outputs = JobOutputs::video;
    // Names and terms; absent: the list file in the source's folder, when there is one.
    std::optional<Glossary> glossary;
    // What the engine charges; absent when unknown. Free engines cost 0.
    std::optional<TokenPrice> price;
    // US dollars the job may spend at most; absent: no cap.
    std::optional<double> maxCost;
};

} // namespace velto
