#pragma once

#include <QString>

namespace velto::Money {

// "US$ 0,31": dollars with a decimal comma, cents shown; a cost under a cent is "menos de
// US$ 0,01", so a small bill never reads as nothing.
QString usd(double amount);
// "US$ 0,31–0,40", or one amount when both ends read the same.
QString usdRange(double low, double high);

} // namespace velto::Money
