// Stripping SDH: no crash, the input document stays as it was, stripping never invents a timing,
// and the stripped document renders to a file that reads back with the same timings.
// The first byte chooses the parser (bit 0) and whether parentheses go too (bit 1).
#include "FuzzChecks.h"
#include "VeltoKit/subtitles/StripSDH.h"
#include "VeltoKit/subtitles/SubtitleError.h"

using namespace velto;

namespace {

std::unique_ptr<SubtitleDocument> parse(bool ass, const QString& text) {
    if (ass)
        return std::make_unique<AssDocument>(AssDocument::parse(text));
    return std::make_unique<SrtDocument>(SrtDocument::parse(text));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0)
        return 0;
    const bool ass = (data[0] & 1) != 0;
    const bool stripParens = (data[0] & 2) != 0;
    std::unique_ptr<SubtitleDocument> document;
    try {
        document = parse(ass, fuzz::decoded(data + 1, size - 1));
    } catch (const SubtitleError&) {
        return 0;
    }
    const QString before = document->render();
    StripSDH::Result result;
    try {
        result = StripSDH::apply(*document, stripParens);
    } catch (const SubtitleError& error) {
        fuzz::require(error.kind() == SubtitleError::Kind::empty, "apply failed other than empty");
        return 0;
    }
    fuzz::require(document->render() == before, "stripping changed its input");
    fuzz::require(result.removed >= 0 && result.removed <= document->timingSignature().size(),
                  "removed counts more cues than there were");
    try {
        StripSDH::verifySubset(*document, *result.document);
    } catch (const SubtitleError&) {
        fuzz::require(false, "stripping invented a timing");
    }
    fuzz::require(!result.document->texts().isEmpty(), "stripping left nothing without failing");
    if (fuzz::editsMustReadBack(*document))
        fuzz::requireStableTimings(*result.document, "stripped render changed a timing");
    return 0;
}
