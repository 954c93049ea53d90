#pragma once

#include <QList>
#include <QString>

namespace velto {

// One cue as the engine answered it: the text sent and the text that came back.
struct TranslatedLine {
    QString source;
    QString translation;

    friend bool operator==(const TranslatedLine&, const TranslatedLine&) = default;
};

// How far a translation is. done counts every text that is settled: translated, taken from
// the cache, or given up (failed, kept in its original wording).
struct TranslationProgress {
    qint64 total = 0;
    qint64 done = 0;
    qint64 cached = 0;
    qint64 failed = 0;
    // The cues whose translations came with this report, in document order; empty when the
    // report only counts (cache hits, lines given up, the totals announced).
    QList<TranslatedLine> arrived{};

    // done / total; 0 for an empty document.
    double fraction() const;

    // Two reports are alike when they count alike; the lines that came with one are news, not
    // a state.
    friend bool operator==(const TranslationProgress& a, const TranslationProgress& b) {
        return a.total == b.total && a.done == b.done && a.cached == b.cached &&
               a.failed == b.failed;
    }
};

} // namespace velto
