#pragma once

#include <cstdio>

#include <QJsonObject>

#include "cli/Reporter.h"

namespace velto::cli {

// For scripts: one compact JSON object per line on standard output, each with a "type"
// ("update", "tracks", "quality", "result", "error", "cancelled") and the video it is about.
// Failure messages also go to standard error, as they stand.
class JsonReporter : public Reporter {
public:
    explicit JsonReporter(FILE* out = stdout, FILE* err = stderr);

    void started(const QString& video) override;
    void update(const JobUpdate& update) override;
    void tracks(const QString& video, const MediaInfo& info) override;
    void estimated(const QString& video, const CostEstimate& estimate) override;
    void finished(const QString& video, const JobResult& result) override;
    void failed(const QString& video, const QString& message, const QString& hint) override;
    void listingFailed(const QString& video, const QString& message) override;
    void cancelled(const QString& video) override;

private:
    void print(const QString& type, QJsonObject object);

    FILE* m_out;
    FILE* m_err;
    QString m_video;
};

} // namespace velto::cli
