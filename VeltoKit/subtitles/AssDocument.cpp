#include "VeltoKit/subtitles/AssDocument.h"

#include <algorithm>

#include "VeltoKit/core/TextTrim.h"
#include "VeltoKit/subtitles/AssPlaceholders.h"
#include "VeltoKit/subtitles/SubtitleError.h"

namespace velto {

namespace {

bool isDataSection(const QString& section) {
    return section == u"[fonts]" || section == u"[graphics]";
}

bool isStylesSection(const QString& section) {
    return section.startsWith(u"[v4") && section.endsWith(u"styles]");
}

// Attached fonts and pictures are uuencoded with the characters '!' to '`', so a data line
// may well look like "[9:/?E]...". A header there must name a known section or hold a
// character (a lower-case letter, a space) that the encoding never produces.
bool isSectionHeader(QStringView line, const QString& currentSection) {
    if (line.size() < 2 || !line.startsWith(u'[') || !line.endsWith(u']'))
        return false;
    if (!isDataSection(currentSection))
        return true;
    static const QStringList known = {
        QStringLiteral("[script info]"),
        QStringLiteral("[v4 styles]"),
        QStringLiteral("[v4+ styles]"),
        QStringLiteral("[v4++ styles]"),
        QStringLiteral("[events]"),
        QStringLiteral("[fonts]"),
        QStringLiteral("[graphics]"),
        QStringLiteral("[aegisub project garbage]"),
        QStringLiteral("[aegisub extradata]"),
    };
    if (known.contains(line.toString().toLower()))
        return true;
    return std::any_of(line.begin(), line.end(), [](QChar c) { return c < u'!' || c > u'`'; });
}

struct KeyedLine {
    QString key;          // lower-cased, blanks trimmed
    qsizetype colon = -1; // -1: the line has no key
    qsizetype valueStart = 0;
};

KeyedLine keyOf(const QString& line) {
    KeyedLine out;
    out.colon = line.indexOf(u':');
    if (out.colon < 0)
        return out;
    out.key = trimSpacesAndTabs(QStringView(line).first(out.colon)).toLower();
    out.valueStart = out.colon + 1;
    while (out.valueStart < line.size() &&
           (line[out.valueStart] == u' ' || line[out.valueStart] == u'\t'))
        ++out.valueStart;
    return out;
}

bool isEventKey(const QString& key) {
    return key == u"dialogue" || key == u"comment";
}

// Takes the fields before Text from the left and those after it from the right, so the text
// keeps its commas wherever it sits. std::nullopt when the line has too few fields.
std::optional<QStringList> splitFields(QStringView value, qsizetype count, qsizetype textField) {
    QStringList fields;
    qsizetype from = 0;
    for (qsizetype k = 0; k < textField; ++k) {
        const qsizetype comma = value.indexOf(u',', from);
        if (comma < 0)
            return std::nullopt;
        fields.append(value.sliced(from, comma - from).toString());
        from = comma + 1;
    }
    QStringList after;
    qsizetype to = value.size();
    for (qsizetype k = textField + 1; k < count; ++k) {
        const qsizetype comma = value.first(to).lastIndexOf(u',');
        if (comma < from)
            return std::nullopt;
        after.prepend(value.sliced(comma + 1, to - comma - 1).toString());
        to = comma;
    }
    fields.append(value.sliced(from, to - from).toString());
    fields.append(after);
    return fields;
}

// Each line with its own ending, so that nothing about the file's line ends is lost.
QList<std::pair<QString, QString>> splitLines(QStringView text) {
    QList<std::pair<QString, QString>> lines;
    qsizetype start = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] != u'\r' && text[i] != u'\n')
            continue;
        const bool crlf = text[i] == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n';
        lines.append({text.sliced(start, i - start).toString(),
                      crlf ? QStringLiteral("\r\n") : QString(text[i])});
        if (crlf)
            ++i;
        start = i + 1;
    }
    lines.append({text.sliced(start).toString(), QString()});
    return lines;
}

