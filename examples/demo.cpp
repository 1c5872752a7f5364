// Puts the demo's pictures into one overview, with one more that the command does not make: the sum
// of the tinted files.

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

Draws overview.png in the directory OUTDIR, in which the command lumetra has made composite.png,
pseudo-colour.png, custom-dye.png and, of each FILE in the colour of DYE, tinted-1.png and so on.
)";

cv::Mat picture(const std::string& file) {
    cv::Mat read = cv::imread(file);
    if (read.empty())
        throw Failure("cannot read a picture from " + file);
    return read;
}

std::string tintedFile(size_t channel) { return "tinted-" + std::to_string(channel + 1) + ".png"; }

LabelledPicture tintedChannel(const std::string& argument, size_t channel) {
    const size_t equals = argument.rfind('=');
    if (equals == std::string::npos)
        throw BadUsage{};
    const auto file = std::filesystem::path(argument.substr(0, equals)).filename().string();
    return {QString::fromStdString(file),
            "tinted as " + QString::fromStdString(argument.substr(equals + 1)),
            picture(tintedFile(channel))};
}

LabelledPicture synthesis(size_t channels) {
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
    writePicture("synthesis.png", sum);
    return {"Synthesis", QString("%1 files, as they are").arg(channels), sum};
}

void drawOverview(const std::vector<std::string>& channels) {
    std::vector<LabelledPicture> pictures{
        {"Composite", QString("the sum of %1 tinted channels").arg(channels.size()),
         picture("composite.png")}};
    for (size_t i = 0; i < channels.size(); ++i)
        pictures.push_back(tintedChannel(channels[i], i));
    pictures.push_back(synthesis(channels.size()));
    pictures.push_back({"Pseudo-colour", "256 even colours", picture("pseudo-colour.png")});
    pictures.push_back({"Custom dye", "Heliotrope, from a file", picture("custom-dye.png")});
    saveChart(overview(pictures), "overview.png");
}

} // namespace

int main(int argc, char** argv) {
    drawWithoutDisplay();
    const QGuiApplication application(argc, argv);
    return runProgram(usage, [&] {
        if (argc < 4)
            throw BadUsage{};
        Lumetra::InitFluoDyeType();
        std::filesystem::current_path(argv[1]); // keeps every name short and plain
        drawOverview({argv + 2, argv + argc});
    });
}
