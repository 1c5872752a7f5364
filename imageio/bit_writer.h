// Bits written to memory, the first one lowest in its byte, as DEFLATE has them.
#pragma once

#include <QtEndian>

#include <cstdint>

namespace lumetra {

/// Writes bits through a word, which keeps those that do not fill a byte yet.
class BitWriter {
public:
    /// The bits that a former writer had left are written first.
    explicit BitWriter(std::uint8_t* out, std::uint64_t left = 0, unsigned leftCount = 0)
        : out_(out), word_(left), count_(leftCount) {}

    /// Adds `count` bits, the first one lowest. Those since the last `flush`, and seven before
    /// them, are to fit into the word.
    void put(std::uint64_t bits, unsigned count) {
        word_ |= bits << count_;
        count_ += count;
    }

    /// Writes all whole bytes. Memory for eight bytes from `end` on is to be there.
    void flush() {
        qToLittleEndian<quint64>(word_, out_);
        out_ += count_ / 8;
        word_ >>= count_ / 8 * 8;
        count_ %= 8;
    }

    /// Fills up the last byte with 0 and writes all.
    void finish() {
        count_ = (count_ + 7) / 8 * 8;
        flush();
    }

    std::uint8_t* end() const { return out_; }   ///< After the last byte that is written.
    std::uint64_t left() const { return word_; } ///< The bits that are not, less than eight.
    unsigned leftCount() const { return count_; }

private:
    std::uint8_t* out_;
    std::uint64_t word_;
    unsigned count_;
};

} // namespace lumetra
