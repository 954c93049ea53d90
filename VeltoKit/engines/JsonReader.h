#pragma once

#include <optional>

#include <QByteArray>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>
#include <QStringView>

#include "VeltoKit/core/VeltoError.h"

namespace velto {

// A service answered with JSON that does not have the expected shape.
class JsonError : public VeltoError {
public:
    using VeltoError::VeltoError;
};

// Reads the records of a service's JSON answer: unknown members are ignored and null counts as
// absent, but a body that is not an object, a member of the wrong type or a missing required
// member is a JsonError.
class JsonReader {
public:
    explicit JsonReader(QJsonObject object);
    static JsonReader parse(const QByteArray& body);

    std::optional<QString> string(QStringView key) const;
    QString requiredString(QStringView key) const;
    // A whole number; a fraction or any other type is the wrong type.
    std::optional<qint64> integer(QStringView key) const;
    std::optional<JsonReader> object(QStringView key) const;
    // An absent list reads as empty.
    QList<JsonReader> objects(QStringView key) const;
    QStringList strings(QStringView key) const;

    // The `error.message` of an API error body, when the body has one.
    static std::optional<QString> apiErrorMessage(const QByteArray& body);

private:
    QJsonValue member(QStringView key) const;

    QJsonObject m_object;
};

} // namespace velto
