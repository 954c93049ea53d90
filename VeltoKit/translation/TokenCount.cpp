#include "VeltoKit/translation/TokenCount.h"

#include <QList>

namespace velto::TokenCount {
namespace {

constexpr qint64 lettersPerToken = 6;

bool isWordCharacter(char32_t c) {
    return QChar::isLetterOrNumber(c) || QChar::category(c) == QChar::Mark_NonSpacing;
}

} // namespace

qint64 approximate(QStringView text) {
    qint64 tokens = 0;
    qint64 word = 0;
    const auto endWord = [&] {
        tokens += (word + lettersPerToken - 1) / lettersPerToken;
        word = 0;
    };
    for (const char32_t c : text.toUcs4()) {
        if (isWordCharacter(c)) {
            ++word;
            continue;
        }
        endWord();
        if (!QChar::isSpace(c))
            ++tokens;
    }
    endWord();
    return tokens;
}

} // namespace velto::TokenCount
