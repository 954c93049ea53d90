// Every real-world file of the corpus (and every fixture of tests/data/subtitles) goes through
// the same checks, so a file added to either folder is covered without touching this code.
#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

#include "SubtitleTestSupport.h"
#include "VeltoKit/subtitles/AssDocument.h"
#include "VeltoKit/subtitles/SrtDocument.h"
#include "VeltoKit/subtitles/StripSDH.h"
#include "VeltoKit/subtitles/SubtitleError.h"
#include "VeltoKit/subtitles/Subtitles.h"
#include "support/SubtitleCorpus.h"

using namespace velto;
using namespace Qt::StringLiterals;

namespace {

const QString corpusDir = SubtitleCorpus::directory();

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

void checkFile(const SubtitleCorpus::File& file) {
    std::shared_ptr<SubtitleDocument> document;
    try {
        document = Subtitles::load(file.path, file.codec);
    } catch (const SubtitleError& error) {
        EXPECT_TRUE(file.holdsNoCue()) << "refused a file with cues: " << error.what();
        EXPECT_EQ(error.description(),
                  file.codec == u"ass" ? u"El archivo ASS no contiene líneas de diálogo."_s
                                       : u"El archivo SRT no contiene ningún subtítulo legible."_s);
        return;
    }
    EXPECT_EQ(reparse(*document)->timingSignature(), document->timingSignature());
    if (document->kind() == u"ass") {
        EXPECT_EQ(document->render(), file.text);
    }

    const QString rendered = document->render();
    document->setTexts(document->texts());
    EXPECT_EQ(document->render(), rendered) << "texts did not survive their own round trip";
    checkStripping(*document);
}

void checkEveryFile(const QString& root) {
    const QList<SubtitleCorpus::File> files = SubtitleCorpus::files(root);
    ASSERT_FALSE(files.isEmpty());
    for (const SubtitleCorpus::File& file : files) {
        SCOPED_TRACE(file.path.toStdString());
        checkFile(file);
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
