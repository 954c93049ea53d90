#include "VeltoKit/core/Secrets.h"

#include <algorithm>
#include <mutex>

#include <QList>
#include <QRegularExpression>

namespace velto::Secrets {

namespace {

// Hosted services' keys are far longer; a local server's placeholder key ("clave", "local") is
// no secret, and hiding it would garble the program's own sentences that contain the word.
constexpr qsizetype shortestKey = 8;
const QString marker = QStringLiteral("[clave oculta]");

struct Remembered {
    std::mutex mutex;
    QList<QString> keys;
};

Remembered& remembered() {
    static Remembered keys;
    return keys;
}

// Header or parameter names that carry a key, then what separates the name from its value.
const QRegularExpression& headerValue() {
    static const QRegularExpression pattern(
        QStringLiteral("((?:proxy-)?authorization|x-api-key|x-goog-api-key|api[-_]?key|"
                       "access[-_]?token)(\"?'?\\s*[:=]\\s*\"?'?)((?:bearer|basic|token)\\s+)?+"
                       "(?!\\[)[^\\s\"',;&}<]*[^\\s\"',;&}<.:)]"),
        QRegularExpression::CaseInsensitiveOption);
    return pattern;
}

// A key in a web address's query, as Gemini's own examples put it.
const QRegularExpression& queryKey() {
    static const QRegularExpression pattern(
        QStringLiteral("([?&](?:key|token|api[-_]?key|access[-_]?token)=)(?!\\[)[^&\\s\"'#<]*[^&"
                       "\\s\"'#<.,;:)]"),
        QRegularExpression::CaseInsensitiveOption);
    return pattern;
}

// What the keys of Anthropic, OpenAI and Google look like, wherever they appear.
const QRegularExpression& keyShape() {
    static const QRegularExpression pattern(
        QStringLiteral("\\b(?:sk-[A-Za-z0-9_\\-]{16,}|AIza[A-Za-z0-9_\\-]{30,})"));
    return pattern;
}

} // namespace

void remember(const QString& key) {
    if (key.size() < shortestKey)
        return;
    Remembered& all = remembered();
    std::lock_guard lock(all.mutex);
    if (!all.keys.contains(key)) {
        all.keys.append(key);
        // The longest first, so a key that contains another is hidden whole.
        std::sort(all.keys.begin(), all.keys.end(),
                  [](const QString& a, const QString& b) { return a.size() > b.size(); });
    }
}

QString redacted(QString text) {
    {
        Remembered& all = remembered();
        std::lock_guard lock(all.mutex);
        for (const QString& key : all.keys)
            text.replace(key, marker);
    }
    text.replace(headerValue(), QStringLiteral("\\1\\2\\3") + marker);
    text.replace(queryKey(), QStringLiteral("\\1") + marker);
    text.replace(keyShape(), marker);
    return text;
}

} // namespace velto::Secrets
