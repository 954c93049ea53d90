#pragma once

#include <utility>

#include <QList>
#include <QString>
#include <QStringList>

namespace velto {

// How a run of the queue ended, for the closing lines and the notification.
struct QueueSummary {
    qsizetype done = 0;
    qsizetype skipped = 0;
    qsizetype failed = 0;
    qsizetype cancelled = 0;
    // Each finished video that had warnings: its file name and the warnings, in queue order.
    QList<std::pair<QString, QStringList>> warnings;

    // "6 videos listos · 3 omitidos · 1 falló": only the counts that are not zero.
    QString text() const;

    bool operator==(const QueueSummary&) const = default;
};

} // namespace velto
