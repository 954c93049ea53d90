#pragma once

#include <memory>

#include <QString>

namespace velto {

class SubtitleDocument;

namespace Subtitles {

// The whole file as text (see TextDecoder::decode). Throws FileError naming the file.
QString readText(const QString& path);

// ASS when the codec is "ass" or "ssa" or the file name ends in .ass or .ssa (any case),
// SRT otherwise. Throws FileError, or the parser's SubtitleError unchanged.
std::shared_ptr<SubtitleDocument> load(const QString& path, const QString& codec);

// What a written file is for: one that is kept is flushed to the disk before it appears under its
// name; a scratch file in a private folder, read back and thrown away within the run, needs
// neither, and the flush would cost a noticeable part of a whole job.
enum class Keeping { kept, scratch };

// The rendered document as UTF-8 without a byte-order mark. A kept file appears under its name
// only once it is complete (QSaveFile). Throws FileError naming the file.
void write(const SubtitleDocument& document, const QString& path, Keeping keeping = Keeping::kept);

// Returns when both documents have equal timing signatures; otherwise throws
// SubtitleError::timingChanged naming the first difference only.
void verifyTiming(const SubtitleDocument& source, const SubtitleDocument& rebuilt);

} // namespace Subtitles
} // namespace velto
