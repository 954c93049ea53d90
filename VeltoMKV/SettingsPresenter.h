#pragma once

#include <QObject>

namespace velto {

// Whether the settings ("Motor de traducción") are shown, so that any button or menu can open
// them and the main window alone decides how to present them.
class SettingsPresenter : public QObject {
    Q_OBJECT

public:
    explicit SettingsPresenter(QObject* parent = nullptr);

    bool isPresented() const { return m_presented; }
    void setPresented(bool presented);
    void present() { setPresented(true); }

signals:
    void presentedChanged(bool presented);

private:
    bool m_presented = false;
};

} // namespace velto
