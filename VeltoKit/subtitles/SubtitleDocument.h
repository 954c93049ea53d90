#pragma once

#include <memory>

#include <QList>
#include <QString>
#include <QStringList>

#include "VeltoKit/subtitles/TimingSignature.h"

namespace velto {

// One parsed subtitle file. Documents are shared (std::shared_ptr) and mutated in place by the
// job; clone() gives the untouched copy the job verifies the rebuilt one against.
class SubtitleDocument {
public:
    virtual ~SubtitleDocument() = default;

    // The suffix the rendered text is written with, dot included: ".srt", ".ass".
    virtual QString fileExtension() const = 0;
    // "srt" or "ass".
    virtual QString kind() const = 0;
    // The translatable text of every cue or dialogue event, in document order.
    virtual QStringList texts() const = 0;
    // Same count and order as texts(); on a count mismatch throws SubtitleError::empty and
    // leaves the document as it was.
    virtual void setTexts(const QStringList& texts) = 0;
    // One entry per cue or event (dialogues and comments alike), in document order.
    virtual QList<TimingSignature> timingSignature() const = 0;
    virtual QString render() const = 0;
    virtual std::unique_ptr<SubtitleDocument> clone() const = 0;

protected:
    SubtitleDocument() = default;
    SubtitleDocument(const SubtitleDocument&) = default;
    SubtitleDocument& operator=(const SubtitleDocument&) = default;
};

} // namespace velto
