#include "VeltoKit/engines/EchoBackend.h"

#include <gtest/gtest.h>

using namespace velto;
using namespace Qt::StringLiterals;

TEST(EchoBackend, EchoesTheBlocksAfterTheLastHeaderInNumberOrder) {
    const EchoBackend echo;
    EXPECT_EQ(echo.label(), u"Prueba (sin traducir)"_s);
    EXPECT_EQ(
        echo.complete({}, u"Traducí.\nBLOQUES A TRADUCIR:\n#@#1#@#\nHola\n#@#2#@#\nChau"_s, {}),
        u"#@#1#@#\n[ES] Hola\n#@#2#@#\n[ES] Chau"_s);
    EXPECT_EQ(echo.complete({}, u"#@#2#@#\nDos\n#@#1#@#\nUno\nDos"_s, {}),
              u"#@#1#@#\n[ES] Uno\nDos\n#@#2#@#\n[ES] Dos"_s);
    // Context lines and blocks quoted before the last header are never echoed.
    EXPECT_EQ(echo.complete({},
                            u"CONTEXTO PREVIO:\n#@#9#@#\nviejo\nBLOQUES A TRADUCIR:\n"
                            u"BLOQUES A TRADUCIR:\n#@#1#@#\nnuevo"_s,
                            {}),
              u"#@#1#@#\n[ES] nuevo"_s);
    EXPECT_EQ(echo.complete({}, u"Sin bloques."_s, {}), QString());
}

TEST(EchoBackend, PreflightNeverFailsNorAsks) {
    std::stop_source stopped;
    stopped.request_stop();
    EXPECT_NO_THROW(EchoBackend().preflight({}));
    EXPECT_NO_THROW(EchoBackend().preflight(stopped.get_token()));
}
