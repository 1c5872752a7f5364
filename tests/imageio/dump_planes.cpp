// Writes what an image file holds to the standard output, for comparison with other readers: a line
// of JSON, then every plane's rows, by time, within it by z, within it by channel.
#include "imageio/image_file.h"

#include "plane_in_rows.h"
#include "platform/platform.h"

#include <opencv2/core.hpp>

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstdio>
#include <exception>
#include <stdexcept>

namespace lumetra {
namespace {

QJsonValue numberOrNull(const std::optional<double>& number) {
    return number ? QJsonValue(*number) : QJsonValue();
}

QJsonObject description(const ImageFile& file) {
    const Axes& axes = file.axes();
    const FileMetadata& metadata = file.metadata();
    QJsonArray channels, warnings;
    for (const ChannelMetadata& channel : metadata.channels) {
        QJsonArray lut;
        for (const std::uint32_t colour : channel.lut)
            lut << static_cast<qint64>(colour);
        channels << QJsonObject{{"name", channel.name},
                                {"colour", channel.colour
                                               ? QJsonValue(static_cast<qint64>(*channel.colour))
                                               : QJsonValue()},
                                {"excitation", numberOrNull(channel.excitation)},
                                {"emission", numberOrNull(channel.emission)},
                                {"lut", lut}};
    }
    for (const QString& warning : metadata.warnings)
        warnings << warning;
    return {{"axes", QJsonArray{axes.channels, axes.slices, axes.frames}},
            {"known", metadata.axesKnown},
            {"pages", file.pages()},
            {"pixelSize",
             QJsonArray{numberOrNull(metadata.pixelSizeX), numberOrNull(metadata.pixelSizeY)}},
            {"sliceDistance", numberOrNull(metadata.sliceDistance)},
            {"channels", channels},
            {"warnings", warnings}};
}

void writePlane(const cv::Mat& plane, QFile& out) {
    for (int y = 0; y < plane.rows; ++y)
        out.write(plane.ptr<char>(y), static_cast<qint64>(plane.elemSize()) * plane.cols);
}

/// A plane, which is to be the same where it can be read row by row.
cv::Mat checkedPlane(const ImageFile& file, int channel, int slice, int frame) {
    if (const auto rows = file.rows(channel, slice, frame)) {
        const cv::Mat inRows = planeInRows(*rows), plane = file.plane(channel, slice, frame);
        if (inRows.type() != plane.type() || cv::norm(inRows, plane, cv::NORM_INF) != 0)
            throw std::runtime_error("the plane is another one if it is read row by row");
    }
    return file.plane(channel, slice, frame);
}

void dump(const QString& name, QFile& out) {
    const ImageFile file(name);
    const cv::Mat first = file.plane(1, 1, 1);
    QJsonObject told = description(file);
    told["type"] = QString::fromStdString(cv::typeToString(first.type()));
    told["size"] = QJsonArray{first.rows, first.cols};
    told["inRows"] = file.rows(1, 1, 1) != nullptr;
    out.write(QJsonDocument(told).toJson(QJsonDocument::Compact) + '\n');
    const Axes axes = file.axes();
    for (int t = 1; t <= axes.frames; ++t)
        for (int z = 1; z <= axes.slices; ++z)
            for (int c = 1; c <= axes.channels; ++c)
                writePlane(checkedPlane(file, c, z, t), out);
}

} // namespace
} // namespace lumetra

int main(int count, char** arguments) {
    try {
        lumetra::writeBinary(stdout);
        QFile out;
        if (count != 2 || !out.open(stdout, QIODevice::WriteOnly))
            return 2;
        lumetra::dump(QString::fromLocal8Bit(arguments[1]), out);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
