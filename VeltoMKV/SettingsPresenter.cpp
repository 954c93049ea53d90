#include "VeltoMKV/SettingsPresenter.h"

namespace velto {

SettingsPresenter::SettingsPresenter(QObject* parent)
    : QObject(parent) {}

void SettingsPresenter::setPresented(bool presented) {
    if (presented == m_presented)
        return;
    m_presented = presented;
    emit presentedChanged(presented);
}

} // namespace velto
