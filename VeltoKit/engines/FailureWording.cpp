#include "VeltoKit/engines/FailureWording.h"

#include <algorithm>

#include "VeltoKit/engines/HttpClient.h"
#include "VeltoKit/engines/JsonReader.h"

namespace velto {

QString FailureWording::detail(const HttpResponse& response) const {
    if (quotesServiceMessage) {
        if (std::optional<QString> message = JsonReader::apiErrorMessage(response.body))
            return *message;
    }
    return bodyCharacters > 0 ? response.text(bodyCharacters) : unreadable;
}

TranslationError FailureWording::errorFor(const HttpResponse& response,
                                          const QString& model) const {
    return errorFor(response.status, detail(response), model);
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
