#include "VeltoKit/job/TranslationJob.h"

#include <atomic>
#include <mutex>

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QMap>
#include <QProcess>
#include <QSet>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "VeltoKit/engines/EchoBackend.h"
#include "VeltoKit/job/JobError.h"
#include "VeltoKit/job/JobPlan.h"
#include "VeltoKit/subtitles/SrtDocument.h"
#include "VeltoKit/translation/BlockProtocol.h"
#include "support/MediaFixtures.h"

using namespace velto;
using namespace Qt::StringLiterals;
using MediaFixtures::SubtitleFormat;
using MediaFixtures::SubtitleRecipe;

namespace {

// The echo engine, counting the texts it is asked for; it can refuse one line (its block goes
// missing from every answer) and pull the plug on a given call, as a user's cancel would.
class ObservedEcho : public TranslationBackend {
public:
    QString label() const override { return m_echo.label(); }
    void preflight(std::stop_token) const override {}

    QString complete(const QString& system, const QString& prompt,
                     std::stop_token stop) const override {
        requestedTexts += static_cast<int>(BlockProtocol::split(prompt).size());
        if (++calls == cancelOnCall) {
            cancel.request_stop();
            throwIfStopped(stop);
        }
        std::map<int, QString> blocks = BlockProtocol::split(m_echo.complete(system, prompt, stop));
        std::erase_if(blocks, [&](const auto& b) { return b.second.contains(refused); });
        if (translate) {
            const std::lock_guard lock(m_mutex);
            for (auto& [number, text] : blocks)
                text = translate(text.mid(echoMark.size()));
        }
        return BlockProtocol::build({blocks.begin(), blocks.end()});
    }

    // When set, answers each block in place of the echo, one block at a time.
    std::function<QString(const QString& text)> translate;
    mutable std::atomic<int> calls = 0;
    mutable std::atomic<int> requestedTexts = 0;
    QString refused = u"\u0001"_s;
    int cancelOnCall = 0;
    std::stop_source cancel;

private:
    static inline const QString echoMark = QStringLiteral("[ES] ");
    EchoBackend m_echo;
    mutable std::mutex m_mutex;
};

SubtitleRecipe track(SubtitleFormat format, const QString& language, int lines = 3) {
    SubtitleRecipe recipe;
    recipe.format = format;
    recipe.language = language;
    recipe.lines.clear();
    for (int i = 1; i <= lines; ++i)
        recipe.lines.append(u"Line number %1."_s.arg(i));
    return recipe;
}

QByteArray fingerprint(const QString& file) {
    return QCryptographicHash::hash(MediaFixtures::readFile(file), QCryptographicHash::Sha256) +
           QFileInfo(file).lastModified().toString(Qt::ISODateWithMs).toUtf8();
}

// The cues of Matroska track `id` as mkvextract, an independent reader, writes them.
QList<SrtCue> cuesOf(const QString& file, qint64 id, const QString& scratch) {
    QProcess::execute(u"mkvextract"_s, {file, u"tracks"_s, QString::number(id) + u':' + scratch});
    return SrtDocument::parse(QString::fromUtf8(MediaFixtures::readFile(scratch))).cues();
}

class TranslationJobTest : public testing::Test {
protected:
    void SetUp() override {
        QDir(m_root.path()).mkpath(u"tmp"_s);
        // Every working folder of the job lands here, where the tests can see what is left.
        qputenv("TMPDIR", QFile::encodeName(path(u"tmp"_s)));
    }
    void TearDown() override { qputenv("TMPDIR", m_oldTemp); }

    QString path(const QString& name) const { return QDir(m_root.path()).filePath(name); }

    QString video(const QString& name, const QList<SubtitleRecipe>& subtitles) const {
        MediaFixtures::writeVideo(path(name), {.subtitles = subtitles});
        return path(name);
    }

    JobResult run(const QString& source, JobOptions options, const ObservedEcho& backend) {
        m_updates.clear();
        const TranslationJob job(MediaFixtures::tools(), {&backend, [](auto*) {}},
                                 std::move(options), path(u"cache"_s));
        return job.run(
            source, [this](const JobUpdate& update) { m_updates.append(update); },
            backend.cancel.get_token());
    }

