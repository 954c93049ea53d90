#include <gtest/gtest.h>

#include "VeltoKit/core/TextTrim.h"
#include "VeltoKit/media/ShellError.h"
#include "VeltoKit/platform/PlatformText.h"

using namespace velto;

TEST(TextTrim, TrailingTrimRemovesUnicodeWhitespaceOnlyAtTheEnd) {
    EXPECT_EQ(trimTrailingWhitespace(u"  hola \t\u00a0\u3000\n"), QStringLiteral("  hola"));
    EXPECT_EQ(trimTrailingWhitespace(u" \n "), QString());
    EXPECT_EQ(trimSpacesAndTabs(u"\t a b \t"), QStringLiteral("a b"));
    EXPECT_EQ(trimSpacesAndTabs(u"\na\n"), QStringLiteral("\na\n"));
}

TEST(PlatformText, MacWordingIsTheReferenceAndOtherSystemsGetTheirOwn) {
    using enum PlatformText::System;
    EXPECT_EQ(PlatformText::installFfmpeg(macOS), QStringLiteral("brew install ffmpeg"));
    EXPECT_EQ(PlatformText::installFfmpeg(gnuLinux), QStringLiteral("sudo apt install ffmpeg"));
    EXPECT_EQ(PlatformText::keychainName(macOS), QStringLiteral("el Llavero de macOS"));
    EXPECT_EQ(PlatformText::revealInFileBrowser(macOS), QStringLiteral("Mostrar en Finder"));
#if defined(Q_OS_LINUX)
    // The local wording reaches the messages that use it.
    EXPECT_EQ(ShellError::notFound(QStringLiteral("ffprobe")).description(),
              QStringLiteral("No encuentro «ffprobe». Instalalo con: sudo apt install ffmpeg"));
#endif
    // A tool that said nothing is not followed by an empty line.
    EXPECT_EQ(ShellError::failed(QStringLiteral("ffmpeg"), 1, QStringLiteral("\n")).description(),
              QStringLiteral("ffmpeg falló (código 1) sin explicar por qué."));
}
