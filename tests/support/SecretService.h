#pragma once

namespace velto::test {

// Points this process, and the programs it starts, at the private Secret Service that the test
// run started (see tests/support/secret-service), never at the user's own keyring. False when
// there is none, for instance when a test binary is run by hand without ctest.
bool usePrivateSecretService();

} // namespace velto::test
