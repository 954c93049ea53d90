// Loading SRT text: no crash, parse → render → parse keeps every timing, and no translation
// can break the rendered file.
#include "FuzzChecks.h"
#include "VeltoKit/subtitles/SubtitleError.h"

using namespace velto;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QString text = fuzz::decoded(data, size);
    std::optional<SrtDocument> document;
    try {
        document = SrtDocument::parse(text);
    } catch (const SubtitleError&) {
        return 0;
    }
    fuzz::requireStableTimings(*document, "SRT render changed a timing");
    const QString rendered = document->render();
    document->setTexts(document->texts());
    fuzz::require(document->render() == rendered, "SRT texts did not survive their round trip");
    fuzz::requireTranslationsCannotMoveTimings(*document, text);
    return 0;
}
