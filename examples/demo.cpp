// Makes the demo's pictures of a specimen: what each operation of libLumetra does to its channels,
// and all of it in one overview.

#include <filesystem>
#include <iostream>

#include <QFileInfo>
#include <QGuiApplication>

#include <opencv2/imgcodecs.hpp>

#include <lumetra>

#include "channel.h"
#include "colour_table.h"
#include "drawing.h"
#include "overview.h"
#include "program.h"

namespace {

constexpr auto usage = R"(usage: demo OUTDIR FILE=DYE[+X+Y] FILE=DYE[+X+Y]...

Makes pictures of the channels FILE, dyed with DYE and moved by X and Y as two_channels does, in the
directory OUTDIR, in which two_channels has already written their composite.png.
)";

QString fileName(const Channel& channel) {
    return QFileInfo(QString::fromLocal8Bit(channel.file.c_str())).fileName();
}

cv::Mat tinted(const cv::Mat& gray, int red, int green, int blue) {
    cv::Mat levels = toEightBits(gray), picture;
    Lumetra::Dye(levels, picture, red, green, blue, true, false);
    return picture;
}

std::string path(const std::string& file) { return std::filesystem::absolute(file).string(); }

/// Writes a picture of the demo and says so.
LabelledPicture kept(const std::string& file, const QString& title, const QString& explanation,
                     const cv::Mat& picture) {
    writePicture(file, picture);
    std::cout << path(file) << ": " << title.toStdString() << ", " << explanation.toStdString()
              << '\n';
    return {title, explanation, picture};
}

std::string tintedFile(size_t channel) { return "tinted-" + std::to_string(channel + 1) + ".png"; }

LabelledPicture tintedChannel(const Channel& channel, const cv::Mat& gray,
                              const std::string& file) {
    FLUO_DYE_TYPE const dye = Lumetra::g_mapFluo[channel.dye];
    return kept(file, fileName(channel), "tinted as " + channel.dye,
                tinted(gray, dye.nColorR, dye.nColorG, dye.nColorB));
}

/// A channel in 16 bits: as it is, or its 8 bits spread over the larger range.
LabelledPicture pseudoColoured(const cv::Mat& gray) {
    //! [pseudo-colour]
    cv::Mat deep, picture;
    gray.convertTo(deep, CV_16U, gray.depth() == CV_8U ? 257 : 1);
    Lumetra::Pseudo(deep, picture, evenColours());
    //! [pseudo-colour]
    return kept("pseudo-colour.png", "Pseudo-colour", "16 bits, 256 even colours", picture);
}

/// Merges the tinted files; `composite` is the picture that the same channels gave in memory.
LabelledPicture synthesis(const std::vector<Channel>& channels, const cv::Mat& composite) {
    QList<QString> files;
    QList<QPoint> offsets;
    for (size_t i = 0; i < channels.size(); ++i) {
        files << QString::fromStdString(tintedFile(i));
        offsets << channels[i].offset;
    }
    //! [synthesis]
    cv::Mat picture;
    Lumetra::FluorescenceSynthesis(&files, &offsets, picture);
    //! [synthesis]
    const bool same = picture.size() == composite.size() && picture.type() == composite.type() &&
                      cv::norm(picture, composite, cv::NORM_INF) == 0;
    return kept("synthesis.png", "Synthesis",
                QString("%1 files, %2 the composite")
                    .arg(channels.size())
                    .arg(same ? "equal to" : "unlike"),
                picture);
}

/// A channel in a colour that comes out of a user's own dye file.
LabelledPicture customDyed(const cv::Mat& gray) {
    //! [custom dyes]
    const QString name = "Heliotrope", file = "custom-dyes.ini";
    QMap<QString, QColor> ours{{name, QColor(196, 116, 255)}}, loaded;
    Lumetra::SaveCustomDyeType(ours, file);
    Lumetra::LoadCustomDyeType(loaded, file);
    //! [custom dyes]
    if (loaded != ours)
        throw Failure("cannot keep custom dyes in " + file.toStdString());
    const QColor colour = loaded[name];
    return kept("custom-dye.png", "Custom dye", name + ", from a file",
                tinted(gray, colour.red(), colour.green(), colour.blue()));
}

void makePictures(const std::filesystem::path& directory, const std::vector<Channel>& channels) {
    const std::vector<cv::Mat> grays = readChannels(channels);
    std::error_code error;
    std::filesystem::current_path(directory, error); // keeps every name below short and plain
    cv::Mat const composite = cv::imread("composite.png");
    if (error || composite.empty())
        throw Failure("cannot read the composite.png of " + directory.string());

    std::vector<LabelledPicture> pictures{
        {"Composite", QString("the sum of %1 tinted channels").arg(channels.size()), composite}};
    for (size_t i = 0; i < channels.size(); ++i)
        pictures.push_back(tintedChannel(channels[i], grays[i], tintedFile(i)));
    pictures.push_back(synthesis(channels, composite));
    pictures.push_back(pseudoColoured(grays.back()));
    pictures.push_back(customDyed(grays.back()));

    saveChart(overview(pictures), "overview.png");
    std::cout << path("overview.png") << ": all of them\n";
}

} // namespace

int main(int argc, char** argv) {
    drawWithoutDisplay();
    const QGuiApplication application(argc, argv);
    return runProgram(usage, [&] {
        if (argc < 2)
            throw BadUsage{};
        Lumetra::InitFluoDyeType();
        makePictures(argv[1], parseChannels(argc, argv, 2));
    });
}
