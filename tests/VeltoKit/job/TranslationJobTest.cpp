#include "VeltoKit/job/TranslationJob.h"

#include <atomic>

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "VeltoKit/core/VeltoError.h"
#include "VeltoKit/engines/EchoBackend.h"
#include "VeltoKit/job/JobError.h"
#include "VeltoKit/subtitles/SrtDocument.h"
#include "VeltoKit/translation/BlockProtocol.h"
#include "support/MediaFixtures.h"
#include "support/QStringPrinter.h"

using namespace velto;
using namespace Qt::StringLiterals;
using MediaFixtures::SubtitleFormat;
using MediaFixtures::SubtitleRecipe;
using MediaFixtures::VideoRecipe;

namespace {

// The echo engine, counting what it is asked; it can refuse one line (its block goes missing
// from every answer) and pull the plug on a given call, as a user's cancel would.
class ObservedEcho : public TranslationBackend {
public:
    QString label() const override { return m_echo.label(); }
    void preflight(std::stop_token stop) const override { m_echo.preflight(stop); }

    QString complete(const QString& system, const QString& prompt,
                     std::stop_token stop) const override {
        const int call = ++calls;
        requestedTexts += static_cast<int>(BlockProtocol::split(prompt).size());
        if (call == cancelOnCall) {
            cancel->request_stop();
            throwIfStopped(stop);
        }
        QString answer = m_echo.complete(system, prompt, stop);
        if (!refused.isEmpty()) {
            std::map<int, QString> blocks = BlockProtocol::split(answer);
            std::erase_if(blocks, [&](const auto& b) { return b.second.contains(refused); });
            answer = BlockProtocol::build({blocks.begin(), blocks.end()});
        }
        return answer;
    }

    mutable std::atomic<int> calls = 0;
    mutable std::atomic<int> requestedTexts = 0;
    QString refused;
    int cancelOnCall = 0;
    std::stop_source* cancel = nullptr;

private:
    EchoBackend m_echo;
};

SubtitleRecipe english(const QStringList& lines) {
    SubtitleRecipe recipe;
    recipe.language = QStringLiteral("eng");
    recipe.title = QStringLiteral("English");
    recipe.lines = lines;
    return recipe;
}

SubtitleRecipe track(SubtitleFormat format, const QString& language, bool forced = false) {
    SubtitleRecipe recipe;
    recipe.format = format;
    recipe.language = language;
    recipe.forced = forced;
    return recipe;
}

QStringList numberedLines(int count) {
    QStringList lines;
    for (int i = 1; i <= count; ++i)
        lines.append(QStringLiteral("Line number %1.").arg(i));
    return lines;
}

class TranslationJobTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_root.isValid());
        QDir(m_root.path()).mkpath(QStringLiteral("tmp"));
        m_oldTemp = qgetenv("TMPDIR");
        // Every working folder of the job lands here, where the tests can see what is left.
        qputenv("TMPDIR", QFile::encodeName(path(QStringLiteral("tmp"))));
    }
    void TearDown() override { qputenv("TMPDIR", m_oldTemp); }

    QString path(const QString& name) const { return QDir(m_root.path()).filePath(name); }

    QString video(const QString& name, const QList<SubtitleRecipe>& subtitles) const {
        VideoRecipe recipe;
        recipe.subtitles = subtitles;
        const QString file = path(name);
        MediaFixtures::writeVideo(file, recipe);
        return file;
    }

    JobResult run(const QString& source, JobOptions options, const ObservedEcho& backend,
                  std::stop_token stop = {}) {
        m_updates.clear();
        const std::shared_ptr<const TranslationBackend> shared(&backend, [](auto*) {});
        const TranslationJob job(MediaFixtures::tools(), shared, std::move(options),
                                 path(QStringLiteral("cache")));
        return job.run(
            source, [this](const JobUpdate& update) { m_updates.append(update); }, stop);
    }

    // The message of the refusal, after checking that nothing was written or extracted.
    QString refusal(const QString& source, const JobOptions& options) {
        ObservedEcho backend;
        try {
            run(source, options, backend);
        } catch (const JobError& error) {
            EXPECT_EQ(leftovers(), QStringList());
            EXPECT_FALSE(QFile::exists(TranslationJob::defaultOutputURL(source, u".es"_s)));
            EXPECT_EQ(m_updates.size(), 1) << "only the analysis ran";
            EXPECT_EQ(backend.calls, 0);
            return error.description();
        }
        ADD_FAILURE() << "expected a refusal";
        return {};
    }

    QStringList leftovers() const {
        return QDir(path(QStringLiteral("tmp"))).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
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
    QByteArray m_oldTemp;
    QList<JobUpdate> m_updates;
};

