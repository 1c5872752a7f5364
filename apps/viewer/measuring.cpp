#include "apps/viewer/measuring.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>

#include <cstdio>
#include <memory>
#include <unistd.h>

namespace apps {
namespace {

/// What has been counted so far.
struct Reading {
    std::uint64_t fromCamera = 0, dropped = 0;
    std::int64_t camera = 0, rendering = 0, window = 0; ///< Nanoseconds of the processor.
    double megabytes = 0;
};

struct Run {
    Reading first, last;
    QElapsedTimer clock;
    Statistics statistics;
    std::uint64_t shown = 0, lastFrame = 0;
    std::vector<double> memory;
};

double residentMegabytes() {
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    const double pages = file.readAll().split(' ').value(1).toDouble();
    return pages * static_cast<double>(sysconf(_SC_PAGESIZE)) / (1 << 20);
}

Reading readingOf(const Viewer& viewer) {
    return {viewer.framesOfSource(),      viewer.dropped(),    viewer.processorTimeOfSource(),
            viewer.shown().processorTime, threadNanoseconds(), residentMegabytes()};
}

void report(const Run& run) {
    const double seconds = static_cast<double>(run.clock.elapsed()) / 1000;
    const auto perSecond = [&](std::uint64_t count) { return double(count) / seconds; };
    const auto cores = [&](std::int64_t Reading::*thread) {
        return double(run.last.*thread - run.first.*thread) / 1e9 / seconds;
    };
    std::printf("seconds %.1f\n", seconds);
    std::printf("frames  from the camera %.2f/s, on the screen %.2f/s, dropped %llu\n",
                perSecond(run.last.fromCamera - run.first.fromCamera), perSecond(run.shown),
                static_cast<unsigned long long>(run.last.dropped - run.first.dropped));
    const Pace pace = run.statistics.course().back();
    for (std::size_t stage = 0; stage < Pace::stages; ++stage)
        std::printf("ms      %-10s %6.2f\n", Pace::names[stage], pace.milliseconds[stage]);
    std::printf("ms      %-10s %6.2f\n", "together", pace.sum());
    std::printf("cores   camera %.2f, rendering %.2f, window %.2f\n", cores(&Reading::camera),
                cores(&Reading::rendering), cores(&Reading::window));
    std::printf("MB      ");
    for (const double megabytes : run.memory)
        std::printf(" %.0f", megabytes);
    std::printf("\n");
    std::fflush(stdout);
}

} // namespace

void measureAndQuit(Window& window, double seconds, double framesPerSecond) {
    constexpr int warmUp = 2000, memoryReadings = 10;
    Viewer& viewer = window.viewer();
    viewer.setRate(framesPerSecond);
    window.startCamera(3);
    auto run = std::make_shared<Run>();
    QTimer::singleShot(warmUp, &window, [&window, run] {
        run->first = readingOf(window.viewer());
        run->clock.start();
    });
    QObject::connect(&viewer, &Viewer::pictureChanged, &window, [&window, run] {
        const Shown& shown = window.viewer().shown();
        if (!run->clock.isValid() || shown.frame == run->lastFrame)
            return;
        run->lastFrame = shown.frame;
        run->statistics.add(shown, window.paintingTime());
        ++run->shown;
    });
    auto* memory = new QTimer(&window);
    QObject::connect(memory, &QTimer::timeout, &window,
                     [run] { run->memory.push_back(residentMegabytes()); });
    memory->start(static_cast<int>(seconds * 1000 / memoryReadings));
    QTimer::singleShot(warmUp + static_cast<int>(seconds * 1000), &window, [&window, run] {
        run->last = readingOf(window.viewer());
        run->statistics.tick(1, 0, 0);
        report(*run);
        window.close();
        QApplication::quit();
    });
}

} // namespace apps
