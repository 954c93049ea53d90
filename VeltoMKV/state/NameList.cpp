#include "VeltoMKV/state/NameList.h"

#include <QFile>
#include <QFileInfo>

#include "VeltoKit/core/VeltoError.h"
#include "VeltoKit/job/SourceNames.h"
#include "VeltoMKV/state/AppState.h"

namespace velto {
namespace {

// A name the user took out stays out when the next episode finds it again: the file keeps it
// as a comment, which the job and the CLI skip.
const QString droppedMark = QStringLiteral("quitado: ");

QStringList droppedIn(const QString& path) {
    QFile file(path);
    QStringList dropped;
    if (!file.open(QIODevice::ReadOnly))
        return dropped;
    const QString prefix = QStringLiteral("# ") + droppedMark;
    for (const QString& line : QString::fromUtf8(file.readAll()).split(u'\n')) {
        if (line.startsWith(prefix))
            dropped.append(line.mid(prefix.size()).trimmed());
    }
    return dropped;
}

} // namespace

NameList::NameList(AppState& state, QObject* parent)
    : QObject(parent)
    , m_state(state)
    , m_tasks(this) {
    connect(&m_state, &AppState::infoChanged, this, &NameList::reload);
    connect(&m_state, &AppState::selectedTrackChanged, this, &NameList::reload);
    reload();
}

void NameList::reload() {
    if (m_task)
        m_tasks.stop(*m_task);
    m_task.reset();
    const quint64 run = ++m_run;
    m_entries.clear();
    m_dropped.clear();
    m_problem.clear();
    m_searching = false;
    m_filePath.reset();
    const std::optional<QString>& source = m_state.sourceURL();
    if (!source || !m_state.info() || !m_state.tools()) {
        publish();
        return;
    }
    m_filePath = Glossary::pathIn(QFileInfo(*source).absolutePath());
    try {
        m_entries = Glossary::load(*m_filePath).entries();
        m_dropped = droppedIn(*m_filePath);
    } catch (const VeltoError& error) {
        m_problem = error.description();
    }
    m_searching = true;
    JobOptions options;
    options.forcedTrackIndex = m_state.selectedTrack();
    m_task =
        m_tasks.launch([this, run, tools = *m_state.tools(), source = *source,
                        info = *m_state.info(), options](std::stop_token stop, const auto& post) {
            QStringList names;
            try {
                names = SourceNames::of(tools, source, info, options, std::move(stop));
            } catch (const std::exception&) {
                // No names to offer; the list still takes the user's own.
            }
            post([this, run, names] {
                if (run == m_run)
                    found(names);
            });
        });
    publish();
}

void NameList::found(const QStringList& names) {
    m_task.reset();
    m_searching = false;
    for (const QString& name : names) {
        if (indexOf(name) < 0 && !m_dropped.contains(name))
            m_entries.append({name, {}});
    }
    publish();
}

void NameList::publish() {
    // Nothing found and no file: the job reads the folder's file itself, as the CLI does.
    m_state.setGlossary(m_filePath ? std::optional(Glossary(m_entries)) : std::nullopt);
    emit changed();
}

void NameList::save() {
    m_problem.clear();
    if (m_filePath) {
        QStringList comments = {
            QStringLiteral("Nombres y términos de VeltoMKV: uno por línea; después de un "
                           "tabulador, cómo va en español."),
            QStringLiteral("Sin nada después del tabulador, se deja tal cual.")};
        for (const QString& term : m_dropped)
            comments.append(droppedMark + term);
        try {
            Glossary(m_entries).save(*m_filePath, comments);
        } catch (const VeltoError& error) {
            m_problem = error.description();
        }
    }
    publish();
}

qsizetype NameList::indexOf(const QString& term) const {
    for (qsizetype k = 0; k < m_entries.size(); ++k) {
        if (m_entries[k].term == term)
            return k;
    }
    return -1;
}

bool NameList::add(const QString& term, const QString& rendering) {
    if (term.trimmed().isEmpty() || indexOf(term.trimmed()) >= 0)
        return false;
    m_entries.append({term.trimmed(), rendering.trimmed()});
    m_dropped.removeAll(term.trimmed());
    save();
    return true;
}

bool NameList::rename(const QString& term, const QString& newTerm) {
    const qsizetype k = indexOf(term);
    if (k < 0 || newTerm.trimmed().isEmpty() || indexOf(newTerm.trimmed()) >= 0)
        return false;
    m_entries[k].term = newTerm.trimmed();
    m_dropped.removeAll(newTerm.trimmed());
    save();
    return true;
}

void NameList::setRendering(const QString& term, const QString& rendering) {
    const qsizetype k = indexOf(term);
    if (k < 0 || m_entries[k].rendering == rendering.trimmed())
        return;
    m_entries[k].rendering = rendering.trimmed();
    save();
}

void NameList::remove(const QString& term) {
    const qsizetype k = indexOf(term);
    if (k < 0)
        return;
    m_dropped.append(m_entries.takeAt(k).term);
    save();
}

} // namespace velto
