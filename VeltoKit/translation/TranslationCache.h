#pragma once

#include <mutex>
#include <optional>

#include <QHash>
#include <QString>

namespace velto {

// Translations already paid for, so a run that was cancelled or failed can start again without
// asking the engine twice. Backed by one JSON object (key -> translation) per source video.
//
// Keys mix a per-process random seed into the hash on purpose: hits only happen within one run
// of the application, and entries left by earlier runs are loaded but never match.
//
// Shared by the concurrent batches of a translation; every access to the entries is locked.
class TranslationCache {
public:
    // Reads `path` when it holds a JSON object of strings; anything else starts empty, silently.
    TranslationCache(QString path, QString scope);

    QString path() const { return m_path; }
    QString scope() const { return m_scope; }

    // "<length of text>-<signed 64-bit hash of scope + text>"
    QString key(const QString& text) const;
    std::optional<QString> get(const QString& key) const;
    void put(const QString& key, const QString& translation);
    qsizetype count() const;
    // Rewrites the file atomically when something changed. A failed write is not an error: the
    // entries stay marked as changed and the next flush tries again.
    void flush();

    // Removes every file of `directory` whose extension is exactly "json"; skips what it cannot.
    static void clearAll(const QString& directory);

private:
    bool write() const;

    const QString m_path;
    const QString m_scope;
    QHash<QString, QString> m_entries;
    mutable std::mutex m_mutex;
    bool m_dirty = false;
};

} // namespace velto
