#include "rivals.h"

#include <lumetra>

#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include <QDir>
#include <QTemporaryDir>

#include <memory>

namespace {

/// Channels of one picture, a few pixels apart.
struct Stack {
    Stack(int type, int side, int count) {
        for (int k = 0; k < count; ++k) {
            images.push_back(noise(type, side, k));
            offsets.append(QPoint(k, 2 * k));
        }
    }

    /// The part of image k that all images cover.
    cv::Mat part(int k) const {
        const auto last = static_cast<int>(images.size()) - 1;
        const cv::Mat& image = images[static_cast<std::size_t>(k)];
        return image(cv::Rect(k, 2 * k, image.cols - last, image.rows - 2 * last));
    }

    std::vector<cv::Mat> images;
    QList<QPoint> offsets;
};

void composite(Stack& stack) {
    QList<cv::Mat*> pointers;
    for (cv::Mat& image : stack.images)
        pointers.append(&image);
    const std::unique_ptr<cv::Mat> canvas(Lumetra::Composite(&pointers, &stack.offsets));
}

void cloneAndAdd(const Stack& stack) {
    cv::Mat sum = stack.part(0).clone();
    for (int k = 1; k < static_cast<int>(stack.images.size()); ++k)
        cv::add(sum, stack.part(k), sum);
}

void compareComposite(const char* name, int type, int count) {
    const double bytes = (count + 1.0) * static_cast<double>(CV_ELEM_SIZE(type));
    compare({name,
             bytes,
             {1.6, 1.0},
             [=](int side) {
                 return [stack = Stack(type, side, count)]() mutable { composite(stack); };
             },
             [=](int side) { return [stack = Stack(type, side, count)] { cloneAndAdd(stack); }; }});
}

/// Display colours of DAPI and FITC.
const cv::Scalar dapi(255, 107, 0);
const cv::Scalar fitc(0, 255, 29);

std::function<void()> dyeAndComposite(int side) {
    return [first = noise(CV_8UC1, side, 0), second = noise(CV_8UC1, side, 1),
            stack = Stack(CV_8UC3, side, 2)]() mutable {
        Lumetra::Dye(first, stack.images[0], 0, 107, 255, true, false);
        Lumetra::Dye(second, stack.images[1], 29, 255, 0, true, false);
        composite(stack);
    };
}

void scaledColour(const cv::Mat& gray, const cv::Scalar& colour, cv::Mat& dst) {
    cv::Mat stretched;
    cv::normalize(gray, stretched, 0, 255, cv::NORM_MINMAX);
    std::vector<cv::Mat> planes(3);
    for (int k = 0; k < 3; ++k)
        stretched.convertTo(planes[static_cast<std::size_t>(k)], -1, colour[k] / 255);
    cv::merge(planes, dst);
}

std::function<void()> scaleMergeAndAdd(int side) {
    return [first = noise(CV_8UC1, side, 0), second = noise(CV_8UC1, side, 1),
            stack = Stack(CV_8UC3, side, 2)]() mutable {
        scaledColour(first, dapi, stack.images[0]);
        scaledColour(second, fitc, stack.images[1]);
        cloneAndAdd(stack);
    };
}

/// Two channel files in a folder that lasts as long as they are read.
struct Files {
    explicit Files(int side) : folder(std::make_shared<QTemporaryDir>()) {
        for (int k = 0; k < 2; ++k) {
            paths.append(folder->filePath(QString::number(k) + QStringLiteral(".png")));
            cv::Mat image;
            cv::blur(noise(CV_8UC3, side, k), image, {15, 15}); // as compressible as a picture
            cv::imwrite(paths.last().toStdString(), image);
            offsets.append(QPoint(k, 2 * k));
        }
    }

    std::shared_ptr<QTemporaryDir> folder;
    QList<QString> paths;
    QList<QPoint> offsets;
};

std::function<void()> compositeFiles(int side) {
    return [files = Files(side)]() mutable {
        const std::unique_ptr<cv::Mat> canvas(Lumetra::Composite(&files.paths, &files.offsets));
    };
}

std::function<void()> readFiles(int side) {
    return [files = Files(side)] {
        for (const QString& path : files.paths)
            const cv::Mat image = cv::imread(path.toStdString());
    };
}

} // namespace

void registerComposite() {
    compareComposite("Composite 2 x 8UC3", CV_8UC3, 2);
    compareComposite("Composite 4 x 8UC3", CV_8UC3, 4);
    compareComposite("Composite 2 x 16UC3", CV_16UC3, 2);
    compareComposite("Composite 4 x 16UC3", CV_16UC3, 4);
    // Each Dye reads 1 byte and writes 3; Composite reads 6 and writes 3.
    compare({"Two-channel picture", 17, {3, 0.6}, dyeAndComposite, scaleMergeAndAdd});
    compare({"Composite of 2 PNG files", 9, {0, 1.1}, compositeFiles, readFiles, {512, 2048}});
}
