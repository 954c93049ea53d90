#include "VeltoKit/translation/TranslationCache.h"

#include <algorithm>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRandomGenerator>
#include <QSaveFile>

#include "VeltoKit/core/OwnerOnly.h"

namespace velto {

namespace {

size_t processSeed() {
    static const size_t seed = static_cast<size_t>(QRandomGenerator::system()->generate64());
    return seed;
}

// An entry that names the run of the program that wrote the file. Shaped like a key ("0-"
// and a hash) so the file stays an object of strings, but no text can have it: a key that
// starts with "0-" hashes the scope alone, and no scope is this text.
const QString& runMark() {
    static const QString mark =
        QStringLiteral("0-") +
        QString::number(static_cast<qint64>(qHash(QStringLiteral("\u0001run"), processSeed())));
    return mark;
}

QHash<QString, QString> readEntries(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll());
    if (!document.isObject())
        return {};
    const QJsonObject object = document.object();
    // Written by an earlier run: its keys can never match again.
    if (!object.value(runMark()).isString())
        return {};
    QHash<QString, QString> entries;
    entries.reserve(object.size());
    for (auto it = object.begin(); it != object.end(); ++it) {
        if (!it.value().isString())
            return {};
        entries.insert(it.key(), it.value().toString());
    }
    entries.remove(runMark());
    return entries;
}

void appendJsonString(QByteArray& out, const QString& text) {
    static constexpr char hex[] = "0123456789abcdef";
    out += '"';
    for (const char c : text.toUtf8()) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            out += '\\';
            out += c;
        } else if (byte < 0x20) {
            out += "\\u00";
            out += hex[byte >> 4];
            out += hex[byte & 0xf];
        } else {
            out += c;
        }
    }
    out += '"';
}

QFileInfoList cacheFiles(const QString& directory) {
    QFileInfoList files = QDir(directory).entryInfoList(QDir::Files | QDir::Hidden | QDir::System);
    files.removeIf([](const QFileInfo& file) { return file.suffix() != u"json"; });
    return files;
}

} // namespace

TranslationCache::TranslationCache(QString path, QString scope)
    : m_path(std::move(path))
    , m_scope(std::move(scope))
    , m_entries(readEntries(m_path)) {}

QString TranslationCache::key(const QString& text) const {
    const auto hash = static_cast<qint64>(qHash(QString(m_scope + text), processSeed()));
    return QString::number(text.size()) + u'-' + QString::number(hash);
}

std::optional<QString> TranslationCache::get(const QString& key) const {
    std::lock_guard lock(m_mutex);
    const auto it = m_entries.constFind(key);
    if (it == m_entries.cend())
        return std::nullopt;
    return *it;
}

void TranslationCache::put(const QString& key, const QString& translation) {
    std::lock_guard lock(m_mutex);
    m_entries.insert(key, translation);
    m_dirty = true;
}

qsizetype TranslationCache::count() const {
    std::lock_guard lock(m_mutex);
    return m_entries.size();
}

void TranslationCache::flush() {
    std::lock_guard lock(m_mutex);
    flushLocked();
}

void TranslationCache::flushIfDue(Clock::time_point now) {
    std::lock_guard lock(m_mutex);
    if (!m_dirty || (m_lastFlush && now - *m_lastFlush < flushInterval))
        return;
    m_lastFlush = now;
    flushLocked();
}

// Called with the lock held across the write, so that no put lands between the snapshot and
// clearing m_dirty.
void TranslationCache::flushLocked() {
    if (m_dirty && write())
        m_dirty = false;
}

bool TranslationCache::write() const {
    // Written by hand: building a QJsonObject costs a sorted insert per entry.
    QStringList keys = m_entries.keys();
    keys.append(runMark());
    std::sort(keys.begin(), keys.end());
    QByteArray bytes;
    bytes.reserve(64 * keys.size());
    bytes += '{';
    for (const QString& key : keys) {
        if (bytes.size() > 1)
            bytes += ',';
        appendJsonString(bytes, key);
        bytes += ':';
        appendJsonString(bytes, m_entries.value(key));
    }
    bytes += '}';
    OwnerOnly::makeFolder(QFileInfo(m_path).absolutePath());
    QSaveFile file(m_path);
    if (!file.open(QIODevice::WriteOnly) || !OwnerOnly::closeFile(file))
        return false;
    return file.write(bytes) == bytes.size() && file.commit();
}

qint64 TranslationCache::diskBytes(const QString& directory) {
    qint64 bytes = 0;
    for (const QFileInfo& file : cacheFiles(directory))
        bytes += file.size();
    return bytes;
}

void TranslationCache::clearAll(const QString& directory) {
    for (const QFileInfo& file : cacheFiles(directory))
        QFile::remove(file.absoluteFilePath());
}

} // namespace velto