// Whether each line may hold the events' Format: and event lines.
QList<bool> eventScope(const QStringList& lines) {
    QStringList sectionOf;
    QList<bool> isHeader;
    QString current;
    bool hasEvents = false;
    for (const QString& line : lines) {
        const QString text = trimSpacesAndTabs(line);
        const bool header = isSectionHeader(text, current);
        if (header) {
            current = text.toLower();
            hasEvents = hasEvents || current == u"[events]";
        }
        sectionOf.append(current);
        isHeader.append(header);
    }
    QList<bool> scope;
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const QString& section = sectionOf[i];
        scope.append(!isHeader[i] &&
                     (hasEvents ? section == u"[events]"
                                : !isStylesSection(section) && !isDataSection(section)));
    }
    return scope;
}

} // namespace

struct AssDocument::Format {
    QStringList names; // lower-cased
    qsizetype text = -1;
    qsizetype start = -1;
    qsizetype end = -1;

    static Format fromNames(QStringList names) {
        Format out;
        out.text = names.indexOf(QStringLiteral("text"));
        out.start = names.indexOf(QStringLiteral("start"));
        out.end = names.indexOf(QStringLiteral("end"));
        out.names = std::move(names);
        return out;
    }

    static Format fromLine(QStringView value) {
        QStringList names;
        for (QStringView name : value.split(u','))
            names.append(trimSpacesAndTabs(name).toLower());
        return fromNames(std::move(names));
    }

    // The standard order, cut to the shortest event line when every line is shorter.
    static Format implicit(const QStringList& values) {
        QStringList names = {QStringLiteral("layer"),   QStringLiteral("start"),
                             QStringLiteral("end"),     QStringLiteral("style"),
                             QStringLiteral("name"),    QStringLiteral("marginl"),
                             QStringLiteral("marginr"), QStringLiteral("marginv"),
                             QStringLiteral("effect"),  QStringLiteral("text")};
        if (!values.isEmpty() && values.first().startsWith(u"marked=", Qt::CaseInsensitive))
            names.first() = QStringLiteral("marked");
        qsizetype fewest = names.size();
        for (const QString& value : values) {
            const qsizetype fields = value.count(u',') + 1;
            if (fields >= 4) // below Layer, Start, End, Text it is no event line at all
                fewest = std::min(fewest, fields);
        }
        names.resize(fewest - 1);
        names.append(QStringLiteral("text"));
        return fromNames(std::move(names));
    }
};

bool AssDocument::Event::isDialogue() const {
    return kind.compare(u"dialogue", Qt::CaseInsensitive) == 0;
}

QString AssDocument::Event::line() const {
    return prefix + fields.join(u',');
}

AssDocument::AssDocument(QList<Line> lines)
    : m_lines(std::move(lines)) {}

std::optional<AssDocument::Event> AssDocument::readEvent(const Line& line, const Format& format) {
    if (format.text < 0)
        return std::nullopt;
    const KeyedLine keyed = keyOf(line.text);
    std::optional<QStringList> fields = splitFields(QStringView(line.text).sliced(keyed.valueStart),
                                                    format.names.size(), format.text);
    if (!fields)
        return std::nullopt;
    Event event;
    event.prefix = line.text.first(keyed.valueStart);
    event.kind = trimSpacesAndTabs(QStringView(line.text).first(keyed.colon));
    event.fields = std::move(*fields);
    event.textField = format.text;
    event.startField = format.start;
    event.endField = format.end;
    // ASS calls it Name; SSA scripts and some editors, Actor.
    event.actorField = format.names.indexOf(QStringLiteral("name"));
    if (event.actorField < 0)
        event.actorField = format.names.indexOf(QStringLiteral("actor"));
    return event;
}

AssDocument AssDocument::parse(const QString& source) {
    QList<Line> lines;
    QStringList lineTexts;
    for (auto& [line, ending] : splitLines(source)) {
        lineTexts.append(line);
        lines.append(Line{std::move(line), std::move(ending), std::nullopt});
    }
    const QList<bool> scope = eventScope(lineTexts);

    std::optional<Format> format;
    QList<qsizetype> unformatted;
    bool guessed = false;
    for (qsizetype i = 0; i < lines.size(); ++i) {
        if (!scope[i])
            continue;
        const KeyedLine keyed = keyOf(lines[i].text);
        if (keyed.key == u"format")
            format = Format::fromLine(QStringView(lines[i].text).sliced(keyed.valueStart));
        else if (isEventKey(keyed.key) && format)
            lines[i].event = readEvent(lines[i], *format);
        else if (isEventKey(keyed.key))
            unformatted.append(i);
    }
    if (!unformatted.isEmpty()) {
        QStringList values;
        for (qsizetype i : unformatted)
            values.append(lines[i].text.sliced(keyOf(lines[i].text).valueStart));
        const Format implicit = Format::implicit(values);
        for (qsizetype i : unformatted) {
            lines[i].event = readEvent(lines[i], implicit);
            guessed = guessed || lines[i].event.has_value();
        }
    }

    AssDocument document(std::move(lines));
    document.m_guessedFieldOrder = guessed;
    if (document.dialogueTexts().isEmpty())
        throw SubtitleError::empty(QStringLiteral("El archivo ASS no contiene líneas de diálogo."));
    return document;
}

