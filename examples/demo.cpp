// Puts the demo's images into one overview, and adds one that the command does not make: the sum of
// the tinted files.

#include <filesystem>
#include <iostream>

#include <QGuiApplication>

#include <opencv2/imgcodecs.hpp>

#include <lumetra>

#include "drawing.h"
#include "overview.h"
#include "program.h"

namespace {

constexpr auto usage = R"(usage: demo OUTDIR FILE=DYE FILE=DYE...

Draws overview.png in the directory OUTDIR, where the command lumetra has written composite.png,
pseudo-colour.png, custom-dye.png and, for each FILE in the colour of DYE, tinted-1.png and so on.
)";

cv::Mat readImage(const std::string& file) {
    cv::Mat read = cv::imread(file);
    if (read.empty())
        throw Error("cannot read an image from " + file);
    return read;
}

std::string tintedFile(size_t channel) { return "tinted-" + std::to_string(channel + 1) + ".png"; }

LabelledImage tintedChannel(const std::string& argument, size_t channel) {
    const size_t equals = argument.rfind('=');
    if (equals == std::string::npos)
        throw UsageError{};
    const auto file = std::filesystem::path(argument.substr(0, equals)).filename().string();
    return {QString::fromStdString(file),
            "tinted as " + QString::fromStdString(argument.substr(equals + 1)),
            readImage(tintedFile(channel))};
}

LabelledImage synthesis(size_t channels) {
    QList<QString> files;
    QList<QPoint> offsets;
    for (size_t i = 0; i < channels; ++i) {
        files << QString::fromStdString(tintedFile(i));
        offsets << QPoint();
    }
    //! [synthesis]
    cv::Mat sum;
    Lumetra::FluorescenceSynthesis(&files, &offsets, sum);
    //! [synthesis]
    writeImage("synthesis.png", sum);
    return {"Synthesis", QString("the sum of %1 image files").arg(channels), sum};
}

void drawOverview(const std::vector<std::string>& channels) {
    std::vector<LabelledImage> images{
        {"Composite", QString("the sum of %1 tinted channels").arg(channels.size()),
         readImage("composite.png")}};
    for (size_t i = 0; i < channels.size(); ++i)
        images.push_back(tintedChannel(channels[i], i));
    images.push_back(synthesis(channels.size()));
    images.push_back({"Pseudo-colour", "with the LUT oklab", readImage("pseudo-colour.png")});
    images.push_back({"Custom dye", "Heliotrope, from a file", readImage("custom-dye.png")});
    saveChart(overview(images), "overview.png");
}

} // namespace

int main(int argc, char** argv) {
    drawWithoutDisplay();
    const QGuiApplication application(argc, argv);
    return runProgram(usage, [&] {
        if (argc < 4)
            throw UsageError{};
        Lumetra::InitFluoDyeType();
        std::filesystem::current_path(argv[1]); // keeps file names short
        drawOverview({argv + 2, argv + argc});
    });
}
