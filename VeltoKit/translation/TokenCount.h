#pragma once

#include <QStringView>

namespace velto::TokenCount {

// How many tokens a model's tokenizer makes of `text`, without its vocabulary: each run of
// letters or digits counts one token for every six characters or part of them, every other
// visible character (punctuation, the block markers' '#' and '@', symbols) one token, and spaces
// and line breaks nothing. On English and Spanish subtitles and on the prompts this stays within
// about 10 % of the current tokenizers of the hosted services (bench/FIGURES.md).
qint64 approximate(QStringView text);

} // namespace velto::TokenCount
