// What the tests of the viewer share: a window of its own for each, images in a folder that goes
// away, and cameras that do what real ones do on bad days.
#pragma once

#include "apps/common/custom_dyes.h"
#include "apps/common/text.h"
#include "apps/viewer/simulated_camera.h"
#include "apps/viewer/window.h"
#include "tests/render/planes.h"

#include <opencv2/imgcodecs.hpp>
#include <tiffio.h>

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <atomic>
#include <condition_variable>
#include <mutex>

namespace lumetra {

/// The suite of this program.
std::unique_ptr<QObject> makeSuite();

/// A folder of images.
class Folder {
public:
    QString path(const QString& name) const { return dir_.filePath(name); }

    /// Writes an image, or a stack, and gives its path.
    QString write(const QString& name, const cv::Mat& image) const {
        cv::imwrite(path(name).toStdString(), image);
        return path(name);
    }
    QString writeStack(const QString& name, const std::vector<cv::Mat>& pages) const {
        cv::imwritemulti(path(name).toStdString(), pages);
        return path(name);
    }
    QString writeBytes(const QString& name, const QByteArray& bytes) const {
        QFile file(path(name));
        if (file.open(QIODevice::WriteOnly))
            file.write(bytes);
        return path(name);
    }
    /// Writes two channels, DAPI and "Membrane" in orange, of three z-slices at two time points,
    /// with pixels of 0.25 µm. Their values are 100 · channel + 10 · slice + time point.
    QString writeHyperstack(const QString& name) const {
        const char metadata[] =
            "<?xml version=\"1.0\"?><OME><Image ID=\"Image:0\"><Pixels ID=\"Pixels:0\" "
            "DimensionOrder=\"XYCZT\" Type=\"uint16\" SizeX=\"32\" SizeY=\"24\" SizeC=\"2\" "
            "SizeZ=\"3\" SizeT=\"2\" PhysicalSizeX=\"0.25\" PhysicalSizeY=\"0.25\"><Channel "
            "ID=\"Channel:0:0\" Name=\"DAPI\"/><Channel ID=\"Channel:0:1\" Name=\"Membrane\" "
            "Color=\"-8388353\"/><TiffData/></Pixels></Image></OME>";
        TIFF* tiff = TIFFOpen(path(name).toUtf8().constData(), "w");
        for (int page = 0; tiff && page < 12; ++page) {
            const int channel = page % 2 + 1, slice = page / 2 % 3 + 1, frame = page / 6 + 1;
            const cv::Mat plane(24, 32, CV_16UC1,
                                cv::Scalar::all(100 * channel + 10 * slice + frame));
            TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, 32);
            TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, 24);
            TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 16);
            TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
            TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, 24);
            if (page == 0)
                TIFFSetField(tiff, TIFFTAG_IMAGEDESCRIPTION, metadata);
            TIFFWriteEncodedStrip(tiff, 0, plane.data, 24 * 32 * 2);
            TIFFWriteDirectory(tiff);
        }
        TIFFClose(tiff);
        return path(name);
    }
    QByteArray read(const QString& name) const {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

private:
    QTemporaryDir dir_;
};

/// A camera whose every frame is written in the test.
class ScriptedCamera : public FrameSource {
public:
    using Script = std::function<void(int exposure, Frame& frame)>;
    explicit ScriptedCamera(Script script, int bits = 0)
        : script_(std::move(script)), bits_(bits) {}

    void grab(Frame& frame) override { script_(++exposures_, frame); }
    int bitDepth() const override { return bits_; }
    void cancel() override {
        const std::lock_guard lock(mutex_);
        isCancelled_ = true;
        changed_.notify_all();
    }
    /// Waits as a camera does whose cable was pulled out.
    void stall() {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this] { return isCancelled_; });
    }

private:
    Script script_;
    int bits_, exposures_ = 0;
    std::mutex mutex_;
    std::condition_variable changed_;
    bool isCancelled_ = false;
};

/// Planes of one value each.
inline std::vector<cv::Mat> flatPlanes(int count, cv::Size size, int value) {
    std::vector<cv::Mat> planes;
    planes.reserve(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i)
        planes.emplace_back(size, CV_16UC1, cv::Scalar::all(value));
    return planes;
}

inline Channel channelOf(const QColor& colour, std::optional<ContrastLimits> levels = {}) {
    Channel channel;
    channel.colour = toColour(colour);
    channel.levels = levels;
    return channel;
}

/// The size of the image that is shown; 0 x 0 if there is none.
inline cv::Size shownSize(const Viewer& viewer) {
    const auto& screens = viewer.rendered().screens;
    return screens.empty() ? cv::Size() : screens.back().size();
}

/// Waits until files are open and their image is shown.
inline bool waitForImage(Viewer& viewer) {
    constexpr int patience = 60000; // milliseconds: the simulated camera draws its specimen first
    return QTest::qWaitFor([&] { return !viewer.isBusy() && !viewer.rendered().screens.empty(); },
                           patience);
}

} // namespace lumetra
