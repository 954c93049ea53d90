#include "VeltoKit/subtitles/TextDecoder.h"

#include <array>

#include <QStringDecoder>

namespace velto::TextDecoder {

namespace {

// 0x80-0x9F; 0 marks the undefined bytes. Everything else maps to the same code point.
constexpr std::array<char16_t, 32> windows1252High = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178,
};

std::optional<QString> strict(QStringDecoder::Encoding encoding, const QByteArray& bytes) {
    QStringDecoder decoder(encoding, QStringDecoder::Flag::Stateless);
    QString text = decoder.decode(bytes);
    if (decoder.hasError())
        return std::nullopt;
    return text;
}

// A UTF-16 byte-order mark cannot open a valid UTF-8 file (0xFF and 0xFE never occur in UTF-8),
// and people do hand us such files: take the mark at its word rather than read mojibake.
std::optional<QString> utf16ByMark(const QByteArray& bytes) {
    if (bytes.startsWith("\xFF\xFE"))
        return QStringDecoder(QStringDecoder::Utf16LE).decode(bytes);
    if (bytes.startsWith("\xFE\xFF"))
        return QStringDecoder(QStringDecoder::Utf16BE).decode(bytes);
    return std::nullopt;
}

} // namespace

std::optional<QString> utf8(const QByteArray& bytes) {
    return strict(QStringDecoder::Utf8, bytes);
}

std::optional<QString> windows1252(const QByteArray& bytes) {
    QString text(bytes.size(), Qt::Uninitialized);
    QChar* out = text.data();
    for (char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        if (value >= 0x80 && value <= 0x9F) {
            const char16_t mapped = windows1252High[value - 0x80];
            if (mapped == 0)
                return std::nullopt;
            *out++ = QChar(mapped);
        } else {
            *out++ = QChar(char16_t(value));
        }
    }
    return text;
}

QString decode(const QByteArray& bytes) {
    std::optional<QString> text = utf16ByMark(bytes);
    if (!text)
        text = utf8(bytes);
    if (!text)
        text = windows1252(bytes);
    if (!text)
        text = QString::fromLatin1(bytes);
    if (text->startsWith(u'\uFEFF'))
        text->remove(0, 1);
    return *text;
}

} // namespace velto::TextDecoder
