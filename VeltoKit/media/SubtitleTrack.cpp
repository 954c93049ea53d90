#include "VeltoKit/media/SubtitleTrack.h"

#include "VeltoKit/media/Languages.h"

namespace velto {

bool SubtitleTrack::isTextCodec(const QString& codec) {
    static const QStringList text = {
        QStringLiteral("subrip"),     QStringLiteral("srt"),      QStringLiteral("ass"),
        QStringLiteral("ssa"),        QStringLiteral("webvtt"),   QStringLiteral("mov_text"),
        QStringLiteral("text"),       QStringLiteral("microdvd"), QStringLiteral("subviewer"),
        QStringLiteral("subviewer1"), QStringLiteral("sami"),     QStringLiteral("realtext"),
        QStringLiteral("stl"),        QStringLiteral("jacosub"),  QStringLiteral("mpl2"),
        QStringLiteral("pjs"),        QStringLiteral("vplayer"),
    };
    return text.contains(codec);
}

bool SubtitleTrack::isBitmapCodec(const QString& codec) {
    static const QStringList images = {
        QStringLiteral("hdmv_pgs_subtitle"), QStringLiteral("dvd_subtitle"),
        QStringLiteral("dvb_subtitle"),      QStringLiteral("xsub"),
        QStringLiteral("dvb_teletext"),
    };
    return images.contains(codec);
}

QString SubtitleTrack::languageName() const {
    return Languages::displayName(language);
}

QStringList SubtitleTrack::flags() const {
    QStringList words;
    if (isDefault)
        words << QStringLiteral("predeterminada");
    if (forced)
        words << QStringLiteral("forzada");
    if (hearingImpaired)
        words << QStringLiteral("SDH");
    if (isBitmap())
        words << QStringLiteral("imagen");
    return words;
}

QString SubtitleTrack::summary() const {
    QStringList pieces = {u'#' + QString::number(index), languageName()};
    if (!title.isEmpty())
        pieces << u'«' + title + u'»';
    if (const QStringList words = flags(); !words.isEmpty())
        pieces << u'[' + words.join(QStringLiteral(", ")) + u']';
    if (frameCount)
        pieces << u'(' + QString::number(*frameCount) + QStringLiteral(" eventos)");
    return pieces.join(QStringLiteral("  "));
}

} // namespace velto
