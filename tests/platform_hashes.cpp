// Prints a hash of what every operation gives, over types, sizes and options. scripts/check-arm64
// compares the lines of different processors, compilers and generations of Qt.

#include "vantrel/vantrel.h"

#include <lumetra>

#include <opencv2/imgcodecs.hpp>

#include <QTemporaryDir>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <limits>
#include <memory>
#include <random>
#include <sstream>

namespace {

const int depths[] = {CV_8U, CV_8S, CV_16U, CV_16S, CV_32S, CV_32F, CV_64F, CV_16F};
const int channelCounts[] = {1, 3, 4};
const cv::Size sizes[] = {{1, 1}, {17, 3}, {100, 7}, {2051, 2}, {0, 0}};
const bool either[] = {false, true};

class Hash {
public:
    void add(const void* bytes, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i)
            value = (value ^ static_cast<const unsigned char*>(bytes)[i]) * 0x100000001b3;
    }

    void add(int number) { add(&number, sizeof number); }

    void add(const cv::Mat& image) {
        for (const int number : {image.rows, image.cols, image.channels()})
            add(number);
        for (int y = 0; y < image.rows; ++y)
            add(image.ptr(y), static_cast<std::size_t>(image.cols) * image.elemSize());
    }

    std::uint64_t value = 0xcbf29ce484222325;
};

/// Prints a line, which says what it is about, with the hash that a function adds to; what the
/// function throws is a result as well.
template<class Work>
void report(const std::string& subject, Work work) {
    Hash hash;
    std::string suffix;
    try {
        work(hash);
    } catch (const cv::Exception&) {
        suffix = " exception";
    }
    std::printf("%s %016llx%s\n", subject.c_str(), static_cast<unsigned long long>(hash.value),
                suffix.c_str());
}

template<class... Parts>
std::string line(const Parts&... parts) {
    std::ostringstream text;
    ((text << parts << ' '), ...);
    return text.str();
}

/// Of each depth a third of the samples is any pattern of bits, of floating-point depths with all
/// that these can be; a third lies a little around 8 and 16 bits; and a third is at an edge.
cv::Mat testImage(cv::Size size, int type) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    // clang-format off
    static const double edges[] = {
        0, -0.0, 0.5, 1.5, 2.5, -0.5, 126.5, 127.5, 254.5, 255.5, 32767.5, 65534.5, 65535.5,
        16777217, 2147483583, 2147483646.5, 2147483647, 2147483648, -2147483648.5, -2147483649,
        4294967295, 4294967551, 9223372036854775808., 1e19, -1e19, 1e300, -1e300, 1e-310,
        infinity, -infinity, nan};
    // clang-format on
    cv::Mat image(size, type);
    std::mt19937_64 random(static_cast<unsigned>(size.width * 100 + type));
    const auto store = [](auto sample, uchar* at) { std::memcpy(at, &sample, sizeof sample); };
    const auto limited = [](double value, double low, double high) {
        return value >= low ? (value <= high ? value : high) : low; // the lowest if not a number
    };
    for (int y = 0; y < image.rows; ++y)
        for (int i = 0; i < image.cols * image.channels(); ++i) {
            const std::uint64_t bits = random(), choice = bits >> 32;
            const double value = bits % 3 == 1 ? static_cast<double>(choice % 700000) / 10 - 2000
                                               : edges[choice % std::size(edges)];
            uchar* const at = image.ptr(y) + static_cast<std::size_t>(i) * image.elemSize1();
            if (bits % 3 == 0 || image.depth() == CV_8U || image.depth() == CV_8S) {
                std::memcpy(at, &bits, image.elemSize1());
                continue;
            }
            switch (image.depth()) {
            case CV_16U:
                store(static_cast<std::uint16_t>(limited(value, 0, 65535)), at);
                break;
            case CV_16S:
                store(static_cast<std::int16_t>(limited(value, -32768, 32767)), at);
                break;
            case CV_32S:
                store(static_cast<std::int32_t>(limited(value, INT32_MIN, INT32_MAX)), at);
                break;
            case CV_32F:
                store(static_cast<float>(value), at);
                break;
            case CV_64F:
                store(value, at);
                break;
            default:
                store(cv::float16_t(static_cast<float>(value)), at);
            }
        }
    return image;
}

/// Every image with what there is to say of it. usage: forEachImage(function(image, description))
template<class Work>
void forEachImage(Work work) {
    for (const int depth : depths)
        for (const int channels : channelCounts)
            for (const cv::Size size : sizes) {
                const int type = CV_MAKETYPE(depth, channels);
                work(testImage(size, type),
                     line(cv::typeToString(type), size.width, 'x', size.height));
            }
}

