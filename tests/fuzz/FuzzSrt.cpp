#include "FuzzChecks.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    return velto::fuzz::checkLoading(false, data, size);
}
