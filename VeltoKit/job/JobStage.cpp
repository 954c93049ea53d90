#include "VeltoKit/job/JobStage.h"

#include "VeltoKit/core/EnumTable.h"

namespace velto {
namespace {

struct StageTexts {
    JobStage value;
    QStringView label;
    QStringView caseName;
};

constexpr StageTexts stages[] = {
    {JobStage::analyzing, u"Analizando el archivo", u"analyzing"},
    {JobStage::extracting, u"Extrayendo la pista", u"extracting"},
    {JobStage::checking, u"Verificando el motor de traducción", u"checking"},
    {JobStage::translating, u"Traduciendo", u"translating"},
    {JobStage::rebuilding, u"Reconstruyendo el subtítulo", u"rebuilding"},
    {JobStage::stripping, u"Quitando descripciones de sonido", u"stripping"},
    {JobStage::muxing, u"Escribiendo el MKV", u"muxing"},
    {JobStage::verifying, u"Verificando el resultado", u"verifying"},
    {JobStage::done, u"Listo", u"done"},
    {JobStage::reviewing, u"Consultando de nuevo lo que volvió mal", u"reviewing"},
};
static_assert(EnumTable::coversInOrder(stages, JobStage::reviewing));

} // namespace

QString label(JobStage stage) {
    return EnumTable::row(stages, stage).label.toString();
}

QString caseName(JobStage stage) {
    return EnumTable::row(stages, stage).caseName.toString();
}

} // namespace velto