QString AssDocument::fileExtension() const {
    return QStringLiteral(".ass");
}

QString AssDocument::kind() const {
    return QStringLiteral("ass");
}

QStringList AssDocument::dialogueTexts() const {
    QStringList out;
    for (const Line& line : m_lines) {
        if (line.event && line.event->isDialogue())
            out.append(line.event->fields[line.event->textField]);
    }
    return out;
}

QStringList AssDocument::actorNames() const {
    QStringList out;
    for (const Line& line : m_lines) {
        if (!line.event || !line.event->isDialogue())
            continue;
        const Event& event = *line.event;
        out.append(event.actorField >= 0 && event.actorField < event.fields.size()
                       ? event.fields[event.actorField].trimmed()
                       : QString());
    }
    return out;
}

QStringList AssDocument::texts() const {
    QStringList out = dialogueTexts();
    for (QString& text : out)
        text = AssPlaceholders::protect(text).text;
    return out;
}

void AssDocument::setTexts(const QStringList& texts) {
    const QStringList current = dialogueTexts();
    if (texts.size() != current.size())
        throw SubtitleError::textCountMismatch(current.size(), texts.size());
    QList<std::optional<QString>> restored;
    restored.reserve(texts.size());
    for (qsizetype k = 0; k < texts.size(); ++k)
        restored.append(
            AssPlaceholders::restore(texts[k], AssPlaceholders::protect(current[k]).tokens));
    rewriteDialogues(restored);
}

void AssDocument::rewriteDialogues(const QList<std::optional<QString>>& texts) {
    const qsizetype dialogues = dialogueTexts().size();
    if (texts.size() != dialogues)
        throw SubtitleError::textCountMismatch(dialogues, texts.size());
    QList<Line> lines;
    lines.reserve(m_lines.size());
    qsizetype k = 0;
    for (Line& line : m_lines) {
        if (!line.event || !line.event->isDialogue()) {
            lines.append(std::move(line));
            continue;
        }
        const std::optional<QString>& text = texts[k++];
        if (!text)
            continue;
        QString single = *text;
        single.replace(QStringLiteral("\r\n"), QStringLiteral("\\N"));
        single.replace(u'\r', QStringLiteral("\\N"));
        single.replace(u'\n', QStringLiteral("\\N"));
        line.event->fields[line.event->textField] = single;
        line.text = line.event->line();
        lines.append(std::move(line));
    }
    m_lines = std::move(lines);
}

QList<TimingSignature> AssDocument::timingSignature() const {
    QList<TimingSignature> out;
    for (const Line& line : m_lines) {
        if (!line.event)
            continue;
        const Event& event = *line.event;
        auto field = [&](qsizetype index) { return index >= 0 ? event.fields[index] : QString(); };
        TimingSignature signature{{event.kind, field(event.startField), field(event.endField)}};
        for (qsizetype i = 0; i < event.fields.size(); ++i) {
            if (i != event.textField && i != event.startField && i != event.endField)
                signature.fields.append(event.fields[i]);
        }
        out.append(std::move(signature));
    }
    return out;
}

QString AssDocument::render() const {
    qsizetype size = 0;
    for (const Line& line : m_lines)
        size += line.text.size() + line.ending.size();
    QString out;
    out.reserve(size);
    for (const Line& line : m_lines)
        out += line.text + line.ending;
    return out;
}

std::unique_ptr<SubtitleDocument> AssDocument::clone() const {
    return std::make_unique<AssDocument>(*this);
}

} // namespace velto
