#include <gtest/gtest.h>

#include "VeltoKit/media/ShellError.h"

using namespace velto;

// The system's own install command reaches the message; the macOS wording is checked in the
// engines' messages.
TEST(ShellError, NamesThisSystemsInstallCommandAndNoEmptyOutput) {
#if defined(Q_OS_LINUX)
    EXPECT_EQ(ShellError::notFound(QStringLiteral("ffprobe")).description(),
              QStringLiteral("No encuentro «ffprobe». Instalalo con: sudo apt install ffmpeg"));
#endif
    // A tool that said nothing is not followed by an empty line.
    EXPECT_EQ(ShellError::failed(QStringLiteral("ffmpeg"), 1, QStringLiteral("\n")).description(),
              QStringLiteral("ffmpeg falló (código 1) sin explicar por qué."));
}
