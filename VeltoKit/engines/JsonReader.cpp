#include "VeltoKit/engines/JsonReader.h"

#include <cmath>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonParseError>

namespace velto {

namespace {

JsonError wrongType(QStringView key) {
    return JsonError(QStringLiteral("El campo «") + key +
                     QStringLiteral("» de la respuesta del servidor no tiene el tipo esperado."));
}

} // namespace

JsonReader::JsonReader(QJsonObject object)
    : m_object(std::move(object)) {}

JsonReader JsonReader::parse(const QByteArray& body) {
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(body, &error);
    if (error.error != QJsonParseError::NoError || !document.isObject())
        throw JsonError(QStringLiteral("La respuesta del servidor no es un JSON válido."));
    return JsonReader(document.object());
}

QJsonValue JsonReader::member(QStringView key) const {
    const QJsonValue value = m_object.value(key);
    return value.isNull() ? QJsonValue(QJsonValue::Undefined) : value;
}

std::optional<QString> JsonReader::string(QStringView key) const {
    const QJsonValue value = member(key);
    if (value.isUndefined())
        return std::nullopt;
    if (!value.isString())
        throw wrongType(key);
    return value.toString();
}

QString JsonReader::requiredString(QStringView key) const {
    if (std::optional<QString> value = string(key))
        return *value;
    throw JsonError(QStringLiteral("La respuesta del servidor no trae el campo «") + key +
                    QStringLiteral("»."));
}

std::optional<qint64> JsonReader::integer(QStringView key) const {
    const QJsonValue value = member(key);
    if (value.isUndefined())
        return std::nullopt;
    // Range first: converting a double out of range is undefined.
    constexpr double limit = 9.0e18;
    const double number = value.toDouble();
    if (!value.isDouble() || !(std::abs(number) < limit) || number != std::trunc(number))
        throw wrongType(key);
    return static_cast<qint64>(number);
}

std::optional<JsonReader> JsonReader::object(QStringView key) const {
    const QJsonValue value = member(key);
    if (value.isUndefined())
        return std::nullopt;
    if (!value.isObject())
        throw wrongType(key);
    return JsonReader(value.toObject());
}

QList<JsonReader> JsonReader::objects(QStringView key) const {
    const QJsonValue value = member(key);
    if (value.isUndefined())
        return {};
    if (!value.isArray())
        throw wrongType(key);
    QList<JsonReader> readers;
    for (const QJsonValue element : value.toArray()) {
        if (!element.isObject())
            throw wrongType(key);
        readers.append(JsonReader(element.toObject()));
    }
    return readers;
}

QStringList JsonReader::strings(QStringView key) const {
    const QJsonValue value = member(key);
    if (value.isUndefined())
        return {};
    if (!value.isArray())
        throw wrongType(key);
    QStringList strings;
    for (const QJsonValue element : value.toArray()) {
        if (!element.isString())
            throw wrongType(key);
        strings.append(element.toString());
    }
    return strings;
}

std::optional<QString> JsonReader::apiErrorMessage(const QByteArray& body) {
    try {
        if (std::optional<JsonReader> error = parse(body).object(u"error"))
            return error->string(u"message");
    } catch (const JsonError&) {
    }
    return std::nullopt;
}

} // namespace velto
