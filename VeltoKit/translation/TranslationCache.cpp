#include "VeltoKit/translation/TranslationCache.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRandomGenerator>
#include <QSaveFile>

namespace velto {

namespace {

size_t processSeed() {
    static const size_t seed = static_cast<size_t>(QRandomGenerator::system()->generate64());
    return seed;
}

QHash<QString, QString> readEntries(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll());
    if (!document.isObject())
        return {};
    const QJsonObject object = document.object();
    QHash<QString, QString> entries;
    entries.reserve(object.size());
    for (auto it = object.begin(); it != object.end(); ++it) {
        if (!it.value().isString())
            return {};
        entries.insert(it.key(), it.value().toString());
    }
    return entries;
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
    // Held across the write so that no put lands between the snapshot and clearing m_dirty.
    std::lock_guard lock(m_mutex);
    if (m_dirty && write())
        m_dirty = false;
}

bool TranslationCache::write() const {
    QJsonObject object;
    for (auto it = m_entries.cbegin(); it != m_entries.cend(); ++it)
        object.insert(it.key(), it.value());
    QDir().mkpath(QFileInfo(m_path).absolutePath());
    QSaveFile file(m_path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    const QByteArray bytes = QJsonDocument(object).toJson(QJsonDocument::Compact);
    return file.write(bytes) == bytes.size() && file.commit();
}

void TranslationCache::clearAll(const QString& directory) {
    QDir dir(directory);
    const QFileInfoList files = dir.entryInfoList(QDir::Files | QDir::Hidden | QDir::System);
    for (const QFileInfo& file : files) {
        if (file.suffix() == u"json")
            QFile::remove(file.absoluteFilePath());
    }
}

} // namespace velto
