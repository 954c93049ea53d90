#pragma once

#include <QWidget>

class QDoubleSpinBox;
class QLabel;
class QPushButton;

namespace velto {

class Preferences;

// The settings' part about money: what the chosen model costs per million tokens (the known price,
// or the user's own for a model the program does not know or a service that charges otherwise),
// and the most one video may spend.
class CostSettings : public QWidget {
    Q_OBJECT

public:
    explicit CostSettings(Preferences& preferences, QWidget* parent = nullptr);

    QDoubleSpinBox* inputPrice() const { return m_input; }
    QDoubleSpinBox* outputPrice() const { return m_output; }
    QDoubleSpinBox* cap() const { return m_cap; }

private:
    void refresh();
    void storePrice();
    QDoubleSpinBox* dollars(const QString& name);

    Preferences& m_preferences;
    QWidget* m_prices;
    QLabel* m_heading;
    QLabel* m_note;
    QDoubleSpinBox* m_input;
    QDoubleSpinBox* m_output;
    QPushButton* m_reset;
    QDoubleSpinBox* m_cap;
};

} // namespace velto
