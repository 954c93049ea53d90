#pragma once

#include <optional>

#include <QTimer>
#include <QWidget>

#include "VeltoKit/providers/Provider.h"

class QAction;
class QLabel;
class QLineEdit;

namespace velto {

class Preferences;

// "API key": a secret field loaded from and written to the credential store, one key per
// provider, with where the key is kept and where to get one. When no store is reachable it
// says so and takes no key, rather than pretend to keep it.
class KeyField : public QWidget {
    Q_OBJECT

public:
    // `unavailable` is the store's reason for not keeping keys, if it has one.
    KeyField(Preferences& preferences, std::optional<QString> unavailable, QWidget* parent);

    // Stores what was typed for the provider shown so far, then shows `provider`'s key.
    void show(const Provider& provider);
    // Stores what was typed and not stored yet.
    void commit();

private:
    // Shows the key in clear or hides it, with the icon of the opposite action.
    void setShown(bool shown);

    Preferences& m_preferences;
    std::optional<Provider> m_provider;
    QLineEdit* m_field = nullptr;
    QAction* m_reveal = nullptr;
    QLabel* m_source = nullptr;
    QTimer m_pause;
    bool m_dirty = false;
};

} // namespace velto
