#pragma once

#include <QString>

namespace velto {

// How the added subtitle track is labelled.
struct MuxOptions {
    QString language = QStringLiteral("spa"); // ISO 639-2 code written into the track
    QString title;
    bool makeDefault = false; // the only default subtitle track afterwards
    bool forced = false;      // only applied when makeDefault is false
};

} // namespace velto
