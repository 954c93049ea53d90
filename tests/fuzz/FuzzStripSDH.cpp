// Stripping SDH, with and without parentheses, from whatever either parser reads: no crash, the
// input stays as it was, no timing is invented and the stripped document reads back the same.
#include "FuzzChecks.h"

using namespace velto;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QString text = fuzz::decoded(data, size);
    for (const bool ass : {false, true}) {
        if (const auto document = SubtitleInvariants::parsed(ass, text)) {
            for (const bool stripParens : {false, true})
                fuzz::require(SubtitleInvariants::brokenByStripping(*document, stripParens));
        }
    }
    return 0;
}