void reportCatalogue() {
    Lumetra::InitFluoDyeType();
    report("catalogue", [](Hash& hash) {
        const auto addName = [&hash](const QString& name) {
            const QByteArray text = name.toUtf8();
            hash.add(text.constData(), static_cast<std::size_t>(text.size()));
        };
        for (auto dye = Lumetra::g_mapFluo.cbegin(); dye != Lumetra::g_mapFluo.cend(); ++dye) {
            addName(dye.key());
            hash.add(&dye.value(), sizeof dye.value());
        }
        for (const QString& name : Lumetra::m_vecSldFluo)
            addName(name);
    });
}

void reportLevels() {
    for (const cv::Size size : sizes) {
        report(line("measured levels", size.width, 'x', size.height), [size](Hash& hash) {
            unsigned short gray[2] = {};
            Lumetra::AutoCountHistoGray(testImage(size, CV_8UC1).data, size.width, size.height,
                                        gray, gray + 1);
            TS_LEVELS colour{};
            Lumetra::AutoCountHistoRGB24(testImage(size, CV_8UC3).data, size.width, size.height,
                                         colour);
            hash.add(gray, sizeof gray);
            hash.add(&colour, sizeof colour);
        });
        for (unsigned short low = 0; low < 256; low += 15)
            for (unsigned short high = 0; high < 256; high += 17)
                report(
                    line("stretched levels", size.width, 'x', size.height, low, high),
                    [size, low, high](Hash& hash) {
                        cv::Mat gray = testImage(size, CV_8UC1), colour = testImage(size, CV_8UC3);
                        Lumetra::StretchLevelsGray(low, high, gray.data, size.width, size.height);
                        const auto middle = static_cast<unsigned short>((low + high) / 2);
                        Lumetra::StretchLevelsRGB24({low, high, middle, high, low, 255},
                                                    colour.data, size.width, size.height);
                        hash.add(gray);
                        hash.add(colour);
                    });
    }
}

void reportColouring() {
    const cv::Vec3i colours[] = {{0, 107, 255}, {29, 255, 0}, {255, 1, 254}, {-5, 300, 70000}};
    QVector<QColor> rainbow;
    for (int i = 0; i < 256; ++i)
        rainbow.append(QColor(i, (7 * i) % 256, 255 - i));
    forEachImage([&](const cv::Mat& source, const std::string& image) {
        for (const cv::Vec3i& colour : colours)
            for (const bool automatic : either)
                for (const bool dominant : either)
                    report(line("Dye", image, colour, automatic, dominant), [&](Hash& hash) {
                        cv::Mat src = source.clone(), dst;
                        Lumetra::Dye(src, dst, colour[0], colour[1], colour[2], automatic,
                                     dominant);
                        hash.add(dst);
                    });
        for (const int count : {256, 100, 0})
            report(line("Pseudo", image, count), [&](Hash& hash) {
                cv::Mat src = source.clone(), dst;
                Lumetra::Pseudo(src, dst, rainbow.mid(0, count));
                hash.add(dst);
            });
    });
}

void reportComposites() {
    const QTemporaryDir folder;
    const QString path = folder.filePath("channel.png");
    forEachImage([&](const cv::Mat& source, const std::string& image) {
        const QList<QPoint> shifts = {{0, 0}, {3, -1}, {1, 0}};
        for (const int count : {2, 3}) {
            QList<QPoint> offsets = shifts.mid(0, count);
            report(line("Composite", image, count), [&](Hash& hash) {
                cv::Mat images[] = {source.clone(), source.clone(), source.clone()};
                QList<cv::Mat*> list;
                for (int k = 0; k < count; ++k)
                    list.append(&images[k]);
                const std::unique_ptr<cv::Mat> canvas(Lumetra::Composite(&list, &offsets));
                hash.add(canvas ? *canvas : cv::Mat());
                for (const cv::Mat& left : images)
                    hash.add(left);
            });
            if (source.empty() || (source.depth() != CV_8U && source.depth() != CV_16U) ||
                !cv::imwrite(path.toStdString(), source))
                continue;
            QList<QString> files;
            for (int k = 0; k < count; ++k)
                files.append(path);
            report(line("Composite of files", image, count), [&](Hash& hash) {
                const std::unique_ptr<cv::Mat> canvas(Lumetra::Composite(&files, &offsets));
                hash.add(canvas ? *canvas : cv::Mat());
                cv::Mat synthesis;
                Lumetra::FluorescenceSynthesis(&files, &offsets, synthesis);
                hash.add(synthesis);
            });
        }
    });
}

void reportColourModes() {
    forEachImage([](const cv::Mat& source, const std::string& image) {
        for (const int depth : depths)
            report(line("ConvertColorMode", image, "to", cv::depthToString(depth)),
                   [&](Hash& hash) {
                       cv::Mat converted;
                       Vantrel::ConvertColorMode(source, converted, CV_MAKETYPE(depth, 3));
                       hash.add(converted);
                   });
    });
}

} // namespace

int main() {
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    reportCatalogue();
    reportLevels();
    reportColouring();
    reportComposites();
    reportColourModes();
}
