#include "imageio/deflate_encoder.h"

#include "imageio/bit_writer.h"
#include "imageio/prefix_code.h"

#include <QtAlgorithms>
#include <QtEndian>

#include <algorithm>
#include <array>

// A DEFLATE stream is a series of blocks. A block begins with one bit, set for the last one, and
// two for its type. Type 0 is stored: 16 bits with the number of bytes, their complement, the
// bytes. Type 2 begins with the lengths of its prefix codes, and goes on with symbols in these
// codes: 0 to 255 for a byte, 256 for the end of the block, 257 to 285 for the length of a match,
// together with some more bits of the length and the code of its distance. The noise of a camera
// leaves nothing to match but what is constant, and that are runs: matches of distance 1, which
// repeat the byte before.

namespace lumetra {
namespace {

constexpr unsigned endOfBlock = 256, firstLength = 257, symbolCount = 286;
constexpr unsigned longestRun = 258;

/// Four codes of so many bits fit into a word beside seven bits that wait there.
constexpr unsigned longestCode = 14;

/// A match: bytes that equal the one before them.
struct Run {
    std::uint32_t start, length;
};

/// Not 0 for those of eight bytes that differ from the byte before them, the first one lowest.
std::uint64_t differences(const std::uint8_t* bytes) {
    return qFromLittleEndian<quint64>(bytes) ^ qFromLittleEndian<quint64>(bytes - 1);
}

/// All runs of 15 bytes and more, and shorter ones of at least eight where they meet a word. Still
/// shorter ones would take about as many bits as a match as they take byte by byte.
std::vector<Run> findRuns(const std::uint8_t* bytes, std::size_t count) {
    constexpr std::size_t word = 8;
    std::vector<Run> runs;
    std::size_t done = 1; // nothing is before the first byte
    for (std::size_t i = done + word; i + word <= count;) {
        if (differences(bytes + i) != 0) {
            i += word;
            continue;
        }
        const auto equalBefore =
            static_cast<std::size_t>(qCountLeadingZeroBits(differences(bytes + i - word)) / 8);
        const std::size_t start = std::max(done, i - equalBefore);
        const std::size_t most = std::min(count, start + longestRun);
        std::size_t end = i + word;
        while (end + word <= most && differences(bytes + end) == 0)
            end += word;
        while (end < most && bytes[end] == bytes[end - 1])
            ++end;
        runs.push_back(
            {static_cast<std::uint32_t>(start), static_cast<std::uint32_t>(end - start)});
        done = i = end;
    }
    return runs;
}

/// Calls `literals(begin, end)` for the bytes between runs and `match(length)` for runs, in order.
template<class Literals, class Match>
void walk(const std::uint8_t* bytes, std::size_t count, const std::vector<Run>& runs,
          const Literals& literals, const Match& match) {
    std::size_t done = 0;
    for (const Run& run : runs) {
        literals(bytes + done, bytes + run.start);
        match(run.length);
        done = run.start + run.length;
    }
    literals(bytes + done, bytes + count);
}

/// A symbol, and bits after its code that tell apart what it stands for.
struct Symbol {
    unsigned symbol, extra, extraCount;
};

/// The length of a match of at least seven bytes (RFC 1951, section 3.2.5).
Symbol lengthSymbol(unsigned length) {
    if (length == longestRun)
        return {symbolCount - 1, 0, 0};
    const unsigned above = length - 3; // whose three highest bits are in the symbol
    const unsigned extraCount = 29 - qCountLeadingZeroBits(above);
    return {firstLength + 4 * extraCount + (above >> extraCount), above & ((1U << extraCount) - 1),
            extraCount};
}

std::vector<std::uint32_t> frequenciesOf(const std::uint8_t* bytes, std::size_t count,
                                         const std::vector<Run>& runs) {
    // Several tables, since to count the same byte again has to wait for what was counted before.
    constexpr std::ptrdiff_t tableCount = 8;
    std::array<std::array<std::uint32_t, 256>, tableCount> tables{};
    std::vector<std::uint32_t> frequencies(symbolCount);
    walk(
        bytes, count, runs,
        [&tables](const std::uint8_t* in, const std::uint8_t* end) {
            for (; end - in >= tableCount; in += tableCount)
                for (std::size_t i = 0; i < tableCount; ++i)
                    ++tables[i][in[i]];
            for (; in != end; ++in)
                ++tables[0][*in];
        },
        [&frequencies](unsigned length) { ++frequencies[lengthSymbol(length).symbol]; });
    for (const auto& table : tables)
        for (std::size_t i = 0; i < table.size(); ++i)
            frequencies[i] += table[i];
    frequencies[endOfBlock] = 1;
    return frequencies;
}

/// The lengths of codes, with symbols for repetitions (RFC 1951, section 3.2.7).
std::vector<Symbol> codeLengthSymbols(const std::vector<unsigned>& lengths) {
    std::vector<Symbol> symbols;
    for (auto it = lengths.begin(); it != lengths.end();) {
        const unsigned length = *it;
        const auto next = std::find_if(it, lengths.end(), [=](unsigned l) { return l != length; });
        auto left = static_cast<unsigned>(next - it);
        it = next;
        if (length != 0) {
            symbols.push_back({length, 0, 0});
            --left;
        }
        while (left >= 3) {
            const unsigned count = std::min(left, length != 0 ? 6U : 138U);
            symbols.push_back(length != 0   ? Symbol{16, count - 3, 2}
                              : count <= 10 ? Symbol{17, count - 3, 3}
                                            : Symbol{18, count - 11, 7});
            left -= count;
        }
        symbols.insert(symbols.end(), left, Symbol{length, 0, 0});
    }
    return symbols;
}

/// The codes of a block, and how its header tells them.
struct BlockCodes {
    explicit BlockCodes(const std::vector<std::uint32_t>& frequencies);
    std::size_t headerBits() const;
    void writeHeader(BitWriter& out) const;

