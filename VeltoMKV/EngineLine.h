#pragma once

#include <QWidget>

class QBoxLayout;
class QLabel;
class QPushButton;

namespace velto {

class Preferences;
class SettingsPresenter;

// The chosen engine in one line, or what it still lacks beside a warning, with the button that
// opens the settings: wherever it shows, the engine is one click away. Narrow, the button goes
// under the text.
class EngineLine : public QWidget {
    Q_OBJECT

public:
    EngineLine(Preferences& preferences, SettingsPresenter& settings, QWidget* parent = nullptr);

    QLabel* text() const { return m_text; }
    QPushButton* chooseButton() const { return m_choose; }
    bool isReady() const { return m_ready; }
    // Asks the engine again (its key may have changed elsewhere).
    void refresh();

    QSize minimumSizeHint() const override;

signals:
    // Shown anew, after a change of the engine or on request.
    void refreshed();

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    Preferences& m_preferences;
    QBoxLayout* m_layout;
    QLabel* m_icon;
    QLabel* m_text;
    QPushButton* m_choose;
    bool m_ready = false;
};

} // namespace velto
