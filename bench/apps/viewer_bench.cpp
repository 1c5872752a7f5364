// How many frames a second the viewer's classes show, and what processor time their threads take: a
// simulated camera of 2048 x 2048 pixels, 16 bits, rendering with auto-contrast in every frame, and
// painting of the image.

#include "apps/viewer/canvas.h"
#include "apps/viewer/file_opener.h"
#include "apps/viewer/frame_feed.h"
#include "apps/viewer/render_loop.h"
#include "apps/viewer/simulated_camera.h"

#include <opencv2/core.hpp>

#include <QApplication>
#include <QElapsedTimer>
#include <QTimer>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace {

constexpr auto usage =
    "usage: viewer_bench [SECONDS [RATE [CHANNELS]]]\n"
    "Measures for SECONDS (60) at RATE frames/s (30; 0 for as many as there can be).\n";

/// Processor time of the thread that asks, in nanoseconds.
std::int64_t threadTime() {
    timespec now = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return std::int64_t{1000000000} * now.tv_sec + now.tv_nsec;
}

/// What has been plural since the start.
struct Counts {
    std::uint64_t fromCamera = 0, shown = 0, dropped = 0;
    std::int64_t camera = 0, rendering = 0, painting = 0; ///< Nanoseconds.
};

class ViewerBench {
public:
    ViewerBench(int channels, double framesPerSecond);

    Counts counts() const {
        return {fromCamera_, shown_, loop_.dropped(), camera_, rendering_, painting_};
    }

private:
    void showImage();

    std::atomic<std::uint64_t> fromCamera_{0};
    std::atomic<std::int64_t> camera_{0}, rendering_{0};
    std::uint64_t shown_ = 0;
    std::int64_t painting_ = 0;
    lumetra::Canvas canvas_;
    lumetra::RenderedFrame frame_;
    lumetra::RenderLoop loop_;
    lumetra::FrameFeed feed_;
};

ViewerBench::ViewerBench(int channels, double framesPerSecond)
    : feed_(std::make_shared<lumetra::SimulatedCamera>(
                lumetra::SimulatedCameraOptions{channels, 2048, {}}),
            [this](lumetra::Frame& frame) {
                loop_.offer(frame);
                ++fromCamera_;
                camera_ = threadTime();
            }) {
    const lumetra::DyeList dyes;
    lumetra::DisplaySettings settings;
    settings.measuring.isLive = true;
    for (int i = 0; i < channels; ++i)
        settings.channels.push_back(lumetra::guessedChannel({}, i, dyes));
    loop_.setSettings(settings);
    QObject::connect(
        &loop_, &lumetra::RenderLoop::ready, &loop_, [this] { rendering_ = threadTime(); },
        Qt::DirectConnection);
    QObject::connect(&loop_, &lumetra::RenderLoop::ready, &canvas_, [this] { showImage(); });
    canvas_.resize(920, 780);
    canvas_.show();
    feed_.start(framesPerSecond);
}

void ViewerBench::showImage() {
    if (!loop_.take(frame_))
        return;
    const std::int64_t start = threadTime();
    canvas_.setImages(frame_.screens, false);
    painting_ += threadTime() - start;
    ++shown_;
}

void report(const Counts& from, const Counts& to, double seconds) {
    const auto count = [](std::uint64_t a, std::uint64_t b) { return static_cast<double>(b - a); };
    const double frames = count(from.fromCamera, to.fromCamera),
                 shown = count(from.shown, to.shown);
    std::printf("%.1f s: %.2f frames/s from the camera, %.2f shown, %.0f dropped\n", seconds,
                frames / seconds, shown / seconds, count(from.dropped, to.dropped));
    const auto line = [&](const char* thread, std::int64_t nanoseconds, double of) {
        const double milliseconds = static_cast<double>(nanoseconds) / 1e6;
        std::printf("%-10s %7.2f ms a frame, %5.2f of a core\n", thread, milliseconds / of,
                    milliseconds / 1000 / seconds);
    };
    line("camera", to.camera - from.camera, frames);
    line("rendering", to.rendering - from.rendering, shown);
    line("painting", to.painting - from.painting, shown);
}

double argument(const QStringList& arguments, int index, double byDefault) {
    if (index >= arguments.size())
        return byDefault;
    bool isNumber = false;
    const double number = arguments[index].toDouble(&isNumber);
    if (isNumber && number >= 0)
        return number;
    std::fputs(usage, stderr);
    std::exit(2);
}

} // namespace

int main(int argc, char** argv) {
    constexpr int warmUp = 3000; // milliseconds, in which the camera draws its specimen
    const QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    const double seconds = argument(arguments, 1, 60), rate = argument(arguments, 2, 30);
    const int channels = static_cast<int>(argument(arguments, 3, 3));
    cv::setNumThreads(1); // as the viewer has it: one core is for the camera
    ViewerBench bench(channels, rate);
    Counts from;
    QElapsedTimer clock;
    QTimer::singleShot(warmUp, [&] {
        from = bench.counts();
        clock.start();
    });
    QTimer::singleShot(warmUp + static_cast<int>(seconds * 1000), [&] {
        report(from, bench.counts(), static_cast<double>(clock.elapsed()) / 1000);
        QApplication::quit();
    });
    return QApplication::exec();
}
