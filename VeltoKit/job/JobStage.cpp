#include "VeltoKit/job/JobStage.h"

namespace velto {

const std::array<JobStage, 9>& allJobStages() {
    static const std::array<JobStage, 9> stages = {
        JobStage::analyzing,   JobStage::extracting, JobStage::checking,
        JobStage::translating, JobStage::rebuilding, JobStage::stripping,
        JobStage::muxing,      JobStage::verifying,  JobStage::done,
    };
    return stages;
}

QString label(JobStage stage) {
    switch (stage) {
    case JobStage::analyzing:
        return QStringLiteral("Analizando el archivo");
    case JobStage::extracting:
        return QStringLiteral("Extrayendo la pista");
    case JobStage::checking:
        return QStringLiteral("Verificando el motor de traducción");
    case JobStage::translating:
        return QStringLiteral("Traduciendo");
    case JobStage::rebuilding:
        return QStringLiteral("Reconstruyendo el subtítulo");
    case JobStage::stripping:
        return QStringLiteral("Quitando descripciones de sonido");
    case JobStage::muxing:
        return QStringLiteral("Escribiendo el MKV");
    case JobStage::verifying:
        return QStringLiteral("Verificando el resultado");
    case JobStage::done:
        break;
    }
    return QStringLiteral("Listo");
}

std::optional<JobStage> jobStageFromLabel(QStringView text) {
    for (JobStage stage : allJobStages()) {
        if (label(stage) == text)
            return stage;
    }
    return std::nullopt;
}

QString caseName(JobStage stage) {
    static const std::array<QString, 9> names = {
        QStringLiteral("analyzing"),   QStringLiteral("extracting"), QStringLiteral("checking"),
        QStringLiteral("translating"), QStringLiteral("rebuilding"), QStringLiteral("stripping"),
        QStringLiteral("muxing"),      QStringLiteral("verifying"),  QStringLiteral("done"),
    };
    return names[static_cast<size_t>(stage)];
}

} // namespace velto
