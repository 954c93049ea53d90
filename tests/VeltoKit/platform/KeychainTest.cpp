#include "VeltoKit/platform/Keychain.h"

#include <gtest/gtest.h>

#include "support/SecretService.h"

using namespace velto;
using namespace Qt::StringLiterals;

namespace {

const QString first = u"veltomkv-test-first"_s;
const QString second = u"veltomkv-test-second"_s;

class KeychainTest : public testing::Test {
protected:
    void SetUp() override {
        if (!velto::test::usePrivateSecretService())
            GTEST_SKIP() << "no private Secret Service: run through ctest";
        Keychain::remove(first);
        Keychain::remove(second);
    }
};

} // namespace

TEST_F(KeychainTest, KeepsOneKeyPerAccountAndAnEmptyValueDeletesIt) {
    EXPECT_EQ(Keychain::unavailableReason(), std::nullopt);
    EXPECT_EQ(Keychain::get(first), QString());
    Keychain::set(u"sk-uno"_s, first);
    Keychain::set(u"sk-ñandú"_s, second);
    Keychain::set(u"sk-uno-nueva"_s, first);
    EXPECT_EQ(Keychain::get(first), u"sk-uno-nueva"_s);
    EXPECT_EQ(Keychain::get(second), u"sk-ñandú"_s);

    Keychain::set({}, first);
    EXPECT_EQ(Keychain::get(first), QString());
    EXPECT_EQ(Keychain::get(second), u"sk-ñandú"_s);
    Keychain::remove(second);
    EXPECT_EQ(Keychain::get(second), QString());
}
