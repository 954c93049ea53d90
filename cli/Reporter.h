#pragma once

#include <QString>

namespace velto {
struct CostEstimate;
struct JobResult;
struct JobUpdate;
struct MediaInfo;
} // namespace velto

namespace velto::cli {

// Where the command line tells what happens to each video: a person at a terminal, a log, or
// a script reading JSON. Calls arrive one at a time.
class Reporter {
public:
    virtual ~Reporter() = default;

    virtual void started(const QString& video) = 0;
    virtual void update(const JobUpdate& update) = 0;
    virtual void tracks(const QString& video, const MediaInfo& info) = 0;
    // What translating the video will take, before anything is sent (or instead, with
    // --estimate).
    virtual void estimated(const QString& video, const CostEstimate& estimate) = 0;
    virtual void finished(const QString& video, const JobResult& result) = 0;
    // `hint` says what to do about it from the command line; may be empty.
    virtual void failed(const QString& video, const QString& message, const QString& hint) = 0;
    // Only the listing of its tracks was asked, and the video could not be read.
    virtual void listingFailed(const QString& video, const QString& message) = 0;
    virtual void cancelled(const QString& video) = 0;
};

} // namespace velto::cli
