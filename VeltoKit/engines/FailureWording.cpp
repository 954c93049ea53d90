#include "VeltoKit/engines/FailureWording.h"

#include <algorithm>

#include <QDateTime>
#include <QLocale>
#include <QRegularExpression>
#include <QTimeZone>

#include "VeltoKit/engines/HttpClient.h"
#include "VeltoKit/engines/JsonReader.h"

namespace velto {

namespace {

// A web page quoted in a message is a short line of its text, never its markup.
constexpr int pageExcerptCharacters = 120;

bool isWebPage(const QByteArray& body) {
    const QByteArray start = body.left(512).trimmed().toLower();
    return start.startsWith("<!doctype") || start.startsWith("<html") ||
           start.startsWith("<?xml") || start.contains("<body") || start.contains("<head");
}

QString pageText(const QByteArray& body) {
    static const QRegularExpression hidden(
        QStringLiteral("<(script|style)\\b[^>]*>[\\s\\S]*?</\\1\\s*>|<!--[\\s\\S]*?-->"),
        QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression tag(QStringLiteral("<[^>]*>?"));
    static const QRegularExpression blanks(QStringLiteral("\\s+"),
                                           QRegularExpression::UseUnicodePropertiesOption);
    QString text = QString::fromUtf8(body);
    text.remove(hidden).replace(tag, QStringLiteral(" "));
    text.replace(QStringLiteral("&nbsp;"), QStringLiteral(" "))
        .replace(QStringLiteral("&lt;"), QStringLiteral("‹"))
        .replace(QStringLiteral("&gt;"), QStringLiteral("›"))
        .replace(QStringLiteral("&quot;"), QStringLiteral("\""))
        .replace(QStringLiteral("&#39;"), QStringLiteral("'"))
        .replace(QStringLiteral("&amp;"), QStringLiteral("&"));
    text = text.replace(blanks, QStringLiteral(" ")).trimmed();
    if (text.isEmpty())
        return QStringLiteral("una página de error sin texto");
    if (text.size() > pageExcerptCharacters)
        text = text.left(pageExcerptCharacters - 1).trimmed() + u'…';
    return text;
}

// How long the service asked to be left alone: its Retry-After header, in seconds or as an HTTP
// date, or the wait Gemini writes in its message ("Please retry in 5.7s").
std::optional<std::chrono::milliseconds> askedPause(const HttpResponse& response) {
    using std::chrono::milliseconds;
    const QString header = QString::fromLatin1(response.retryAfter);
    bool isNumber = false;
    const double seconds = header.toDouble(&isNumber);
    if (isNumber && seconds >= 0)
        return milliseconds(qint64(seconds * 1000));
    if (!header.isEmpty()) {
        QDateTime when = QLocale::c().toDateTime(header.section(u' ', 0, 4),
                                                 QStringLiteral("ddd, dd MMM yyyy HH:mm:ss"));
        when.setTimeZone(QTimeZone::utc());
        if (when.isValid())
            return milliseconds(std::max<qint64>(0, QDateTime::currentDateTimeUtc().msecsTo(when)));
    }
    static const QRegularExpression inBody(
        QStringLiteral("retry in ([0-9]+(?:\\.[0-9]+)?) "
                       "?(ms|s)\\b|\"retryDelay\"\\s*:\\s*\"([0-9]+(?:\\.[0-9]+)?)s\""),
        QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = inBody.match(QString::fromUtf8(response.body.left(4096)));
    if (!match.hasMatch())
        return std::nullopt;
    if (match.hasCaptured(3))
        return milliseconds(qint64(match.captured(3).toDouble() * 1000));
    const double amount = match.captured(1).toDouble();
    return milliseconds(qint64(
        match.captured(2).compare(u"ms", Qt::CaseInsensitive) == 0 ? amount : amount * 1000));
}

} // namespace

QString FailureWording::detail(const HttpResponse& response) const {
    if (quotesServiceMessage) {
        if (std::optional<QString> message = JsonReader::apiErrorMessage(response.body))
            return *message;
    }
    if (bodyCharacters > 0 && isWebPage(response.body))
        return pageText(response.body);
    return bodyCharacters > 0 ? response.text(bodyCharacters) : unreadable;
}

TranslationError FailureWording::errorFor(const HttpResponse& response,
                                          const QString& model) const {
    TranslationError error = errorFor(response.status, detail(response), model);
    if (error.isFatal())
        return error;
    const std::optional<std::chrono::milliseconds> pause = askedPause(response);
    return pause ? TranslationError::busy(error.message(), *pause) : error;
}

TranslationError FailureWording::errorFor(int status, const QString& detail,
                                          const QString& model) const {
    const QString lowered = detail.toLower();
    const auto fits = [&](const StatusWording& line) {
        return line.statuses.contains(status) &&
               (line.detailMentions.isEmpty() || lowered.contains(line.detailMentions));
    };
    const auto line = std::find_if(statuses.begin(), statuses.end() - 1, fits);
    QString text = line->text.toString();
    text.replace(QStringLiteral("{status}"), QString::number(status))
        .replace(QStringLiteral("{model}"), model);
    return line->kind(text + detail);
}

} // namespace velto