    QStringList leftovers() const {
        return QDir(path(u"tmp"_s)).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
    }

    QStringList details(JobStage stage) const {
        QStringList texts;
        for (const JobUpdate& update : m_updates) {
            if (update.stage == stage)
                texts.append(update.detail);
        }
        return texts;
    }

    QTemporaryDir m_root;
    QByteArray m_oldTemp = qgetenv("TMPDIR");
    QList<JobUpdate> m_updates;
};

} // namespace

TEST_F(TranslationJobTest, WritesAVerifiedCopyWithTheEchoTrackAndReportsEveryStage) {
    SubtitleRecipe english = track(SubtitleFormat::srt, u"eng"_s, 11);
    english.lines[6] = u"<i>Nobody translates me.</i>"_s;
    // No words: kept as it is, never sent, not counted.
    english.lines[3] = u"<i> </i>"_s;
    const QString source = video(u"Movie.mkv"_s, {english});
    const QByteArray before = fingerprint(source);
    ObservedEcho backend;
    backend.refused = u"Nobody"_s;
    JobOptions options;
    options.batchSize = 4;
    options.concurrency = 2;
    options.makeDefault = true;
    options.trackTitle = u"Castellano de prueba"_s;
    const JobResult result = run(source, options, backend);

    EXPECT_EQ(result.outputURL, path(u"Movie.es.mkv"_s));
    EXPECT_EQ(result.translatedCount, 9);
    EXPECT_EQ(result.failedLines, 1);
    // The refused line is asked once more, alone, then named; the echo's prefix makes every
    // other cue of 0.9 s too fast to read.
    EXPECT_EQ(result.warnings.last(3),
              (QStringList{u"Lote de 1 sin traducir (faltan o sobran bloques "
                           u"(esperados 1, recibidos 0))"_s,
                           u"1 subtítulo quedó sin traducir: #7 (0:06)."_s,
                           u"9 subtítulos se leen a más de 20 caracteres por segundo: #1 (0:00), "
                           u"#2 (0:01), #3 (0:02), #5 (0:04), #6 (0:05) y 4 más."_s}));
    EXPECT_EQ(leftovers(), QStringList());
    EXPECT_EQ(fingerprint(source), before) << "the source is only read";

    QList<JobStage> stages;
    for (const JobUpdate& update : m_updates) {
        if (stages.isEmpty() || stages.last() != update.stage)
            stages.append(update.stage);
    }
    EXPECT_EQ(stages,
              (QList<JobStage>{JobStage::analyzing, JobStage::extracting, JobStage::checking,
                               JobStage::translating, JobStage::reviewing, JobStage::rebuilding,
                               JobStage::muxing, JobStage::verifying, JobStage::done}));
    EXPECT_EQ(details(JobStage::translating).first(), u"11 subtítulos"_s);
    EXPECT_EQ(details(JobStage::translating).last(), u"10 de 10  ·  1 sin traducir"_s);
    EXPECT_EQ(details(JobStage::reviewing).last(), u"1 de 1"_s);
    EXPECT_EQ(m_updates.last().detail, u"Movie.es.mkv"_s);
    EXPECT_EQ(m_updates.last().progress, 1.0);

    // mkvmerge reads the new track as asked, and its cues are the echo of the source's, at the
    // source's times; the refused line and the one without words keep their original wording.
    ASSERT_EQ(result.finalTracks.size(), 2);
    const QJsonObject added = MediaFixtures::mkvmergeIdentify(result.outputURL)[u"tracks"]
                                  .toArray()
                                  .last()[u"properties"]
                                  .toObject();
    EXPECT_EQ(added[u"language"].toString(), u"spa"_s);
    EXPECT_EQ(added[u"track_name"].toString(), u"Castellano de prueba"_s);
    EXPECT_TRUE(added[u"default_track"].toBool());
    const QList<SrtCue> original =
        cuesOf(result.outputURL, result.finalTracks[0].index, path(u"en"_s));
    const QList<SrtCue> translated =
        cuesOf(result.outputURL, result.finalTracks[1].index, path(u"es"_s));
    ASSERT_EQ(translated.size(), 11);
    for (qsizetype i = 0; i < original.size(); ++i) {
        EXPECT_EQ(translated[i].start + translated[i].end, original[i].start + original[i].end);
        EXPECT_EQ(translated[i].text, (i == 6 || i == 3 ? u""_s : u"[ES] "_s) + original[i].text);
    }
}

