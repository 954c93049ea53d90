#pragma once

#include <optional>

#include <QWidget>

#include "VeltoKit/providers/Provider.h"

class QComboBox;
class QLabel;
class QLineEdit;

namespace velto {

class Preferences;

// The address of a provider whose address the user may change: a text field bound to that
// provider's own stored address, and its presets as one-click choices with their hints;
// "Personalizado" stands for an address of one's own.
class AddressField : public QWidget {
    Q_OBJECT

public:
    AddressField(Preferences& preferences, QWidget* parent);

    void show(const Provider& provider);

private:
    void choosePreset(int index);
    // Marks the preset the address is, or "Personalizado", and shows its hint.
    void markPreset();

    Preferences& m_preferences;
    std::optional<Provider> m_provider;
    // The user chose "Personalizado": an address of their own.
    bool m_ownAddress = false;
    QLineEdit* m_field = nullptr;
    QComboBox* m_presets = nullptr;
    QLabel* m_hint = nullptr;
};

} // namespace velto
