#include "imageio/prefix_code.h"

#include <algorithm>
#include <array>
#include <limits>

namespace lumetra {
namespace {

constexpr unsigned longestCode = 15;

struct Leaf {
    std::uint32_t weight;
    std::uint32_t symbol;
};

/// The symbols that occur, the rarest first.
std::vector<Leaf> leavesOf(const std::vector<std::uint32_t>& frequencies) {
    std::vector<Leaf> leaves;
    for (std::uint32_t symbol = 0; symbol < frequencies.size(); ++symbol)
        if (frequencies[symbol] > 0)
            leaves.push_back({frequencies[symbol], symbol});
    std::sort(leaves.begin(), leaves.end(), [](const Leaf& a, const Leaf& b) {
        return a.weight != b.weight ? a.weight < b.weight : a.symbol < b.symbol;
    });
    return leaves;
}

/// One list of package-merge, by weight: the leaves, and the pairs of neighbours in another list.
struct PackageList {
    std::vector<std::uint32_t> weights;
    std::vector<std::uint32_t> pairsBefore; ///< How many of the first 0, 1, 2 … items are pairs.
};

PackageList merged(const std::vector<Leaf>& leaves, const std::vector<std::uint32_t>& others) {
    constexpr std::uint32_t none = std::numeric_limits<std::uint32_t>::max();
    const std::size_t pairs = others.size() / 2, count = leaves.size() + pairs;
    PackageList list{std::vector<std::uint32_t>(count), std::vector<std::uint32_t>(count + 1)};
    std::uint32_t pair = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t leaf = i - pair;
        const std::uint32_t ofPair = pair < pairs ? others[2 * pair] + others[2 * pair + 1] : none;
        const std::uint32_t ofLeaf = leaf < leaves.size() ? leaves[leaf].weight : none;
        list.weights[i] = std::min(ofPair, ofLeaf);
        pair += ofPair < ofLeaf;
        list.pairsBefore[i + 1] = pair;
    }
    return list;
}

/// How many symbols have codes of each length, by package-merge (Larmore and Hirschberg, 1990).
///
/// There is one list for each length. Of the last the lightest 2n - 2 items are taken, of each
/// other the pairs that the list after it took; whenever a leaf is taken, its code is longer by one
/// bit. Rare symbols are taken in every list that common ones are taken in.
std::array<std::size_t, longestCode + 1> countsOfLengths(const std::vector<Leaf>& leaves,
                                                         unsigned longest) {
    std::vector<PackageList> lists{merged(leaves, {})};
    while (lists.size() < longest)
        lists.push_back(merged(leaves, lists.back().weights));

    std::array<std::size_t, longestCode + 1> counts{};
    std::size_t taken = 2 * leaves.size() - 2, shorter = leaves.size();
    for (unsigned length = 0; length < longest; ++length) {
        const std::size_t pairs = lists[longest - 1 - length].pairsBefore[taken];
        const std::size_t longer = taken - pairs; // than `length`
        counts[length] = shorter - longer;
        shorter = longer;
        taken = 2 * pairs;
    }
    counts[longest] = shorter;
    return counts;
}

std::uint16_t reversed(unsigned bits, unsigned length) {
    unsigned result = 0;
    for (unsigned i = 0; i < length; ++i)
        result |= (bits >> i & 1U) << (length - 1 - i);
    return static_cast<std::uint16_t>(result);
}

} // namespace

std::vector<PrefixCode> prefixCodes(const std::vector<std::uint32_t>& frequencies,
                                    unsigned longest) {
    const std::vector<Leaf> leaves = leavesOf(frequencies);
    const auto counts = countsOfLengths(leaves, longest);

    std::vector<PrefixCode> codes(frequencies.size());
    auto leaf = leaves.rbegin();
    for (unsigned length = 1; length <= longest; ++length)
        for (std::size_t i = 0; i < counts[length]; ++i)
            codes[(leaf++)->symbol].length = static_cast<std::uint16_t>(length);

    std::array<unsigned, longestCode + 1> next{};
    for (unsigned length = 1; length < longest; ++length)
        next[length + 1] = (next[length] + static_cast<unsigned>(counts[length])) << 1U;
    for (PrefixCode& code : codes)
        if (code.length > 0)
            code.bits = reversed(next[code.length]++, code.length);
    return codes;
}

} // namespace lumetra
