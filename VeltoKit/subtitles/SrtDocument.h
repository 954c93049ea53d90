#pragma once

#include "VeltoKit/subtitles/SubtitleDocument.h"

namespace velto {

// One SubRip cue. Numbers and timestamps are the exact text read, never converted: a render
// cannot round a time or swap its decimal separator.
struct SrtCue {
    QString number; // as written (spaces and tabs trimmed), or generated when the file had none
    QString start;
    QString end;
    QString extra; // what followed the end time (coordinates...), trailing whitespace removed
    QString text;  // the cue's lines joined with "\n", each as read
};

// A SubRip file as a list of cues. Renders with "\n" line ends and one blank line after each
// cue; numbering is kept exactly as read (from 0, repeated, skipped).
class SrtDocument : public SubtitleDocument {
public:
    explicit SrtDocument(QList<SrtCue> cues = {});

    // Throws SubtitleError::empty when no readable cue is found.
    static SrtDocument parse(const QString& text);

    const QList<SrtCue>& cues() const { return m_cues; }
    void setCues(QList<SrtCue> cues) { m_cues = std::move(cues); }

    QString fileExtension() const override;
    QString kind() const override;
    QStringList texts() const override;
    // A text cannot break the file: its line ends become "\n" and blank lines (which would end
    // the cue early) are dropped.
    void setTexts(const QStringList& texts) override;
    // [number, start, end, extra] per cue.
    QList<TimingSignature> timingSignature() const override;
    QString render() const override;
    std::unique_ptr<SubtitleDocument> clone() const override;

private:
    QList<SrtCue> m_cues;
};

} // namespace velto
