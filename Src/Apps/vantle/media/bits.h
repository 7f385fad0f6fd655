/// The bits of which NAL units consist.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "Host/error.h"
#include "media/nal_units.h"

namespace vantle {

/// A unit without the bytes that keep its contents from looking like a start code.
Bytes payload(ByteView unit);

/// With them again.
Bytes escaped(const Bytes& bytes);

/// Reads bits from a payload, which must outlive it. Throws Error behind its end.
class BitReader {
   public:
    explicit BitReader(const Bytes& bytes, std::size_t position) : bytes_(bytes), position_(position) {}

    std::uint32_t bits(int count) {
        std::uint32_t value = 0;
        for (; count > 0; --count, ++position_) {
            if (position_ / 8 >= bytes_.size()) throw Error("a parameter set or slice is damaged");
            value = value << 1 | (bytes_[position_ / 8] >> (7 - position_ % 8) & 1);
        }
        return value;
    }
    bool flag() { return bits(1) != 0; }
    void skip(int count) {
        for (; count > 0; count -= 32) bits(std::min(count, 32));
    }

    /// A number of which small ones are short (ue(v)); a signed one has as many bits.
    int number() {
        int zeros = 0;
        while (!flag())
            if (++zeros > 30) throw Error("a parameter set or slice is damaged");
        return static_cast<int>((1U << zeros) - 1 + bits(zeros));
    }
    int signedNumber() {
        const int code = number();
        return code % 2 != 0 ? code / 2 + 1 : -(code / 2);
    }

    std::size_t position() const { return position_; }

   private:
    const Bytes& bytes_;
    std::size_t position_;
};

/// Puts other bits in the place of `count` ones.
inline void setBits(Bytes& bytes, std::size_t position, int count, std::uint32_t value) {
    for (; count > 0; ++position) {
        const int shift = 7 - static_cast<int>(position % 8);
        std::uint8_t& byte = bytes.at(position / 8);
        byte = static_cast<std::uint8_t>((byte & ~(1 << shift)) | static_cast<int>(value >> --count & 1)
                                                                      << shift);
    }
}

/// Writes a payload.
class BitWriter {
   public:
    void bits(std::uint32_t value, int count) {
        for (int bit = count - 1; bit >= 0; --bit, ++position_) {
            if (position_ % 8 == 0) bytes_.push_back(0);
            bytes_.back() =
                static_cast<std::uint8_t>(bytes_.back() | (value >> bit & 1) << (7 - position_ % 8));
        }
    }
    void number(int value) {
        const auto code = static_cast<std::uint32_t>(value) + 1;
        int length = 0;
        while (code >> (length + 1) != 0) ++length;
        bits(0, length);
        bits(code, length + 1);
    }
    void copy(const Bytes& from, std::size_t begin, std::size_t end) {
        for (BitReader reader(from, begin); reader.position() < end;) bits(reader.bits(1), 1);
    }
    std::size_t position() const { return position_; }
    Bytes take() { return std::move(bytes_); }
    /// With the one that marks the end.
    Bytes finish() {
        bits(1, 1);
        return take();
    }

   private:
    Bytes bytes_;
    std::size_t position_ = 0;
};

}  // namespace vantle
