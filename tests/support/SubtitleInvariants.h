#pragma once

// What must hold for any document read from any text: the corpus tests check it on real files,
// the fuzz targets on generated ones. Each check returns what broke, or nullptr.
#include <memory>

#include "VeltoKit/subtitles/AssDocument.h"
#include "VeltoKit/subtitles/SrtDocument.h"
#include "VeltoKit/subtitles/StripSDH.h"
#include "VeltoKit/subtitles/SubtitleError.h"

namespace velto::SubtitleInvariants {

// nullptr when the parser refuses the text.
inline std::unique_ptr<SubtitleDocument> parsed(bool ass, const QString& text) {
    try {
        if (ass)
            return std::make_unique<AssDocument>(AssDocument::parse(text));
        return std::make_unique<SrtDocument>(SrtDocument::parse(text));
    } catch (const SubtitleError&) {
        return nullptr;
    }
}

// A script read without a Format: line rests on a guess that edits may change (see
// AssDocument::guessedFieldOrder); every other document must read back the same after edits.
inline bool readsBack(const SubtitleDocument& document, bool edited) {
    const auto* ass = dynamic_cast<const AssDocument*>(&document);
    if (edited && ass != nullptr && ass->guessedFieldOrder())
        return true;
    const auto again = parsed(ass != nullptr, document.render());
    return again && again->timingSignature() == document.timingSignature();
}

inline const char* brokenByLoading(SubtitleDocument& document, const QString& text) {
    const QString rendered = document.render();
    if (!readsBack(document, false))
        return "render → parse changed a timing";
    if (document.kind() == u"ass" && rendered != text)
        return "an ASS script did not render back to its own text";
    document.setTexts(document.texts());
    return document.render() == rendered ? nullptr : "texts did not survive their own round trip";
}

// Whatever a model sends back (other cues' texts, stray line breaks, timing lines, placeholders
// from the input itself) must never move a timing once the file is written and read again.
inline const char* brokenByTranslating(SubtitleDocument& document, const QString& noise) {
    const QStringList texts = document.texts();
    QStringList translated;
    for (qsizetype k = 0; k < texts.size(); ++k)
        translated.append(texts[(k * 7 + 3) % texts.size()] + noise.left(k % 5 * 16));
    document.setTexts(translated);
    return readsBack(document, true) ? nullptr : "a translation moved a timing";
}

inline const char* brokenByStripping(const SubtitleDocument& document, bool stripParens) {
    const QString before = document.render();
    StripSDH::Result result;
    try {
        result = StripSDH::apply(document, stripParens);
    } catch (const SubtitleError& error) {
        return error.kind() == SubtitleError::Kind::empty ? nullptr
                                                          : "apply failed other than empty";
    }
    if (document.render() != before)
        return "stripping changed its input";
    try {
        StripSDH::verifySubset(document, *result.document);
    } catch (const SubtitleError&) {
        return "stripping invented a timing";
    }
    return readsBack(*result.document, true) ? nullptr : "a stripped render changed a timing";
}

} // namespace velto::SubtitleInvariants
