#pragma once

#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <optional>
#include <thread>

#include <QElapsedTimer>

#include "VeltoKit/job/JobUpdate.h"
#include "cli/Reporter.h"

namespace velto::cli {

// For people: on a terminal one status line that redraws (stage, bar, counts, time), and
// whose clock keeps ticking through a long mux; into a pipe or a file one plain line per change.
// Results go to standard output, failures to standard error with their message as it stands.
class HumanReporter : public Reporter {
public:
    // redraw: the standard output is a terminal.
    explicit HumanReporter(bool redraw, FILE* out = stdout, FILE* err = stderr);

    void started(const QString& video) override;
    void update(const JobUpdate& update) override;
    void tracks(const QString& video, const MediaInfo& info) override;
    void estimated(const QString& video, const CostEstimate& estimate) override;
    void finished(const QString& video, const JobResult& result) override;
    void failed(const QString& video, const QString& message, const QString& hint) override;
    void listingFailed(const QString& video, const QString& message) override;
    void cancelled(const QString& video) override;

private:
    QString statusLine(const JobUpdate& update) const;
    void drawStatusLine();
    void clearStatusLine();
    void tick(std::stop_token stop);

    bool m_redraw;
    FILE* m_out;
    FILE* m_err;
    QElapsedTimer m_clock;
    QString m_lastPlainLine;
    std::mutex m_mutex;
    // What the status line shows while a job runs; the ticker redraws it every second.
    std::optional<JobUpdate> m_current;
    std::condition_variable_any m_wake;
    std::jthread m_ticker;
};

} // namespace velto::cli
