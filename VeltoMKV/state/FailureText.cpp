#include "VeltoMKV/state/FailureText.h"

#include "VeltoKit/core/VeltoError.h"
#include "VeltoKit/job/JobError.h"
#include "VeltoKit/platform/PlatformText.h"

namespace velto {
namespace {

QString remedy(const JobError& refusal) {
    switch (refusal.kind()) {
    case JobError::Kind::alreadySpanish:
        return QStringLiteral("Activá «Traducir igual» si querés hacerlo de todos modos.");
    case JobError::Kind::noSourceTrack:
        return refusal.trackIndex() ? QStringLiteral("Elegí una pista de la lista.")
                                    : QStringLiteral("Elegí una pista a mano en la lista.");
    default:
        return {};
    }
}

} // namespace

QString failureText(const std::exception& error) {
    const QString sentence = describeFailure(error);
    const auto* refusal = dynamic_cast<const JobError*>(&error);
    const QString way = refusal ? remedy(*refusal) : QString();
    return way.isEmpty() ? sentence : sentence + u' ' + way;
}

QString missingFfmpegText() {
    return QStringLiteral("No encuentro ffmpeg. Instalalo con «") + PlatformText::installFfmpeg() +
           QStringLiteral("» o indicá su carpeta en Ajustes.");
}

} // namespace velto