// The cues of Matroska track `id` as mkvextract, an independent reader, writes them.
QList<SrtCue> cuesOf(const QString& file, qint64 id, const QString& scratch) {
    QProcess mkvextract;
    mkvextract.start(QStringLiteral("mkvextract"),
                     {file, QStringLiteral("tracks"), QString::number(id) + u':' + scratch});
    mkvextract.waitForFinished(-1);
    QFile srt(scratch);
    srt.open(QIODevice::ReadOnly);
    return SrtDocument::parse(QString::fromUtf8(srt.readAll())).cues();
}

struct Fingerprint {
    QByteArray sha256;
    QDateTime modified;
    bool operator==(const Fingerprint&) const = default;
};

Fingerprint fingerprint(const QString& file) {
    QFile bytes(file);
    bytes.open(QIODevice::ReadOnly);
    return {QCryptographicHash::hash(bytes.readAll(), QCryptographicHash::Sha256),
            QFileInfo(file).lastModified()};
}

} // namespace

TEST_F(TranslationJobTest, WritesAVerifiedCopyWithTheEchoTrackAndReportsEveryStage) {
    QStringList lines = numberedLines(11);
    lines[6] = QStringLiteral("<i>Nobody translates me.</i>");
    const QString source = video(u"Movie.mkv"_s, {english(lines)});
    const Fingerprint before = fingerprint(source);
    ObservedEcho backend;
    backend.refused = u"Nobody"_s;
    JobOptions options;
    options.batchSize = 4;
    options.concurrency = 2;
    options.makeDefault = true;
    options.trackTitle = u"Castellano de prueba"_s;
    const JobResult result = run(source, options, backend);

    EXPECT_EQ(result.outputURL, path(u"Movie.es.mkv"_s));
    EXPECT_EQ(result.translatedCount, 10);
    EXPECT_EQ(result.failedLines, 1);
    EXPECT_EQ(result.warnings.last(), u"Lote de 1 sin traducir (faltan o sobran bloques "
                                      u"(esperados 1, recibidos 0))"_s);
    ASSERT_EQ(result.finalTracks.size(), 2);
    EXPECT_EQ(result.finalTracks[1].language, u"spa"_s);
    EXPECT_EQ(leftovers(), QStringList());

    // Stages in the order the job passes through them; the counts as the user reads them.
    QList<JobStage> stages;
    for (const JobUpdate& update : m_updates) {
        if (stages.isEmpty() || stages.last() != update.stage)
            stages.append(update.stage);
    }
    EXPECT_EQ(stages,
              (QList<JobStage>{JobStage::analyzing, JobStage::extracting, JobStage::checking,
                               JobStage::translating, JobStage::rebuilding, JobStage::muxing,
                               JobStage::verifying, JobStage::done}));
    EXPECT_EQ(details(JobStage::translating).first(), u"11 subtítulos"_s);
    EXPECT_EQ(details(JobStage::translating).last(), u"11 de 11  ·  1 sin traducir"_s);
    EXPECT_EQ(m_updates.last().detail, u"Movie.es.mkv"_s);
    EXPECT_EQ(m_updates.last().progress, 1.0);

    // mkvmerge reads the new track as asked, and its cues are the echo of the source's, at the
    // source's times; the refused line keeps its original wording.
    const QJsonArray tracks =
        MediaFixtures::mkvmergeIdentify(result.outputURL)[u"tracks"].toArray();
    const QJsonObject added = tracks.last().toObject()[u"properties"].toObject();
    EXPECT_EQ(added[u"language"].toString(), u"spa"_s);
    EXPECT_EQ(added[u"track_name"].toString(), u"Castellano de prueba"_s);
    EXPECT_TRUE(added[u"default_track"].toBool());
    const QList<SrtCue> original =
        cuesOf(result.outputURL, result.finalTracks[0].index, path(u"en.srt"_s));
    const QList<SrtCue> translated =
        cuesOf(result.outputURL, result.finalTracks[1].index, path(u"es.srt"_s));
    ASSERT_EQ(translated.size(), original.size());
    for (qsizetype i = 0; i < original.size(); ++i) {
        EXPECT_EQ(translated[i].start, original[i].start);
        EXPECT_EQ(translated[i].end, original[i].end);
        const QString expected = i == 6 ? original[i].text : u"[ES] "_s + original[i].text;
        EXPECT_EQ(translated[i].text, expected);
    }
    EXPECT_EQ(fingerprint(source), before) << "the source is only read";
}

