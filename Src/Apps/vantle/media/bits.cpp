#include "media/bits.h"

namespace vantle {

Bytes payload(ByteView unit) {
    Bytes bytes;
    int zeros = 0;
    for (const std::uint8_t byte : unit) {
        if (zeros >= 2 && byte == 3) {
            zeros = 0;
            continue;
        }
        zeros = byte == 0 ? zeros + 1 : 0;
        bytes.push_back(byte);
    }
    return bytes;
}

Bytes escaped(const Bytes& bytes) {
    Bytes unit;
    int zeros = 0;
    for (const std::uint8_t byte : bytes) {
        if (zeros >= 2 && byte <= 3) {
            unit.push_back(3);
            zeros = 0;
        }
        zeros = byte == 0 ? zeros + 1 : 0;
        unit.push_back(byte);
    }
    return unit;
}

}  // namespace vantle
