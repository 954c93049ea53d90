// Every real-world file of the corpus and every fixture of tests/data/subtitles goes through the
// same checks, so a file added to either folder is covered without touching this code.
#include "SubtitleTestSupport.h"
#include "support/SubtitleCorpus.h"
#include "support/SubtitleInvariants.h"

using namespace velto;
using namespace Qt::StringLiterals;

TEST(Corpus, EveryFileLoadsOrHoldsNoCueAndRoundTrips) {
    QList<SubtitleCorpus::File> files = SubtitleCorpus::files(testDataFile(QString()));
    ASSERT_FALSE(files.isEmpty());
    // The shared corpus may be missing on a machine without it: the fixtures still run.
    files += SubtitleCorpus::files(SubtitleCorpus::directory());
    for (const SubtitleCorpus::File& file : files) {
        SCOPED_TRACE(file.path.toStdString());
        std::shared_ptr<SubtitleDocument> document;
        try {
            document = Subtitles::load(file.path, file.codec);
        } catch (const SubtitleError& error) {
            EXPECT_TRUE(file.holdsNoCue()) << "refused a file with cues: " << error.what();
            EXPECT_EQ(error.description(),
                      file.codec == u"ass"
                          ? u"El archivo ASS no contiene líneas de diálogo."_s
                          : u"El archivo SRT no contiene ningún subtítulo legible."_s);
            continue;
        }
        for (const bool stripParens : {false, true})
            EXPECT_EQ(SubtitleInvariants::brokenByStripping(*document, stripParens), nullptr);
        EXPECT_EQ(SubtitleInvariants::brokenByLoading(*document, file.text), nullptr);
        EXPECT_EQ(SubtitleInvariants::brokenByTranslating(*document, file.text), nullptr);
    }
}
