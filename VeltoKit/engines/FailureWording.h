#pragma once

#include <QList>
#include <QString>
#include <QStringView>

#include "VeltoKit/translation/TranslationError.h"

namespace velto {

struct HttpResponse;

// One line of an engine's wording of failed statuses.
struct StatusWording {
    // Empty on the last line of a table, which words every status no other line fits.
    QList<int> statuses;
    // TranslationError::fatal or TranslationError::transient.
    TranslationError (*kind)(QString message);
    // A literal: "{status}" and "{model}" are filled in, and the detail follows.
    QStringView text;
    // Lower case; when set, the line words only the details that contain it.
    QStringView detailMentions = {};
};

// How the failed answers of one kind of request become engine errors: what of the body is quoted
// as the detail, and the wording of each status. The first line that fits words the error.
struct FailureWording {
    // The body's own {"error":{"message"}} is quoted when it has one,
    bool quotesServiceMessage = false;
    // else its first characters as text,
    int bodyCharacters = 0;
    // or, when no characters are quoted, this.
    QString unreadable = {};
    QList<StatusWording> statuses;

    // The text quoted from a failed answer; every detail taken from an error body is made here.
    QString detail(const HttpResponse& response) const;
    TranslationError errorFor(const HttpResponse& response, const QString& model = {}) const;
    // The same wording for a detail found elsewhere (status 0 when there was no answer).
    TranslationError errorFor(int status, const QString& detail, const QString& model = {}) const;
};

} // namespace velto
