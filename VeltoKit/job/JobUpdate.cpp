#include "VeltoKit/job/JobUpdate.h"

#include <QFileInfo>

namespace velto {

QString label(const JobUpdate& update) {
    const QString container = QFileInfo(update.detail).suffix().toUpper();
    if (update.stage != JobStage::muxing || container.isEmpty() || container == u"MKV")
        return label(update.stage);
    return QStringLiteral("Escribiendo el ") + container;
}

} // namespace velto
