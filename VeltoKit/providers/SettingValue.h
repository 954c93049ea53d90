#pragma once

#include <QSettings>
#include <QString>
#include <QVariant>

namespace velto {

// One stored setting: its key, its type and its default, read and written in one place, so
// that no caller spells a key or repeats a default.
template <typename T>
class SettingValue {
public:
    SettingValue(QSettings& store, QString key, T fallback)
        : m_store(store)
        , m_key(std::move(key))
        , m_fallback(std::move(fallback)) {}

    T get() const {
        const QVariant stored = m_store.value(m_key);
        return stored.isValid() && stored.canConvert<T>() ? stored.value<T>() : m_fallback;
    }

    // False when `value` was stored already, so a caller signals only real changes.
    bool set(const T& value) {
        if (m_store.contains(m_key) && get() == value)
            return false;
        m_store.setValue(m_key, QVariant::fromValue(value));
        return true;
    }

    const QString& key() const { return m_key; }

private:
    QSettings& m_store;
    QString m_key;
    T m_fallback;
};

} // namespace velto
