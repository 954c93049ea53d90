#pragma once

#include <QtGlobal>

namespace velto {

// How far a translation is. done counts every text that is settled: translated, taken from
// the cache, or given up (failed, kept in its original wording).
struct TranslationProgress {
    qint64 total = 0;
    qint64 done = 0;
    qint64 cached = 0;
    qint64 failed = 0;

    // done / total; 0 for an empty document.
    double fraction() const;

    friend bool operator==(const TranslationProgress&, const TranslationProgress&) = default;
};

} // namespace velto