TEST_F(TranslationJobTest, RefusesBeforeWritingAnything) {
    const QString english = video(u"Movie.mkv"_s, {track(SubtitleFormat::srt, u"eng"_s)});
    const QString images = video(u"images.mkv"_s, {track(SubtitleFormat::pgs, u"eng"_s),
                                                   track(SubtitleFormat::dvdSubtitle, u"eng"_s)});
    const QString spanish = video(u"spanish.mkv"_s, {track(SubtitleFormat::srt, u"spa"_s)});
    // A missing file, one without subtitles and one already in Spanish are refused through the
    // command line and the window (tests/cli, tests/VeltoMKV).
    struct Case {
        QString source;
        std::function<void(JobOptions&)> ask;
        QString message;
    };
    const QList<Case> cases = {
        {images,
         {},
         u"No hay subtítulos de texto para traducir. Las pistas disponibles son de imagen "
         u"(dvd_subtitle, hdmv_pgs_subtitle) y harían falta OCR."_s},
        {images, [](JobOptions& o) { o.forcedTrackIndex = 2; },
         u"La pista #2 es de imagen (hdmv_pgs_subtitle) y no se puede traducir sin OCR."_s},
        {spanish, [](JobOptions& o) { o.force = true; },
         u"No encontré ninguna pista de subtítulos en inglés."_s},
        {english, [&](JobOptions& o) { o.outputURL = path(u"sub/../Movie.mkv"_s); },
         u"La salida no puede ser el mismo archivo que la entrada."_s},
        {english, [&](JobOptions& o) { o.outputURL = path(u"sub/Movie.es.mkv"_s); },
         u"La carpeta de salida «"_s + path(u"sub"_s) + u"» no existe."_s},
        {english, [](JobOptions& o) { o.batchSize = 0; },
         u"Cada pedido al motor tiene que llevar al menos 1 subtítulo (llegó 0)."_s},
    };
    for (const Case& refusal : cases) {
        SCOPED_TRACE(refusal.message.toStdString());
        JobOptions options;
        if (refusal.ask)
            refusal.ask(options);
        ObservedEcho backend;
        try {
            run(refusal.source, options, backend);
            ADD_FAILURE() << "expected a refusal";
        } catch (const VeltoError& error) {
            EXPECT_EQ(error.description(), refusal.message);
        }
        for (const JobUpdate& update : m_updates)
            EXPECT_EQ(update.stage, JobStage::analyzing) << "only the analysis ran";
        EXPECT_EQ(leftovers(), QStringList());
        EXPECT_FALSE(QFile::exists(JobPlan::defaultOutputURL(refusal.source)));
    }
}

TEST_F(TranslationJobTest, ACancelLeavesNothingBehindAndTheNextRunPaysOnlyForWhatWasMissing) {
    const QString source = video(u"Movie.mkv"_s, {track(SubtitleFormat::srt, u"eng"_s, 12)});
    JobOptions options;
    options.batchSize = 5;
    options.concurrency = 1;
    ObservedEcho cancelled;
    cancelled.cancelOnCall = 2;
    EXPECT_THROW(run(source, options, cancelled), Cancelled);
    EXPECT_EQ(leftovers(), QStringList());
    EXPECT_FALSE(QFile::exists(path(u"Movie.es.mkv"_s)));

    ObservedEcho resumed;
    EXPECT_EQ(run(source, options, resumed).translatedCount, 12);
    EXPECT_EQ(resumed.requestedTexts, 7) << "the first batch of five came from the cache";
    EXPECT_EQ(details(JobStage::translating),
              (QStringList{u"12 subtítulos"_s, u"5 de 12  ·  5 en caché"_s,
                           u"10 de 12  ·  5 en caché"_s, u"12 de 12  ·  5 en caché"_s}));
}

