// The entry that libFuzzer calls; LMP_FUZZ_TARGET names the function.
#include "FuzzTarget.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    lmp::LMP_FUZZ_TARGET(QByteArrayView(data, qsizetype(size)));
    return 0;
}
