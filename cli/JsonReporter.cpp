#include "cli/JsonReporter.h"

#include <QJsonArray>
#include <QJsonDocument>

#include "VeltoKit/job/CostEstimate.h"
#include "VeltoKit/job/JobResult.h"
#include "VeltoKit/job/JobUpdate.h"
#include "VeltoKit/job/QualityCheck.h"
#include "VeltoKit/media/MediaInfo.h"
#include "cli/TerminalText.h"

namespace velto::cli {
namespace {

QJsonObject trackObject(const SubtitleTrack& track) {
    QJsonObject object{
        {QStringLiteral("index"), track.index},
        {QStringLiteral("codec"), track.codec},
        {QStringLiteral("language"), track.language},
        {QStringLiteral("title"), track.title},
        {QStringLiteral("flags"), QJsonArray::fromStringList(track.flags())},
        {QStringLiteral("summary"), track.summary()},
    };
    if (track.frameCount)
        object.insert(QStringLiteral("events"), *track.frameCount);
    return object;
}

QJsonArray findingArray(const QList<QualityFinding>& findings) {
    QJsonArray array;
    auto time = [](const std::optional<qint64>& ms) { return ms ? QJsonValue(*ms) : QJsonValue(); };
    for (const QualityFinding& finding : findings) {
        array.append(QJsonObject{
            {QStringLiteral("category"), QualityCheck::issueName(finding.issue)},
            {QStringLiteral("cue"), finding.cue.number},
            {QStringLiteral("start"), time(finding.cue.startMs)},
            {QStringLiteral("end"), time(finding.cue.endMs)},
            {QStringLiteral("source"), finding.cue.source},
            {QStringLiteral("translation"), finding.cue.translation},
        });
    }
    return array;
}

QJsonArray trackArray(const QList<SubtitleTrack>& tracks) {
    QJsonArray array;
    for (const SubtitleTrack& track : tracks)
        array.append(trackObject(track));
    return array;
}

} // namespace

JsonReporter::JsonReporter(FILE* out, FILE* err)
    : m_out(out)
    , m_err(err) {}

void JsonReporter::started(const QString& video) {
    m_video = video;
}

void JsonReporter::update(const JobUpdate& update) {
    if (update.estimate)
        estimated(m_video, *update.estimate);
    QJsonObject object{
        {QStringLiteral("stage"), caseName(update.stage)},
        {QStringLiteral("label"), label(update)},
        {QStringLiteral("detail"), update.detail},
    };
    if (update.progress)
        object.insert(QStringLiteral("progress"), *update.progress);
    print(QStringLiteral("update"), object);
}

void JsonReporter::tracks(const QString& video, const MediaInfo& info) {
    m_video = video;
    print(QStringLiteral("tracks"), {{QStringLiteral("tracks"), trackArray(info.tracks)}});
}

void JsonReporter::estimated(const QString& video, const CostEstimate& estimate) {
    m_video = video;
    const auto dollars = [](std::optional<double> amount) {
        return amount ? QJsonValue(*amount) : QJsonValue();
    };
    print(QStringLiteral("estimate"),
          {
              {QStringLiteral("cues"), estimate.cues},
              {QStringLiteral("cached"), estimate.cached},
              {QStringLiteral("requests"), estimate.requests},
              {QStringLiteral("inputTokens"), estimate.inputTokens},
              {QStringLiteral("outputTokens"), estimate.outputTokens},
              {QStringLiteral("outputTokensLow"), estimate.outputTokensLow},
              {QStringLiteral("outputTokensHigh"), estimate.outputTokensHigh},
              {QStringLiteral("costLow"), dollars(estimate.costLow())},
              {QStringLiteral("costHigh"), dollars(estimate.costHigh())},
              {QStringLiteral("secondsLow"), estimate.secondsLow},
              {QStringLiteral("secondsHigh"), estimate.secondsHigh},
              {QStringLiteral("summary"), estimate.summary()},
          });
}

void JsonReporter::finished(const QString&, const JobResult& result) {
    print(QStringLiteral("usage"),
          {
              {QStringLiteral("requests"), result.requests},
              {QStringLiteral("inputTokens"), result.usage.input},
              {QStringLiteral("outputTokens"), result.usage.output},
              {QStringLiteral("cost"), result.cost ? QJsonValue(*result.cost) : QJsonValue()},
          });
    // Always sent, so a script can tell a clean run from an old program.
    print(QStringLiteral("quality"),
          {{QStringLiteral("findings"), findingArray(result.qualityFindings)}});
    print(QStringLiteral("result"),
          {
              {QStringLiteral("output"),
               result.outputURL.isEmpty() ? QJsonValue() : QJsonValue(result.outputURL)},
              {QStringLiteral("sidecar"),
               result.sidecarURL ? QJsonValue(*result.sidecarURL) : QJsonValue()},
              {QStringLiteral("translated"), result.translatedCount},
              {QStringLiteral("removedDescriptions"), result.removedDescriptions},
              {QStringLiteral("failed"), result.failedLines},
              {QStringLiteral("warnings"), QJsonArray::fromStringList(result.warnings)},
              {QStringLiteral("elapsed"), result.elapsed},
              {QStringLiteral("tracks"), trackArray(result.finalTracks)},
          });
}

void JsonReporter::failed(const QString&, const QString& message, const QString& hint) {
    QJsonObject object{{QStringLiteral("message"), message}};
    if (!hint.isEmpty())
        object.insert(QStringLiteral("hint"), hint);
    print(QStringLiteral("error"), object);
    writeText(m_err, message + u'\n');
}

void JsonReporter::listingFailed(const QString& video, const QString& message) {
    failed(video, message, QString());
}

void JsonReporter::cancelled(const QString&) {
    print(QStringLiteral("cancelled"), {});
}

void JsonReporter::print(const QString& type, QJsonObject object) {
    object.insert(QStringLiteral("type"), type);
    object.insert(QStringLiteral("video"), m_video);
    writeText(m_out,
              QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact)) + u'\n');
    std::fflush(m_out);
}

} // namespace velto::cli
