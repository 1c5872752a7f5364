// Beside the command: a data set to work on, the bare reading and writing of its files, and a plain
// program on OpenCV for the same job.

#include "bench/camera_plane.h"

#include <opencv2/core.hpp>
#include <opencv2/imgcodecs.hpp>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace {

constexpr int side = 2048, distinct = 8;

std::string input(const std::string& folder, int field, const char* channel) {
    return folder + "/f" + std::to_string(1000 + field) + '_' + channel + ".tif";
}

/// Every file is one of few, under names of its own: what is read lies in the system's memory, so
/// that the disk is not what is measured.
void makeFields(const std::string& folder, int count) {
    std::filesystem::create_directories(folder);
    const std::vector<int> uncompressed{cv::IMWRITE_TIFF_COMPRESSION, 1};
    for (int field = 0; field < count; ++field) {
        for (const char* channel : {"dapi", "actin"}) {
            const std::string file = input(folder, field, channel);
            if (field < distinct)
                cv::imwrite(file, cameraPlane(side, 2 * field + (channel[0] == 'a')), uncompressed);
            else
                std::filesystem::create_hard_link(input(folder, field % distinct, channel), file);
        }
    }
}

void runThreads(int threads, int count, const std::function<void(int)>& work) {
    std::atomic<int> next{0};
    std::vector<std::thread> pool;
    pool.reserve(static_cast<std::size_t>(threads));
    for (int i = 0; i < threads; ++i)
        pool.emplace_back([&] {
            for (int field = next++; field < count; field = next++)
                work(field);
        });
    for (std::thread& thread : pool)
        thread.join();
}

constexpr int asItIs = cv::IMREAD_ANYDEPTH | cv::IMREAD_GRAYSCALE;

/// What one would write: levels to 8 bits, a colour for each, the sum.
cv::Mat plainPicture(const cv::Mat& dapi, const cv::Mat& actin) {
    return tinted(dapi, 200, 3200, {255, 107, 0}) + tinted(actin, 200, 3200, {0, 255, 29});
}

/// What is done with each field.
struct Work {
    bool reads, makes, writes;
};

std::optional<Work> workNamed(const std::string& name) {
    if (name == "read")
        return Work{true, false, false};
    if (name == "write")
        return Work{false, false, true};
    if (name == "floor")
        return Work{true, false, true};
    if (name == "plain")
        return Work{true, true, true};
    return std::nullopt;
}

} // namespace

int main(int argc, char** argv) {
    const std::string mode = argc > 1 ? argv[1] : "";
    if (mode == "make" && argc == 4) {
        makeFields(argv[2], std::atoi(argv[3]));
        return 0;
    }
    const std::optional<Work> work = workNamed(mode);
    if (argc < 7 || argc > 8 || !work) {
        std::fputs("usage: fields_bench make FOLDER COUNT\n"
                   "       fields_bench read|write|floor|plain FOLDER COUNT OUT EXTENSION THREADS "
                   "[PICTURE]\n",
                   stderr);
        return 2;
    }
    const std::string folder = argv[2], out = argv[4], extension = argv[5];
    cv::setNumThreads(1);
    std::filesystem::create_directories(out);
    cv::Mat finished;
    if (argc == 8)
        finished = cv::imread(argv[7]);
    else if (work->writes && !work->makes)
        finished = plainPicture(cv::imread(input(folder, 0, "dapi"), asItIs),
                                cv::imread(input(folder, 0, "actin"), asItIs));
    runThreads(std::atoi(argv[6]), std::atoi(argv[3]), [&](int field) {
        cv::Mat dapi, actin;
        if (work->reads) {
            dapi = cv::imread(input(folder, field, "dapi"), asItIs);
            actin = cv::imread(input(folder, field, "actin"), asItIs);
        }
        if (work->writes)
            cv::imwrite(out + '/' + std::to_string(field) + extension,
                        work->makes ? plainPicture(dapi, actin) : finished);
    });
}
