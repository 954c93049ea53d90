#include "VeltoKit/media/MediaInfo.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <tuple>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "VeltoKit/media/Languages.h"
#include "VeltoKit/media/ShellError.h"

namespace velto {

namespace {

[[noreturn]] void unreadable() {
    throw ShellError::failed(QStringLiteral("ffprobe"), 1,
                             QStringLiteral("No pude leer la salida de ffprobe."));
}

// Tag keys differ in case between containers ("title", "TITLE"); mkvmerge's statistics
// tags may carry a language suffix ("NUMBER_OF_FRAMES-eng").
std::optional<QString> tag(const QJsonObject& tags, QStringView key) {
    for (auto it = tags.begin(); it != tags.end(); ++it) {
        const QString name = it.key();
        if (name.compare(key, Qt::CaseInsensitive) == 0 ||
            (name.startsWith(key, Qt::CaseInsensitive) && name.size() > key.size() &&
             name.at(key.size()) == u'-'))
            return it.value().toString();
    }
    return std::nullopt;
}

// ffprobe writes counts and sizes as strings of digits; accept plain numbers too.
std::optional<qint64> integer(const QJsonValue& value) {
    if (value.isDouble() && value.toDouble() == std::floor(value.toDouble()))
        return static_cast<qint64>(value.toDouble());
    bool ok = false;
    const qint64 parsed = value.toString().toLongLong(&ok);
    return ok ? std::optional(parsed) : std::nullopt;
}

std::optional<double> decimal(const QJsonValue& value) {
    if (value.isDouble())
        return value.toDouble();
    bool ok = false;
    const double parsed = value.toString().toDouble(&ok);
    return ok ? std::optional(parsed) : std::nullopt;
}

SubtitleTrack trackFromStream(const QJsonObject& stream, qint64 relativeIndex) {
    const QJsonValue index = stream.value(u"index");
    const QJsonValue tagsValue = stream.value(u"tags");
    const QJsonValue dispositionValue = stream.value(u"disposition");
    if (!index.isDouble() || !(tagsValue.isUndefined() || tagsValue.isObject()) ||
        !(dispositionValue.isUndefined() || dispositionValue.isObject()))
        unreadable();
    const QJsonObject tags = tagsValue.toObject();
    const QJsonObject disposition = dispositionValue.toObject();

    SubtitleTrack track;
    track.index = index.toInteger();
    track.relativeIndex = relativeIndex;
    track.codec = stream.value(u"codec_name").toString(QStringLiteral("unknown"));
    track.title = tag(tags, u"title").value_or(QString());
    // MP4 has no track title: its handler name carries it, unless it is a tool's default.
    static const QStringList defaultHandlers = {
        QStringLiteral("SubtitleHandler"), QStringLiteral("Core Media Text"),
        QStringLiteral("TextHandler"), QStringLiteral("Subtitle"), QStringLiteral("Text")};
    if (const auto handler = tag(tags, u"handler_name");
        track.title.isEmpty() && handler && !defaultHandlers.contains(handler->trimmed()))
        track.title = handler->trimmed();
    track.rawLanguage = tag(tags, u"language").value_or(QString());
    track.language = Languages::normalize(track.rawLanguage);
    if (track.language == u"und")
        track.language = Languages::guessFromTitle(track.title).value_or(track.language);
    track.forced = disposition.value(u"forced").toInt() == 1 || Languages::looksForced(track.title);
    track.hearingImpaired =
        disposition.value(u"hearing_impaired").toInt() == 1 || Languages::looksSDH(track.title);
    track.isDefault = disposition.value(u"default").toInt() == 1;
    track.frameCount = integer(stream.value(u"nb_frames"));
    if (!track.frameCount)
        track.frameCount = integer(tag(tags, u"number_of_frames").value_or(QString()));
    return track;
}

} // namespace

MediaInfo MediaInfo::fromProbeJson(const QString& path, const QByteArray& json) {
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (error.error != QJsonParseError::NoError || !document.isObject())
        unreadable();
    const QJsonObject root = document.object();
    const QJsonValue streams = root.value(u"streams");
    const QJsonValue format = root.value(u"format");
    if (!(streams.isUndefined() || streams.isArray()) ||
        !(format.isUndefined() || format.isObject()))
        unreadable();

    MediaInfo info;
    info.path = path;
    for (const QJsonValue stream : streams.toArray()) {
        if (!stream.isObject())
            unreadable();
        info.tracks.append(trackFromStream(stream.toObject(), info.tracks.size()));
    }
    const QJsonObject formatObject = format.toObject();
    info.duration = decimal(formatObject.value(u"duration"));
    info.sizeBytes = integer(formatObject.value(u"size")).value_or(0);
    return info;
}

SpanishStatus MediaInfo::spanishStatus() const {
    bool anySpanish = false;
    for (const SubtitleTrack& track : tracks) {
        if (track.language != u"spa")
            continue;
        if (!track.forced)
            return SpanishStatus::full;
        anySpanish = true;
    }
    return anySpanish ? SpanishStatus::forcedOnly : SpanishStatus::none;
}

std::optional<SubtitleTrack> MediaInfo::pickSource(const QString& language) const {
    auto candidatesIn = [this](const QString& code) {
        QList<SubtitleTrack> found;
        std::copy_if(tracks.cbegin(), tracks.cend(), std::back_inserter(found),
                     [&](const SubtitleTrack& t) { return t.isText() && t.language == code; });
        return found;
    };
    QList<SubtitleTrack> candidates = candidatesIn(language);
    if (candidates.isEmpty())
        candidates = candidatesIn(QStringLiteral("und"));
    if (candidates.isEmpty())
        return std::nullopt;

    // Larger is better; ties keep the earlier track (lower relativeIndex).
    auto rank = [](const SubtitleTrack& t) {
        return std::tuple(!t.forced, !t.hearingImpaired, t.frameCount.value_or(0), t.isDefault,
                          -t.relativeIndex);
    };
    return *std::max_element(
        candidates.cbegin(), candidates.cend(),
        [&](const SubtitleTrack& a, const SubtitleTrack& b) { return rank(a) < rank(b); });
}

} // namespace velto
