#pragma once

#include <chrono>
#include <mutex>
#include <optional>

#include <QHash>
#include <QString>

namespace velto {

// Translations already paid for, so that a retry in the same run of the program (after a cancel
// or a failure) does not ask the engine twice. Backed by one JSON object (key -> translation) per
// source video.
//
// Keys mix a per-process random seed into the hash on purpose: hits only happen within one run
// of the program. The file therefore only keeps this run's entries: one written by an earlier
// run is read as empty and replaced at the next flush, so it never grows across runs.
//
// Shared by the concurrent batches of a translation; every access to the entries is locked.
class TranslationCache {
public:
    using Clock = std::chrono::steady_clock;
    // The most often flushIfDue writes: the file is rewritten whole, so writing after every
    // batch would cost (entries x batches).
    static constexpr Clock::duration flushInterval = std::chrono::seconds(5);

    // Reads `path` when this run of the program wrote it and it holds a JSON object of strings;
    // anything else starts empty, silently.
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
    // flush(), unless the last one was less than flushInterval before `now`.
    void flushIfDue(Clock::time_point now);

    // The cache files of `directory` are those whose extension is exactly "json": what is
    // measured is what clearing removes.
    static qint64 diskBytes(const QString& directory);
    // Removes them; skips what it cannot.
    static void clearAll(const QString& directory);

private:
    void flushLocked();
    bool write() const;

    const QString m_path;
    const QString m_scope;
    QHash<QString, QString> m_entries;
    mutable std::mutex m_mutex;
    bool m_dirty = false;
    std::optional<Clock::time_point> m_lastFlush;
};

} // namespace velto
