#pragma once

#include <QString>

namespace velto::Secrets {

// Remembers a key in use, so that no text shown from then on carries it. Too short a value is
// not a key worth hiding, and hiding it would garble every message.
void remember(const QString& key);

// `text` with every remembered key, every value of a header that carries a key, every key in a
// web address and every value shaped like a well-known service key replaced by a marker. Every
// failure passes through here before anyone sees it.
QString redacted(QString text);

} // namespace velto::Secrets
