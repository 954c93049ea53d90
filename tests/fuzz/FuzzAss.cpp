// Loading ASS/SSA text: no crash, the render is the text itself, parse → render → parse keeps
// every timing, placeholders come back exactly, and no translation can break the script.
#include "FuzzChecks.h"
#include "VeltoKit/subtitles/SubtitleError.h"

using namespace velto;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QString text = fuzz::decoded(data, size);
    std::optional<AssDocument> document;
    try {
        document = AssDocument::parse(text);
    } catch (const SubtitleError&) {
        return 0;
    }
    fuzz::require(document->render() == text, "ASS render differs from the text parsed");
    fuzz::requireStableTimings(*document, "ASS render changed a timing");
    document->setTexts(document->texts());
    fuzz::require(document->render() == text, "ASS placeholders did not come back exactly");
    fuzz::requireTranslationsCannotMoveTimings(*document, text);
    return 0;
}
