#include "VeltoMKV/state/CostPreview.h"

#include <exception>

#include "VeltoKit/job/SourceTexts.h"

namespace velto {

CostPreview::CostPreview(QObject* parent)
    : QObject(parent)
    , m_tasks(this) {}

void CostPreview::update(const std::optional<FFmpeg>& tools, const QString& source,
                         const JobOptions& options) {
    m_options = options;
    const Source wanted{source, options.forcedTrackIndex, options.sourceLanguage, options.stripSDH,
                        options.stripSDH && options.stripParens};
    if (m_source == wanted) {
        if (!m_reading)
            recount();
        return;
    }
    clear();
    if (!tools)
        return;
    m_source = wanted;
    const quint64 reading = ++m_generation;
    m_reading = m_tasks.launch(
        [this, tools = *tools, source, options, reading](std::stop_token stop, const auto& post) {
            std::optional<SourceTexts> read;
            try {
                read = SourceTexts::read(tools, source, options, stop);
            } catch (const std::exception&) {
                // Stopped, or a track that cannot be read: no estimate; the job will say why.
            }
            post([this, read, reading] {
                if (reading != m_generation)
                    return;
                m_reading.reset();
                if (read) {
                    m_texts = read->texts;
                    m_languageName = read->languageName;
                }
                recount();
            });
        });
    emit changed();
}

void CostPreview::clear() {
    if (m_reading)
        m_tasks.stop(*m_reading);
    m_reading.reset();
    // Whatever the stopped reading still posts is stale.
    ++m_generation;
    m_source.reset();
    m_texts.clear();
    m_estimate.reset();
    emit changed();
}

void CostPreview::recount() {
    m_estimate.reset();
    if (!m_texts.isEmpty())
        m_estimate = CostEstimate::make(m_texts, m_options, m_languageName);
    emit changed();
}

} // namespace velto