TEST_F(TranslationJobTest, RefusesBeforeWritingAnything) {
    JobOptions options;
    ObservedEcho backend;
    try {
        run(path(u"missing.mkv"_s), options, backend);
        ADD_FAILURE() << "a missing video cannot be translated";
    } catch (const FileError& error) {
        EXPECT_EQ(error.description(),
                  u"No encuentro el video «"_s + path(u"missing.mkv"_s) + u"»."_s);
    }
    EXPECT_EQ(refusal(video(u"none.mkv"_s, {}), options),
              u"El archivo no tiene ninguna pista de subtítulos, no hay nada que traducir."_s);

    const QString images = video(u"images.mkv"_s, {track(SubtitleFormat::pgs, u"eng"_s),
                                                   track(SubtitleFormat::dvdSubtitle, u"eng"_s)});
    EXPECT_EQ(refusal(images, options),
              u"No hay subtítulos de texto para traducir. Las pistas disponibles son de imagen "
              u"(dvd_subtitle, hdmv_pgs_subtitle) y harían falta OCR."_s);
    options.forcedTrackIndex = MediaFixtures::tools().inspect(images).tracks.first().index;
    EXPECT_EQ(refusal(images, options),
              u"La pista #"_s + QString::number(*options.forcedTrackIndex) +
                  u" es de imagen (hdmv_pgs_subtitle) y no se puede traducir sin OCR."_s);

    // Spanish with forced-only Spanish is no reason to stop; full Spanish is, unless forced.
    options = {};
    const QString spanish = video(u"spanish.mkv"_s, {track(SubtitleFormat::srt, u"spa"_s)});
    EXPECT_EQ(refusal(spanish, options),
              u"El archivo ya tiene subtítulos en español. Activá «Traducir igual» si querés "
              u"hacerlo de todos modos."_s);
    options.force = true;
    EXPECT_EQ(refusal(spanish, options), u"No encontré ninguna pista de subtítulos en inglés. "
                                         u"Elegí una pista a mano en la lista."_s);

    const QString source = video(u"Movie.mkv"_s, {english(numberedLines(2))});
    for (const QString& output : {u"./Movie.mkv"_s, u"sub/../Movie.mkv"_s}) {
        options.outputURL = path(output);
        EXPECT_EQ(refusal(source, options),
                  u"La salida no puede ser el mismo archivo que la entrada."_s);
    }
}

TEST_F(TranslationJobTest, ACancelLeavesNothingBehindAndTheNextRunPaysOnlyForWhatWasMissing) {
    const QString source = video(u"Movie.mkv"_s, {english(numberedLines(12))});
    JobOptions options;
    options.batchSize = 5;
    options.concurrency = 1;
    std::stop_source cancel;
    ObservedEcho cancelled;
    cancelled.cancelOnCall = 2;
    cancelled.cancel = &cancel;
    EXPECT_THROW(run(source, options, cancelled, cancel.get_token()), Cancelled);
    EXPECT_EQ(leftovers(), QStringList());
    EXPECT_FALSE(QFile::exists(path(u"Movie.es.mkv"_s)));

    ObservedEcho resumed;
    const JobResult result = run(source, options, resumed);
    EXPECT_EQ(resumed.requestedTexts, 7) << "the first batch of five came from the cache";
    EXPECT_EQ(result.translatedCount, 12);
    EXPECT_EQ(details(JobStage::translating),
              (QStringList{u"12 subtítulos"_s, u"5 de 12  ·  5 en caché"_s,
                           u"10 de 12  ·  5 en caché"_s, u"12 de 12  ·  5 en caché"_s}));
}
