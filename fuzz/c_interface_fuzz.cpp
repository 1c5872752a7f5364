// Numbers that callers of the C interface get wrong: every call succeeds or gives a reason.

#include "fuzz/input.h"

#include "render/lumetra_render.h"

#include <array>
#include <cmath>
#include <vector>

namespace {

/// Structures whose pixels, if they have any, lie in memory that what they say cannot leave.
class Nonsense {
public:
    Nonsense(const uint8_t* data, std::size_t size) : input_(data, size) {}

    template<class Number, std::size_t count>
    Number oneOf(const Number (&numbers)[count]) {
        return input_.PickValueInArray(numbers);
    }
    std::int32_t number() {
        return input_.ConsumeBool() ? oneOf({0, 1, 2, 3, 8, 16, 255, -1, INT32_MIN, INT32_MAX})
                                    : input_.ConsumeIntegral<std::int32_t>();
    }
    double real() {
        return input_.ConsumeBool() ? oneOf({0.0, 1.0, 2.0, 0.5, 60.0, std::nan(""), HUGE_VAL})
                                    : input_.ConsumeFloatingPoint<double>();
    }
    /// The second of an array is where the first says, which has to be in the array.
    std::size_t size(std::size_t right) {
        return oneOf(
            {right, right, right, right, std::size_t{0}, std::size_t{8}, std::size_t{12345678}});
    }
    lumetra_plane plane() {
        return {size(sizeof(lumetra_plane)), pixels(), step(), extent(), extent(), bits()};
    }
    lumetra_image image() {
        return {size(sizeof(lumetra_image)),
                pixels(),
                step(),
                extent(),
                extent(),
                bits(),
                number() % 5};
    }
    lumetra_channel channel() {
        lumetra_channel channel{};
        channel.struct_size = size(sizeof channel);
        channel.red = oneOf({0, 255, 0, 255, -1, 256});
        channel.offset_x = oneOf({0, 0, 1, -2, number()});
        channel.offset_y = oneOf({0, 0, 1, -2, number()});
        channel.has_limits = oneOf({0, 1, 7});
        channel.low = oneOf({0, 3, number()});
        channel.high = oneOf({255, 65535, number()});
        channel.hidden = oneOf({0, 0, 1});
        channel.gamma = real();
        channel.blend = oneOf({0, 1, 2, number()});
        return channel;
    }

private:
    void* pixels() { return oneOf({1, 1, 1, 1, 0}) != 0 ? &memory_[2000] : nullptr; }
    ptrdiff_t step() { return oneOf<ptrdiff_t>({48, 48, 49, 7, 0, -48, -51}); }
    std::int32_t extent() { return oneOf({3, 3, 3, 3, 3, 7, 0, -1}); }
    std::int32_t bits() { return oneOf({8, 8, 16, 16, 12}); }

    FuzzedDataProvider input_;
    std::array<unsigned char, 4000> memory_{};
};

template<class... Parameters, class... Arguments>
void requireAnswer(int (*call)(Parameters...), Arguments... arguments) {
    char reason[100] = "";
    const int result = call(arguments..., reason, sizeof reason);
    require((result == LUMETRA_OK) == (reason[0] == '\0'), "a failure has a reason");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    static std::vector<std::uint64_t> counts(65536);
    static const std::vector<std::uint8_t> colours(768);
    Nonsense nonsense(data, size);
    const std::array planes{nonsense.plane(), nonsense.plane()};
    const std::array channels{nonsense.channel(), nonsense.channel()};
    const std::array images{nonsense.image(), nonsense.image()};
    lumetra_image image = nonsense.image();
    const auto count = nonsense.oneOf<std::size_t>({0, 1, 1, 2, 2});
    const auto* const some = nonsense.oneOf({1, 1, 0}) != 0 ? planes.data() : nullptr;
    const std::int32_t whole = nonsense.number();
    const double real = nonsense.real();
    std::int32_t low = 0, high = 0;
    requireAnswer(lumetra_render, some, channels.data(), count, &image);
    requireAnswer(lumetra_apply_colormap, some, channels.data(), colours.data(), &image);
    requireAnswer(lumetra_composite, images.data(), channels.data(), count, &image);
    requireAnswer(lumetra_project, some, count, whole, &image);
    requireAnswer(lumetra_count_values, some, counts.data());
    requireAnswer(lumetra_measure_limits, some, real, &low, &high);
    requireAnswer(lumetra_contrast_limits, counts.data(), whole, real, &low, &high);
    requireAnswer(lumetra_image_size, some, channels.data(), count, &image);
    return 0;
}
