#include "VeltoKit/core/TextTrim.h"

namespace velto {

QString trimTrailingWhitespace(QStringView text) {
    qsizetype end = text.size();
    while (end > 0 && text[end - 1].isSpace())
        --end;
    return text.first(end).toString();
}

QString trimSpacesAndTabs(QStringView text) {
    auto blank = [](QChar c) { return c == u' ' || c == u'\t'; };
    qsizetype begin = 0;
    qsizetype end = text.size();
    while (begin < end && blank(text[begin]))
        ++begin;
    while (end > begin && blank(text[end - 1]))
        --end;
    return text.sliced(begin, end - begin).toString();
}

} // namespace velto
