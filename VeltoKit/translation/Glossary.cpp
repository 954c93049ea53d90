#include "VeltoKit/translation/Glossary.h"

#include <algorithm>

#include <QDir>
#include <QFile>
#include <QSaveFile>

#include "VeltoKit/core/VeltoError.h"
#include "VeltoKit/subtitles/AssPlaceholders.h"

namespace velto {
namespace {

// A letter or digit right before or after a term means it is part of another word.
const QString before = QStringLiteral("(?<![\\p{L}\\p{N}])");
const QString after = QStringLiteral("(?![\\p{L}\\p{N}])");

QString quoted(const QString& path) {
    return QStringLiteral("«") + QDir::toNativeSeparators(path) + QStringLiteral("»");
}

QRegularExpression patternFor(QStringList terms, QRegularExpression::PatternOptions extra = {}) {
    // The longest first, so that "Walter White" wins over "Walter" where both fit.
    std::stable_sort(terms.begin(), terms.end(),
                     [](const QString& a, const QString& b) { return a.size() > b.size(); });
    for (QString& term : terms)
        term = QRegularExpression::escape(term);
    return QRegularExpression(before + u"(?:" + terms.join(u'|') + u')' + after,
                              QRegularExpression::UseUnicodePropertiesOption | extra);
}

} // namespace

Glossary::Glossary(QList<Entry> entries) {
    QStringList terms;
    for (Entry& entry : entries) {
        entry.term = entry.term.trimmed();
        entry.rendering = entry.rendering.trimmed();
        if (entry.term.isEmpty())
            continue;
        const auto same = std::find_if(m_entries.begin(), m_entries.end(),
                                       [&](const Entry& e) { return e.term == entry.term; });
        if (same != m_entries.end()) {
            same->rendering = entry.rendering;
            continue;
        }
        m_entries.append(entry);
        terms.append(entry.term);
    }
    if (!terms.isEmpty()) {
        m_pattern = patternFor(terms);
        m_pattern.optimize();
    }
}

QString Glossary::fileName() {
    return QStringLiteral("nombres.veltomkv.txt");
}

QString Glossary::pathIn(const QString& folder) {
    return QDir(folder).filePath(fileName());
}

Glossary Glossary::parse(const QString& text) {
    QList<Entry> entries;
    for (QStringView line : QStringView(text).split(u'\n')) {
        if (line.endsWith(u'\r'))
            line.chop(1);
        if (line.trimmed().isEmpty() || line.trimmed().startsWith(u'#'))
            continue;
        const qsizetype tab = line.indexOf(u'\t');
        entries.append(tab < 0 ? Entry{line.toString(), {}}
                               : Entry{line.left(tab).toString(), line.mid(tab + 1).toString()});
    }
    return Glossary(std::move(entries));
}

QString Glossary::text(const QStringList& comments) const {
    QString out;
    for (const QString& comment : comments)
        out += QStringLiteral("# ") + comment + u'\n';
    for (const Entry& entry : m_entries)
        out += entry.term + u'\t' + entry.rendering + u'\n';
    return out;
}

Glossary Glossary::load(const QString& path) {
    QFile file(path);
    if (!file.exists())
        return {};
    if (!file.open(QIODevice::ReadOnly))
        throw FileError(QStringLiteral("No pude leer la lista de nombres ") + quoted(path) +
                        QStringLiteral(": ") + file.errorString());
    return parse(QString::fromUtf8(file.readAll()));
}

void Glossary::save(const QString& path, const QStringList& comments) const {
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text(comments).toUtf8()) < 0 ||
        !file.commit())
        throw FileError(QStringLiteral("No pude guardar la lista de nombres ") + quoted(path) +
                        QStringLiteral(": ") + file.errorString());
}

QList<Glossary::Entry> Glossary::entriesIn(const QString& text) const {
    return entriesIn(QStringList{text});
}

QList<Glossary::Entry> Glossary::entriesIn(const QStringList& texts) const {
    if (m_entries.isEmpty())
        return {};
    QStringList found;
    for (const QString& text : texts) {
        for (const QRegularExpressionMatch& match : m_pattern.globalMatch(text))
            found.append(match.captured(0));
    }
    QList<Entry> entries;
    for (const Entry& entry : m_entries) {
        if (found.contains(entry.term))
            entries.append(entry);
    }
    return entries;
}

bool Glossary::isRespected(const Entry& entry, const QString& translation) {
    // Case is the model's to choose: a rendering may open a sentence.
    const QString wanted = entry.keeps() ? entry.term : entry.rendering;
    return patternFor({wanted}, QRegularExpression::CaseInsensitiveOption)
        .match(translation)
        .hasMatch();
}

Glossary::Shielded Glossary::shieldKept(const QString& text) const {
    static const QRegularExpression number(QStringLiteral("⟪(\\d+)⟫"));
    Shielded shielded{.text = {}, .terms = {}, .first = 1};
    for (const QRegularExpressionMatch& match : number.globalMatch(text))
        shielded.first = std::max(shielded.first, match.captured(1).toLongLong() + 1);
    if (m_entries.isEmpty()) {
        shielded.text = text;
        return shielded;
    }
    qsizetype copied = 0;
    for (const QRegularExpressionMatch& match : m_pattern.globalMatch(text)) {
        const QString term = match.captured(0);
        const bool kept = std::any_of(m_entries.cbegin(), m_entries.cend(),
                                      [&](const Entry& e) { return e.term == term && e.keeps(); });
        if (!kept)
            continue;
        qsizetype k = shielded.terms.indexOf(term);
        if (k < 0) {
            k = shielded.terms.size();
            shielded.terms.append(term);
        }
        shielded.text += QStringView(text).sliced(copied, match.capturedStart() - copied) +
                         AssPlaceholders::placeholder(shielded.first + k);
        copied = match.capturedEnd();
    }
    shielded.text += QStringView(text).sliced(copied);
    return shielded;
}

QString Glossary::unshield(const QString& answer, const Shielded& shielded) {
    QString restored = answer;
    for (qsizetype k = 0; k < shielded.terms.size(); ++k)
        restored.replace(AssPlaceholders::placeholder(shielded.first + k), shielded.terms[k]);
    return restored;
}

QString Glossary::promptAddition(const QList<Entry>& entries) {
    if (entries.isEmpty())
        return {};
    QString addition = QStringLiteral(
        "\n\nNOMBRES Y TÉRMINOS (respetalos en todos los bloques, aunque el resto de la frase "
        "cambie):");
    for (const Entry& entry : entries) {
        addition += QStringLiteral("\n- «") + entry.term +
                    (entry.keeps() ? QStringLiteral("»: se deja tal cual, sin traducir.")
                                   : QStringLiteral("»: se traduce «") + entry.rendering +
                                         QStringLiteral("»."));
    }
    return addition;
}

QString Glossary::keyPart(const QList<Entry>& entries) {
    QString part;
    for (const Entry& entry : entries)
        part += u'\x1f' + entry.term + u'\t' + entry.rendering;
    return part;
}

} // namespace velto
