#pragma once

#include <optional>

#include "VeltoKit/subtitles/SubtitleDocument.h"

namespace velto {

// An ASS/SSA script kept line by line. Every line keeps its own line end ("\r\n", "\n", a lone
// "\r", or none on the last line), so render() gives back exactly the text parsed, with only the
// Text field of events changed; anything not understood ([Fonts], [Graphics], Aegisub sections,
// comments, garbage) passes through untouched.
//
// Events are the Dialogue: and Comment: lines of [Events] (anywhere outside styles and attached
// data when the file has no [Events] header), split by that section's Format: line. The Text
// field may hold commas and need not be the last field. Without a Format: line the standard order
// is assumed (ASS v4+, or SSA v4 when the first field reads Marked=...), cut to the field count
// of the shortest event line when every line is shorter, as events cut out of a Matroska track
// are. An event line with too few fields is kept verbatim and is not an event.
//
// Only dialogue events are translatable. texts() hides override blocks and \N \n \h behind
// numbered placeholders (AssPlaceholders), and setTexts() puts them back.
class AssDocument : public SubtitleDocument {
public:
    // Throws SubtitleError::empty when there is no dialogue event.
    static AssDocument parse(const QString& text);

    QString fileExtension() const override;
    QString kind() const override;
    QStringList texts() const override;
    void setTexts(const QStringList& texts) override;
    // Per event: [kind as written, Start, End, then every other field but Text in Format order].
    // Start and End come first so that fields 2 and 3 are the times for every document kind;
    // a Format without them gives empty strings there.
    QList<TimingSignature> timingSignature() const override;
    QString render() const override;
    std::unique_ptr<SubtitleDocument> clone() const override;

    // True when some event was read without a Format: line. The guess rests on the shortest
    // event line, so such a script may read back differently once a text gains a comma or an
    // event is removed; ffmpeg always writes the Format: line, so extracted tracks never guess.
    bool guessedFieldOrder() const { return m_guessedFieldOrder; }

    // The Text field of every dialogue event exactly as written, override blocks included.
    QStringList dialogueTexts() const;
    // The Name (or Actor) field of every dialogue event, trimmed; empty where there is none.
    QStringList actorNames() const;
    // Replaces the Text field of every dialogue event; std::nullopt removes the event's line.
    // Line breaks in a text become \N, since a real one would end the line.
    void rewriteDialogues(const QList<std::optional<QString>>& texts);

private:
    struct Event {
        QString prefix;     // the key, its colon and the blanks after it, as written
        QString kind;       // "Dialogue", "Comment"... as written
        QStringList fields; // raw, comma-separated values in Format order
        qsizetype textField = 0;
        qsizetype startField = -1;
        qsizetype endField = -1;
        qsizetype actorField = -1;

        bool isDialogue() const;
        QString line() const;
    };
    struct Line {
        QString text;
        QString ending;
        std::optional<Event> event;
    };
    struct Format;

    explicit AssDocument(QList<Line> lines);
    static std::optional<Event> readEvent(const Line& line, const Format& format);

    QList<Line> m_lines;
    bool m_guessedFieldOrder = false;
};

} // namespace velto
