#include "VeltoKit/job/Money.h"

#include <QLocale>

namespace velto::Money {
namespace {

QString amount(double value) {
    static const QLocale spanish(QLocale::Spanish, QLocale::Argentina);
    return spanish.toString(value, 'f', 2);
}

} // namespace

QString usd(double value) {
    if (value > 0 && value < 0.005)
        return QStringLiteral("menos de US$ 0,01");
    return QStringLiteral("US$ ") + amount(value);
}

QString usdRange(double low, double high) {
    if (amount(low) == amount(high) || high < 0.005)
        return usd(high);
    if (low < 0.005)
        return QStringLiteral("hasta ") + usd(high);
    return QStringLiteral("US$ ") + amount(low) + u'\x2013' + amount(high);
}

} // namespace velto::Money
