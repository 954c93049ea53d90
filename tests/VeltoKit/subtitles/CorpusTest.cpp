// Every real-world file of the corpus (and every fixture of tests/data/subtitles) goes through
// the same checks, so a file added to either folder is covered without touching this code.
#include <QCryptographicHash>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <gtest/gtest.h>

#include "SubtitleTestSupport.h"
#include "VeltoKit/subtitles/AssDocument.h"
#include "VeltoKit/subtitles/SrtDocument.h"
#include "VeltoKit/subtitles/StripSDH.h"
#include "VeltoKit/subtitles/SubtitleError.h"
#include "VeltoKit/subtitles/Subtitles.h"

using namespace velto;
using namespace Qt::StringLiterals;

namespace {

const QString corpusDir = QStringLiteral(VELTO_CORPUS_DIR);

QStringList subtitleFiles(const QString& root) {
    static const QStringList notSubtitles = {u"SOURCES.md"_s, u"SHA256SUMS"_s, u".gitattributes"_s};
    QStringList files;
    QDirIterator it(root, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        if (!notSubtitles.contains(it.fileName()))
            files.append(path);
    }
    files.sort();
    return files;
}

// What the prober would report. Files without an extension are judged by their content.
QString codecFor(const QString& path, const QString& text) {
    const QString suffix = QFileInfo(path).suffix().toLower();
    if (suffix == u"ass" || suffix == u"ssa")
        return u"ass"_s;
    if (suffix == u"srt")
        return u"subrip"_s;
    static const QRegularExpression assLine(u"^\\s*(\\[script info\\]|dialogue:)"_s,
                                            QRegularExpression::CaseInsensitiveOption |
                                                QRegularExpression::MultilineOption);
    return assLine.match(text).hasMatch() ? u"ass"_s : u"subrip"_s;
}

// Judged independently of the parsers: a file "holds no cue" when it has no dialogue line (ASS)
// or no line shaped like an SRT timing line.
bool holdsNoCue(const QString& text, const QString& codec) {
    static const QRegularExpression dialogue(u"^[ \\t]*dialogue[ \\t]*:"_s,
                                             QRegularExpression::CaseInsensitiveOption |
                                                 QRegularExpression::MultilineOption);
    static const QRegularExpression timing(
        u"^\\s*-?\\d{1,3}:\\d\\d:\\d\\d[,.]\\d{1,3}\\s*-->\\s*-?\\d{1,3}:\\d\\d:\\d\\d[,.]\\d"_s,
        QRegularExpression::MultilineOption);
    return !(codec == u"ass"_s ? dialogue : timing).match(text).hasMatch();
}

std::unique_ptr<SubtitleDocument> reparse(const SubtitleDocument& document) {
    if (document.kind() == u"ass")
        return std::make_unique<AssDocument>(AssDocument::parse(document.render()));
    return std::make_unique<SrtDocument>(SrtDocument::parse(document.render()));
}

void checkStripping(const SubtitleDocument& document) {
    try {
        const StripSDH::Result result = StripSDH::apply(document, true);
        StripSDH::verifySubset(document, *result.document);
        const auto* ass = dynamic_cast<const AssDocument*>(&document);
        if (ass == nullptr || !ass->guessedFieldOrder()) {
            EXPECT_EQ(reparse(*result.document)->timingSignature(),
                      result.document->timingSignature());
        }
    } catch (const SubtitleError& error) {
        EXPECT_TRUE(error.description().startsWith(u"Al quitar las descripciones"_s))
            << error.what();
    }
}

void checkFile(const QString& path) {
    const QString text = Subtitles::readText(path);
    const QString codec = codecFor(path, text);
    std::shared_ptr<SubtitleDocument> document;
    try {
        document = Subtitles::load(path, codec);
    } catch (const SubtitleError& error) {
        EXPECT_TRUE(holdsNoCue(text, codec)) << "refused a file with cues: " << error.what();
        EXPECT_EQ(error.description(),
                  codec == u"ass" ? u"El archivo ASS no contiene líneas de diálogo."_s
                                  : u"El archivo SRT no contiene ningún subtítulo legible."_s);
        return;
    }
    EXPECT_EQ(reparse(*document)->timingSignature(), document->timingSignature());
    if (document->kind() == u"ass") {
        EXPECT_EQ(document->render(), text);
    }

    const QString rendered = document->render();
    document->setTexts(document->texts());
    EXPECT_EQ(document->render(), rendered) << "texts did not survive their own round trip";
    checkStripping(*document);
}

void checkEveryFile(const QString& root) {
    const QStringList files = subtitleFiles(root);
    ASSERT_FALSE(files.isEmpty());
    for (const QString& path : files) {
        SCOPED_TRACE(path.toStdString());
        checkFile(path);
    }
}

} // namespace

TEST(Corpus, MatchesItsChecksums) {
    QFile sums(corpusDir + u"/SHA256SUMS"_s);
    if (!sums.open(QIODevice::ReadOnly))
        GTEST_SKIP() << "no subtitle corpus at " << corpusDir.toStdString();
    int checked = 0;
    for (const QByteArray& line : sums.readAll().split('\n')) {
        if (line.trimmed().isEmpty())
            continue;
        const QByteArray expected = line.left(64);
        const QString name = QString::fromUtf8(line.mid(66));
        QFile file(corpusDir + u'/' + name);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
        EXPECT_EQ(QCryptographicHash::hash(file.readAll(), QCryptographicHash::Sha256).toHex(),
                  expected)
            << name.toStdString() << " changed: line ends or encoding rewritten?";
        ++checked;
    }
    EXPECT_GT(checked, 0);
}

TEST(Corpus, EveryFileLoadsOrHoldsNoCueAndRoundTrips) {
    if (!QFileInfo(corpusDir).isDir())
        GTEST_SKIP() << "no subtitle corpus at " << corpusDir.toStdString();
    checkEveryFile(corpusDir);
}

TEST(Corpus, EveryFixtureLoadsOrHoldsNoCueAndRoundTrips) {
    checkEveryFile(testDataFile(QString()));
}
