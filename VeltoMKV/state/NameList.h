#pragma once

#include <optional>

#include <QObject>
#include <QString>
#include <QStringList>

#include "VeltoKit/translation/Glossary.h"
#include "VeltoMKV/state/BackgroundTasks.h"

namespace velto {

class AppState;

// The list «Nombres y términos» of the open video: the entries of the list file in its folder,
// then the names its chosen track holds that the file does not have yet, kept as they are.
// The names are read on a background task as soon as the file is ready; every edit rewrites the
// folder's file whole, atomically, so the other episodes of the season share it. What the list
// holds is what the next job translates with.
class NameList : public QObject {
    Q_OBJECT

public:
    explicit NameList(AppState& state, QObject* parent = nullptr);

    const QList<Glossary::Entry>& entries() const { return m_entries; }
    // Still reading the track's names.
    bool isSearching() const { return m_searching; }
    // The folder's file, or none while no video is open.
    const std::optional<QString>& filePath() const { return m_filePath; }
    // Why the file could not be read or written; empty when all went well.
    const QString& problem() const { return m_problem; }

    // Each returns false, changing nothing, for an empty term or one the list already has.
    bool add(const QString& term, const QString& rendering = {});
    bool rename(const QString& term, const QString& newTerm);
    void setRendering(const QString& term, const QString& rendering);
    // The term is not offered again for the videos of that folder.
    void remove(const QString& term);

signals:
    void changed();

private:
    void reload();
    void found(const QStringList& names);
    void publish();
    void save();
    qsizetype indexOf(const QString& term) const;

    AppState& m_state;
    QList<Glossary::Entry> m_entries;
    // Names the user removed: not offered again.
    QStringList m_dropped;
    std::optional<QString> m_filePath;
    QString m_problem;
    bool m_searching = false;
    std::optional<BackgroundTasks::Id> m_task;
    quint64 m_run = 0;
    BackgroundTasks m_tasks;
};

} // namespace velto
