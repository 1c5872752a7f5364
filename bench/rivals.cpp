#include "rivals.h"

#include "memory_meter.h"

#include <benchmark/benchmark.h>

#include <cstring>
#include <map>
#include <tuple>

namespace {

/// Registers one way of doing an operation.
void registerWay(const Operation& operation, const char* way, const Preparation& prepare) {
    for (const int side : operation.sides) {
        const std::string name = operation.name + '/' + way + '/' + std::to_string(side);
        benchmark::RegisterBenchmark(name.c_str(), [=, aims = operation.aims](
                                                       benchmark::State& state) {
            const std::function<void()> call = prepare(side);
            call(); // the first one pays for fresh memory
            const MemoryMeter meter;
            call();
            state.counters["peakBytes"] = static_cast<double>(meter.peakBytes());
            state.counters["memcpyAim"] = aims.memcpy;
            state.counters["openCvAim"] = aims.openCv;
            for (auto _ : state)
                call();
        })->Unit(benchmark::kMillisecond);
    }
}

/// Two buffers that every `memcpy` shares, grown to the largest.
std::function<void()> plainCopy(std::size_t bytes) {
    static std::vector<unsigned char> from;
    static std::vector<unsigned char> to;
    if (from.size() < bytes) {
        from.assign(bytes, 1);
        to.assign(bytes, 2);
    }
    return [bytes] {
        std::memcpy(to.data(), from.data(), bytes);
        benchmark::ClobberMemory();
    };
}

} // namespace

void compare(const Operation& operation) {
    registerWay(operation, "lumetra", operation.library);
    const double bytes = operation.bytesPerPixel;
    registerWay(operation, "memcpy", [bytes](int side) {
        return plainCopy(static_cast<std::size_t>(bytes * side * side));
    });
    if (operation.openCv)
        registerWay(operation, "opencv", operation.openCv);
}

const cv::Mat& noise(int type, int side, int number) {
    static std::map<std::tuple<int, int, int>, cv::Mat> images;
    cv::Mat& image = images[{type, side, number}];
    if (image.empty()) {
        cv::Mat tile(256, 256, type);
        cv::RNG random(static_cast<std::uint64_t>(number) + 1);
        random.fill(tile, cv::RNG::UNIFORM, 0, CV_MAT_DEPTH(type) == CV_8U ? 256 : 65536);
        const int tiles = (side + tile.rows - 1) / tile.rows;
        image = cv::repeat(tile, tiles, tiles)(cv::Rect(0, 0, side, side)).clone();
    }
    return image;
}

cv::Mat mostlyBlack(int type, int side) {
    cv::Mat black(side, side, CV_8UC1, cv::Scalar(1));
    for (int x = 0; x < side; x += 16)
        black.col(x) = 0;
    cv::Mat image = noise(type, side).clone();
    image.setTo(0, black);
    return image;
}
