#include "VeltoMKV/state/Format.h"

#include <cmath>

#include <QtGlobal>

#include "VeltoKit/media/SubtitleTrack.h"
#include "VeltoKit/translation/TranslationProgress.h"

namespace velto::Format {

QString duration(std::optional<double> seconds) {
    if (!seconds || !(*seconds > 0))
        return QStringLiteral("—");
    const auto whole = static_cast<qint64>(*seconds);
    const qint64 hours = whole / 3600;
    const qint64 minutes = whole / 60 % 60;
    const qint64 rest = whole % 60;
    if (whole < 3600)
        return QStringLiteral("%1:%2").arg(whole / 60).arg(rest, 2, 10, QLatin1Char('0'));
    return QStringLiteral("%1:%2:%3")
        .arg(hours)
        .arg(minutes, 2, 10, QLatin1Char('0'))
        .arg(rest, 2, 10, QLatin1Char('0'));
}

QString elapsed(double seconds) {
    // printf's "%.0f" rounds halves to even; so does nearbyint under the default rounding mode.
    const auto rounded = [](double value) {
        return QString::number(std::nearbyint(value), 'f', 0);
    };
    if (seconds < 60)
        return rounded(seconds) + QStringLiteral(" s");
    return rounded(seconds / 60) + QStringLiteral(" min ") + rounded(std::fmod(seconds, 60)) +
           QStringLiteral(" s");
}

QString count(qint64 number) {
    const QString digits = QString::number(std::abs(number));
    QString grouped;
    for (qsizetype i = 0; i < digits.size(); ++i) {
        if (i > 0 && (digits.size() - i) % 3 == 0)
            grouped += u'.';
        grouped += digits[i];
    }
    return number < 0 ? u'-' + grouped : grouped;
}

QString counts(const TranslationProgress& progress) {
    QString text =
        count(progress.done) + QStringLiteral(" de ") + count(progress.total) +
        (progress.total == 1 ? QStringLiteral(" subtítulo") : QStringLiteral(" subtítulos"));
    if (progress.cached > 0)
        text += QStringLiteral(" · ") + count(progress.cached) + QStringLiteral(" en caché");
    if (progress.failed > 0)
        text += QStringLiteral(" · ") + count(progress.failed) + QStringLiteral(" sin traducir");
    return text;
}

QString percent(double fraction) {
    return QString::number(std::lround(qBound(0.0, fraction, 1.0) * 100)) + QStringLiteral(" %");
}

QString timeLeft(double seconds) {
    // A guess: whole minutes, and nothing finer than "under a minute" at the end.
    const long minutes = std::lround(seconds / 60);
    if (minutes < 1)
        return QStringLiteral("falta menos de un minuto");
    if (minutes == 1)
        return QStringLiteral("falta ~1 min");
    if (minutes < 60)
        return QStringLiteral("faltan ~") + QString::number(minutes) + QStringLiteral(" min");
    QString text =
        QStringLiteral("faltan ~") + QString::number(minutes / 60) + QStringLiteral(" h");
    if (minutes % 60 != 0)
        text += u' ' + QString::number(minutes % 60) + QStringLiteral(" min");
    return text;
}

QString track(const SubtitleTrack& subtitle) {
    QString text =
        u'#' + QString::number(subtitle.index) + QStringLiteral("  ") + subtitle.languageName();
    if (!subtitle.title.isEmpty())
        text += QStringLiteral("  «") + subtitle.title + u'»';
    QStringList notes;
    for (const QString& flag : subtitle.flags()) {
        if (flag != QStringLiteral("imagen"))
            notes << flag;
    }
    if (subtitle.isBitmap())
        notes << QStringLiteral("imagen, necesita OCR");
    else if (subtitle.frameCount)
        notes << count(*subtitle.frameCount) + QStringLiteral(" subt.");
    if (!notes.isEmpty())
        text += QStringLiteral("   ·   ") + notes.join(QStringLiteral(" · "));
    return text;
}

} // namespace velto::Format