    std::vector<PrefixCode> codes;       ///< Of bytes, the end and lengths.
    std::vector<Symbol> lengths;         ///< Of these codes and those of the distances.
    std::vector<PrefixCode> lengthCodes; ///< Of the symbols in `lengths`.
    unsigned codesTold = symbolCount;    ///< Without those at the end that have none.
    unsigned lengthCodesTold = 19;
};

constexpr std::array<std::uint8_t, 19> orderOfLengthCodes{16, 17, 18, 0, 8,  7, 9,  6, 10, 5,
                                                          11, 4,  12, 3, 13, 2, 14, 1, 15};

BlockCodes::BlockCodes(const std::vector<std::uint32_t>& frequencies)
    : codes(prefixCodes(frequencies, longestCode)) {
    while (codes[codesTold - 1].length == 0)
        --codesTold;
    std::vector<unsigned> all(codesTold);
    std::transform(codes.begin(), codes.begin() + codesTold, all.begin(),
                   [](const PrefixCode& code) { return code.length; });
    // Distance 1 has the bit 0. The bit 1 is for distance 2, which does not occur, because some
    // decoders refuse codes that leave bits without a meaning.
    all.insert(all.end(), {1, 1});
    lengths = codeLengthSymbols(all);

    std::vector<std::uint32_t> occurrences(orderOfLengthCodes.size());
    for (const Symbol& symbol : lengths)
        ++occurrences[symbol.symbol];
    constexpr unsigned longestLengthCode = 7;
    lengthCodes = prefixCodes(occurrences, longestLengthCode);
    while (lengthCodes[orderOfLengthCodes[lengthCodesTold - 1]].length == 0)
        --lengthCodesTold;
}

std::size_t BlockCodes::headerBits() const {
    std::size_t bits = 5 + 5 + 4 + std::size_t{3} * lengthCodesTold;
    for (const Symbol& symbol : lengths)
        bits += lengthCodes[symbol.symbol].length + symbol.extraCount;
    return bits;
}

void BlockCodes::writeHeader(BitWriter& out) const {
    out.put(codesTold - 257, 5);
    out.put(2 - 1, 5); // codes of distances
    out.put(lengthCodesTold - 4, 4);
    for (unsigned i = 0; i < lengthCodesTold; ++i) {
        out.put(lengthCodes[orderOfLengthCodes[i]].length, 3);
        out.flush();
    }
    for (const Symbol& symbol : lengths) {
        const PrefixCode code = lengthCodes[symbol.symbol];
        out.put(code.bits, code.length);
        out.put(symbol.extra, symbol.extraCount);
        out.flush();
    }
}

constexpr unsigned distanceBits = 1; // which is 0

std::size_t symbolBits(const std::vector<std::uint32_t>& frequencies, const std::vector<Run>& runs,
                       const std::vector<PrefixCode>& codes) {
    std::size_t bits = 0;
    for (std::size_t i = 0; i < frequencies.size(); ++i)
        bits += std::size_t{frequencies[i]} * codes[i].length;
    for (const Run& run : runs)
        bits += lengthSymbol(run.length).extraCount + distanceBits;
    return bits;
}

void writeSymbols(const std::uint8_t* bytes, std::size_t count, const std::vector<Run>& runs,
                  const std::vector<PrefixCode>& codes, BitWriter& writer) {
    BitWriter out = writer; // stays in registers, as nothing else can see it
    const PrefixCode* const codeOf = codes.data();
    walk(
        bytes, count, runs,
        [&out, codeOf](const std::uint8_t* in, const std::uint8_t* end) {
            for (; end - in >= 4; in += 4) {
                const PrefixCode a = codeOf[in[0]], b = codeOf[in[1]];
                const PrefixCode c = codeOf[in[2]], d = codeOf[in[3]];
                const unsigned ab = a.length + b.length, cd = c.length + d.length;
                const std::uint64_t bitsOfAb = a.bits | std::uint64_t{b.bits} << a.length;
                const std::uint64_t bitsOfCd = c.bits | std::uint64_t{d.bits} << c.length;
                out.put(bitsOfAb | bitsOfCd << ab, ab + cd);
                out.flush();
            }
            for (; in != end; ++in)
                out.put(codeOf[*in].bits, codeOf[*in].length);
            out.flush();
        },
        [&out, codeOf](unsigned length) {
            const Symbol symbol = lengthSymbol(length);
            const PrefixCode code = codeOf[symbol.symbol];
            out.put(code.bits, code.length);
            out.put(symbol.extra, symbol.extraCount + distanceBits);
            out.flush();
        });
    out.put(codeOf[endOfBlock].bits, codeOf[endOfBlock].length);
    out.flush();
    writer = out;
}

constexpr std::size_t largestStored = 65535, storedHeader = 5;

std::size_t storedSize(std::size_t count) {
    return count + storedHeader * ((count + largestStored - 1) / largestStored);
}

void writeStored(const std::uint8_t* bytes, std::size_t count, bool isLast, BitWriter& out) {
    while (count > 0) {
        const std::size_t size = std::min(count, largestStored);
        out.put(isLast && size == count, 1);
        out.put(0, 2);
        out.finish();
        out.put(size, 16);
        out.put(~size & 0xffffU, 16);
        out.flush();
        out = BitWriter(std::copy_n(bytes, size, out.end()));
        bytes += size;
        count -= size;
    }
}

} // namespace

void DeflateEncoder::encode(const std::uint8_t* bytes, std::size_t count, bool isLast,
                            std::vector<std::uint8_t>& out) {
    const std::vector<Run> runs = findRuns(bytes, count);
    const std::vector<std::uint32_t> frequencies = frequenciesOf(bytes, count, runs);
    const BlockCodes codes(frequencies);
    const std::size_t bits = codes.headerBits() + symbolBits(frequencies, runs, codes.codes);

    constexpr std::size_t slack = 10; // bits of the former block, and what `flush` writes to
    const std::size_t before = out.size();
    out.resize(before + storedSize(count) + slack);
    BitWriter writer(out.data() + before, left_, leftCount_);
    if (bits / 8 < storedSize(count)) {
        writer.put(isLast, 1);
        writer.put(2, 2);
        codes.writeHeader(writer);
        writeSymbols(bytes, count, runs, codes.codes, writer);
    } else {
        writeStored(bytes, count, isLast, writer);
    }
    if (isLast)
        writer.finish();
    left_ = writer.left();
    leftCount_ = writer.leftCount();
    out.resize(static_cast<std::size_t>(writer.end() - out.data()));
}

void DeflateEncoder::endPart(std::vector<std::uint8_t>& out) {
    constexpr std::size_t slack = 16;
    const std::size_t before = out.size();
    out.resize(before + slack);
    BitWriter writer(out.data() + before, left_, leftCount_);
    writer.put(0, 3); // a stored block without bytes
    writer.finish();
    writer.put(0xffff0000, 32);
    writer.flush();
    left_ = 0;
    leftCount_ = 0;
    out.resize(static_cast<std::size_t>(writer.end() - out.data()));
}

} // namespace lumetra
