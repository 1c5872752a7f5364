// A live application small enough to read in a minute: a camera's thread renders two channels with
// their dyes, and a window shows the newest image. The camera here films noise with a bright bar.

#include <QApplication>
#include <QImage>
#include <QLabel>
#include <QPixmap>

#include <atomic>
#include <thread>
#include <vector>

#include <opencv2/core.hpp>

#include <lumetra_render.hpp>

namespace {

/// Waits for the camera: two planes of 12 bits in 16, the second one a little to the right.
void grab(std::vector<cv::Mat>& planes) {
    static int exposures = 0;
    std::this_thread::sleep_for(std::chrono::milliseconds(33));
    const int left = 100 + ++exposures % 300;
    planes.resize(2);
    for (cv::Mat& plane : planes) {
        plane.create(512, 512, CV_16UC1);
        cv::randu(plane, 200, 400);
    }
    planes[0].colRange(left, left + 60) += 3000;
    planes[1].colRange(left + 9, left + 69) += 2000;
}

} // namespace

//! [live]
int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QLabel window;
    window.resize(512, 512);
    window.show();

    const lumetra::DyeList dyes;
    std::vector<lumetra::Channel> channels(2);
    channels[0].colour = dyes.at("DAPI").colour;
    channels[1].colour = dyes.at("FITC").colour;
    channels[1].offset = {9, 0}; // pixels to the left
    for (lumetra::Channel& channel : channels)
        channel.levels = lumetra::ContrastLimits{200, 4095};

    std::atomic<bool> isOpen{true};
    std::thread camera([&] {
        lumetra::Renderer renderer; // keeps its memory from frame to frame
        std::vector<cv::Mat> planes;
        cv::Mat screen;
        while (isOpen) {
            grab(planes);
            renderer.render(planes, channels, screen, lumetra::PixelFormat::bgra);
            const QImage image(screen.data, screen.cols, screen.rows, int(screen.step),
                               QImage::Format_RGB32); // on the pixels of `screen`
            QMetaObject::invokeMethod(&window, [&window, shown = image.copy()] {
                window.setPixmap(QPixmap::fromImage(shown));
            });
        }
    });
    const int status = application.exec();
    isOpen = false;
    camera.join();
    return status;
}
//! [live]
