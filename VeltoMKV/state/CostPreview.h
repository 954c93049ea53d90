#pragma once

#include <optional>

#include <QObject>
#include <QString>
#include <QStringList>

#include "VeltoKit/job/CostEstimate.h"
#include "VeltoKit/job/JobOptions.h"
#include "VeltoKit/media/FFmpeg.h"
#include "VeltoMKV/state/BackgroundTasks.h"

namespace velto {

// The estimate shown before a job starts. Reading the cues means extracting the track, so it runs
// in the background once per video, track and stripping; a change of engine, price, batch size or
// the like only counts again. Lives on the main thread.
class CostPreview : public QObject {
    Q_OBJECT

public:
    explicit CostPreview(QObject* parent = nullptr);

    // Estimates the job `options` would run on `source`; nothing when `tools` are absent.
    void update(const std::optional<FFmpeg>& tools, const QString& source,
                const JobOptions& options);
    void clear();

    // Absent while reading, when cleared, or when the track could not be read.
    const std::optional<CostEstimate>& estimate() const { return m_estimate; }
    bool isReading() const { return m_reading.has_value(); }

signals:
    void changed();

private:
    // What decides which cues a job sends.
    struct Source {
        QString path;
        std::optional<qint64> track;
        QString language;
        bool stripSDH = false;
        bool stripParens = false;
        bool operator==(const Source&) const = default;
    };

    void recount();

    BackgroundTasks m_tasks;
    std::optional<BackgroundTasks::Id> m_reading;
    quint64 m_generation = 0;
    std::optional<Source> m_source;
    QStringList m_texts;
    QString m_languageName;
    JobOptions m_options;
    std::optional<CostEstimate> m_estimate;
};

} // namespace velto
