#include "VeltoKit/job/JobOutputs.h"

#include "VeltoKit/core/EnumTable.h"

namespace velto {
namespace {

struct OutputsTexts {
    JobOutputs value;
    QStringView raw;
};

constexpr OutputsTexts outputs[] = {
    {JobOutputs::video, u"video"},
    {JobOutputs::videoAndSidecar, u"videoAndSidecar"},
    {JobOutputs::sidecarOnly, u"sidecarOnly"},
};
static_assert(EnumTable::coversInOrder(outputs, JobOutputs::sidecarOnly));

} // namespace

const std::array<JobOutputs, 3>& allJobOutputs() {
    static constexpr std::array<JobOutputs, 3> all = EnumTable::values(outputs);
    return all;
}

QString rawValue(JobOutputs value) {
    return EnumTable::row(outputs, value).raw.toString();
}

std::optional<JobOutputs> jobOutputsFromRawValue(QStringView raw) {
    return EnumTable::find(outputs, &OutputsTexts::raw, raw);
}

bool writesVideo(JobOutputs value) {
    return value != JobOutputs::sidecarOnly;
}

bool writesSidecar(JobOutputs value) {
    return value != JobOutputs::video;
}

} // namespace velto
