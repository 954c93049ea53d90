#include "VeltoMKV/AnalyzingView.h"

#include <QLabel>
#include <QVBoxLayout>

#include "VeltoMKV/Look.h"
#include "VeltoMKV/Spinner.h"

namespace velto {

AnalyzingView::AnalyzingView(QWidget* parent)
    : QWidget(parent) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(Look::rowGap);
    layout->addStretch(1);
    layout->addWidget(new Spinner(this), 0, Qt::AlignHCenter);
    auto* text = new QLabel(QStringLiteral("Analizando el archivo…"), this);
    layout->addWidget(text, 0, Qt::AlignHCenter);
    layout->addStretch(1);
}

} // namespace velto
