#include "cli/HumanReporter.h"

#include <cmath>

#include <QFileInfo>
#include <QLocale>

#include "VeltoKit/job/CostEstimate.h"
#include "VeltoKit/job/JobResult.h"
#include "VeltoKit/job/JobUpdate.h"
#include "VeltoKit/job/UsageSummary.h"
#include "VeltoKit/media/MediaInfo.h"
#include "cli/TerminalText.h"

namespace velto::cli {
namespace {

QString elapsedText(qint64 milliseconds) {
    const qint64 seconds = milliseconds / 1000;
    return QString::number(seconds / 60) + u':' +
           QStringLiteral("%1").arg(seconds % 60, 2, 10, QLatin1Char('0'));
}

QString bar(double fraction) {
    constexpr int width = 24;
    const int filled = static_cast<int>(std::lround(std::clamp(fraction, 0.0, 1.0) * width));
    return u'[' + QString(filled, u'#') + QString(width - filled, u'-') + u']';
}

QString secondsText(double seconds) {
    return QLocale(QLocale::Spanish, QLocale::Argentina).toString(seconds, 'f', 1) +
           QStringLiteral(" s");
}

} // namespace

HumanReporter::HumanReporter(bool redraw, FILE* out, FILE* err)
    : m_redraw(redraw)
    , m_out(out)
    , m_err(err) {
    if (m_redraw)
        m_ticker = std::jthread([this](std::stop_token stop) { tick(stop); });
}

void HumanReporter::tick(std::stop_token stop) {
    std::unique_lock lock(m_mutex);
    while (!m_wake.wait_for(lock, stop, std::chrono::seconds(1), [] { return false; }) &&
           !stop.stop_requested()) {
        if (m_current)
            drawStatusLine();
    }
}

void HumanReporter::started(const QString&) {
    const std::lock_guard lock(m_mutex);
    m_clock.start();
    m_lastPlainLine.clear();
}

void HumanReporter::update(const JobUpdate& update) {
    if (update.estimate)
        estimated(QString(), *update.estimate);
    const std::lock_guard lock(m_mutex);
    if (m_redraw) {
        m_current = update;
        drawStatusLine();
        return;
    }
    const QString line = statusLine(update);
    if (line != m_lastPlainLine) {
        writeText(m_out, line + u'\n');
        m_lastPlainLine = line;
    }
}

void HumanReporter::drawStatusLine() {
    writeText(m_out, QStringLiteral("\r\x1b[2K") + fitToTerminal(statusLine(*m_current), m_out));
    std::fflush(m_out);
}

QString HumanReporter::statusLine(const JobUpdate& update) const {
    QStringList pieces{label(update)};
    if (m_redraw && update.progress && update.stage != JobStage::done)
        pieces.append(bar(*update.progress));
    if (!update.detail.isEmpty())
        pieces.append(update.detail);
    if (m_redraw)
        pieces.append(elapsedText(m_clock.elapsed()));
    return pieces.join(QStringLiteral("  "));
}

void HumanReporter::clearStatusLine() {
    if (m_current) {
        writeText(m_out, QStringLiteral("\r\x1b[2K"));
        m_current.reset();
    }
}

void HumanReporter::tracks(const QString& video, const MediaInfo& info) {
    const std::lock_guard lock(m_mutex);
    QString text = video + u'\n';
    for (const SubtitleTrack& track : info.tracks)
        text += QStringLiteral("  ") + track.summary() + u'\n';
    if (info.tracks.isEmpty())
        text += QStringLiteral("  (sin pistas de subtítulos)\n");
    writeText(m_out, text);
}

void HumanReporter::estimated(const QString& video, const CostEstimate& estimate) {
    const std::lock_guard lock(m_mutex);
    clearStatusLine();
    // Without a video it comes before that video's translation, whose name is already shown.
    QString text = video.isEmpty() ? QStringLiteral("Estimación: ")
                                   : QFileInfo(video).fileName() + QStringLiteral(": ");
    text += estimate.summary() + u'\n';
    if (estimate.requests > 0) {
        static const QLocale spanish(QLocale::Spanish, QLocale::Argentina);
        text += QStringLiteral("  ") + spanish.toString(estimate.inputTokens) +
                QStringLiteral(" tokens de entrada y ") +
                spanish.toString(estimate.outputTokensLow) + u'\x2013' +
                spanish.toString(estimate.outputTokensHigh) + QStringLiteral(" de salida");
        if (estimate.cached > 0)
            text += QStringLiteral(" (") + spanish.toString(estimate.cached) +
                    QStringLiteral(" subtítulos ya están en la caché)");
        text += u'\n';
    }
    writeText(m_out, text);
}

void HumanReporter::finished(const QString& video, const JobResult& result) {
    const std::lock_guard lock(m_mutex);
    clearStatusLine();
    QStringList counts{QString::number(result.translatedCount) +
                       (result.translatedCount == 1 ? QStringLiteral(" subtítulo traducido")
                                                    : QStringLiteral(" subtítulos traducidos"))};
    if (result.removedDescriptions > 0)
        counts.append(QString::number(result.removedDescriptions) +
                      QStringLiteral(" descripciones quitadas"));
    if (result.failedLines > 0)
        counts.append(QString::number(result.failedLines) + QStringLiteral(" sin traducir"));
    counts.append(secondsText(result.elapsed));
    if (result.requests > 0)
        counts.append(UsageSummary::of(result));

    // A track partly in the source language is no "Listo".
    const QString outcome = result.failedLines > 0
                                ? QStringLiteral("Escrito con subtítulos sin traducir: ")
                                : QStringLiteral("Listo: ");
    QString text =
        outcome + QFileInfo(video).fileName() + QStringLiteral(" → ") + result.written() + u'\n';
    if (!result.outputURL.isEmpty() && result.sidecarURL)
        text += QStringLiteral("  Subtítulo aparte: ") + *result.sidecarURL + u'\n';
    text += QStringLiteral("  ") + counts.join(QStringLiteral("  ·  ")) + u'\n';
    if (!result.warnings.isEmpty()) {
        text += QStringLiteral("  Advertencias:\n");
        for (const QString& warning : result.warnings)
            text += QStringLiteral("    ") + warning + u'\n';
    }
    // Only a new video has tracks to show.
    if (!result.outputURL.isEmpty()) {
        text += QStringLiteral("  Pistas de subtítulos del resultado:\n");
        for (const SubtitleTrack& track : result.finalTracks)
            text += QStringLiteral("    ") + track.summary() + u'\n';
    }
    writeText(m_out, text);
}

void HumanReporter::failed(const QString& video, const QString& message, const QString& hint) {
    const std::lock_guard lock(m_mutex);
    clearStatusLine();
    std::fflush(m_out);
    QString text = QStringLiteral("No se pudo traducir ") + QFileInfo(video).fileName() +
                   QStringLiteral(":\n") + message + u'\n';
    if (!hint.isEmpty())
        text += hint + u'\n';
    writeText(m_err, text);
}

void HumanReporter::listingFailed(const QString& video, const QString& message) {
    const std::lock_guard lock(m_mutex);
    writeText(m_err, QStringLiteral("No pude leer las pistas de ") + QFileInfo(video).fileName() +
                         QStringLiteral(":\n") + message + u'\n');
}

void HumanReporter::cancelled(const QString& video) {
    const std::lock_guard lock(m_mutex);
    clearStatusLine();
    std::fflush(m_out);
    // The reader left on purpose (`| head`): nothing to tell.
    if (outputClosed())
        return;
    writeText(m_err, QStringLiteral("Cancelado: ") + QFileInfo(video).fileName() +
                         QStringLiteral(". No quedó ningún archivo a medio escribir.\n"));
}

} // namespace velto::cli