// An engine that answers some cues in English, one empty and one far too long: the review names
// them and asks again, one by one, only those that came back untranslated or too long.
TEST_F(TranslationJobTest, TheReviewNamesWhatTheEngineSpoiledAndAsksAgainOnlyTheUntranslated) {
    const QStringList english = {u"Hello there."_s,
                                 u"Where did you put the keys?"_s,
                                 u"I left them on the table."_s,
                                 u"We should leave before dark."_s,
                                 u"Fine."_s,
                                 u"See you tomorrow, then."_s};
    // Cues of 2.5 s each, the last one past the first minute.
    QByteArray srt;
    const int starts[] = {0, 3, 6, 9, 12, 62};
    for (qsizetype i = 0; i < english.size(); ++i)
        srt += u"%1\n00:%2:%3,500 --> 00:%2:%4,000\n%5\n\n"_s.arg(i + 1)
                   .arg(starts[i] / 60, 2, 10, QLatin1Char('0'))
                   .arg(starts[i] % 60, 2, 10, QLatin1Char('0'))
                   .arg(starts[i] % 60 + 3, 2, 10, QLatin1Char('0'))
                   .arg(english[i])
                   .toUtf8();
    const QString source = path(u"Movie.mkv"_s);
    MediaFixtures::writeVideo(source, {.subtitles = {{.language = u"eng"_s, .contents = srt}}});
    ObservedEcho backend;
    QSet<QString> seen;
    backend.translate = [&](const QString& text) -> QString {
        const bool first = !seen.contains(text);
        seen.insert(text);
        if (text == english[1] || (text == english[2] && first))
            return text;
        if (text == english[3])
            return QString();
        return text == english[4] ? u"es: "_s + u"Bien, "_s.repeated(10) : u"es: "_s + text;
    };
    JobOptions options;
    options.useCache = false;
    const JobResult result = run(source, options, backend);

    // Cue 5 came back far longer than its source, twice: the track keeps its source.
    EXPECT_EQ(result.warnings,
              (QStringList{u"2 subtítulos quedaron sin traducir: #2 (0:03), #5 (0:12)."_s,
                           u"1 subtítulo quedó vacío o incompleto: #4 (0:09)."_s}));
    ASSERT_EQ(result.qualityFindings.size(), 3);
    const CheckedCue& untranslated = result.qualityFindings[0].cue;
    EXPECT_EQ(std::tuple(untranslated.number, untranslated.startMs, untranslated.endMs),
              std::tuple(2, 3'500, 6'000));
    EXPECT_EQ(untranslated.translation, english[1]);
    EXPECT_EQ(std::pair(result.translatedCount, result.failedLines), std::pair(4LL, 2LL));
    // One batch, and one request for each of the three cues that came back in English or too
    // long; the asking again is a stage of its own.
    EXPECT_EQ(backend.calls, 4);
    EXPECT_EQ(details(JobStage::reviewing).last(), u"3 de 3"_s);

    // The written track holds what the user was told, at the times named; the empty cue is
    // not stored at all.
    QMap<QString, QString> written;
    const SrtDocument track = SrtDocument::parse(MediaFixtures::subtitleText(result.outputURL, 1));
    for (const SrtCue& cue : track.cues())
        written.insert(cue.start, cue.text);
    EXPECT_EQ(written,
              (QMap<QString, QString>{{u"00:00:00,500"_s, u"es: Hello there."_s},
                                      {u"00:00:03,500"_s, english[1]},
                                      {u"00:00:06,500"_s, u"es: I left them on the table."_s},
                                      {u"00:00:12,500"_s, english[4]},
                                      {u"00:01:02,500"_s, u"es: See you tomorrow, then."_s}}));
}
