#include "channel.h"

#include <algorithm>
#include <numeric>

#include <QRegularExpression>
#include <QStringList>

#include <opencv2/imgcodecs.hpp>

#include <lumetra>

#include "program.h"

namespace {

/// How many letters must be put in, left out or replaced to make `b` of `a`, whatever their case.
int editDistance(const QString& a, const QString& b) {
    std::vector<int> row(static_cast<size_t>(b.size()) + 1);
    std::iota(row.begin(), row.end(), 0);
    for (const QChar letter : a) {
        int diagonal = row[0]++;
        for (size_t i = 1; i < row.size(); ++i) {
            const bool same = letter.toLower() == b[static_cast<int>(i) - 1].toLower();
            const int replaced = diagonal + (same ? 0 : 1);
            diagonal = row[i];
            row[i] = std::min({replaced, row[i] + 1, row[i - 1] + 1});
        }
    }
    return row.back();
}

/// The three names of the catalogue that are nearest to what was written, with or without what
/// looks like an offset.
QStringList nearestDyes(const QString& written, const QString& withoutOffset) {
    std::vector<std::pair<int, QString>> ranked;
    for (const QString& name : Lumetra::g_mapFluo.keys())
        ranked.emplace_back(
            std::min(editDistance(written, name), editDistance(withoutOffset, name)), name);
    std::partial_sort(ranked.begin(), ranked.begin() + 3, ranked.end());
    return {ranked[0].second, ranked[1].second, ranked[2].second};
}

int offsetPart(const QString& digits) {
    bool fits = false;
    const int value = digits.toInt(&fits);
    if (!fits)
        throw Failure("the offset " + digits.toStdString() + " is too large");
    return value;
}

std::string sizeText(const cv::Mat& picture) {
    return std::to_string(picture.cols) + " x " + std::to_string(picture.rows);
}

} // namespace

Channel parseChannel(const std::string& argument) {
    const size_t equals = argument.rfind('=');
    if (equals == std::string::npos || equals == 0)
        throw BadUsage{};
    std::string const file = argument.substr(0, equals);
    const QString written = QString::fromStdString(argument.substr(equals + 1));
    if (Lumetra::g_mapFluo.contains(written))
        return {file, written, {}};

    static const QRegularExpression offset("([+-][0-9]+)([+-][0-9]+)$");
    const auto match = offset.match(written);
    const QString dye = match.hasMatch() ? written.left(match.capturedStart()) : written;
    if (!Lumetra::g_mapFluo.contains(dye))
        throw Failure("there is no dye \"" + written.toStdString() +
                      "\"; the nearest names are \"" +
                      nearestDyes(written, dye).join("\", \"").toStdString() + '"');
    return {file, dye, {offsetPart(match.captured(1)), offsetPart(match.captured(2))}};
}

std::vector<Channel> parseChannels(int argc, const char* const* argv, int first) {
    if (argc < first + 2)
        throw BadUsage{};
    std::vector<Channel> channels;
    std::transform(argv + first, argv + argc, std::back_inserter(channels), parseChannel);
    return channels;
}

cv::Mat readGray(const std::string& file) {
    cv::Mat gray = cv::imread(file, cv::IMREAD_GRAYSCALE | cv::IMREAD_ANYDEPTH);
    if (gray.empty())
        throw Failure("cannot read a picture from " + file);
    return gray;
}

std::vector<cv::Mat> readChannels(const std::vector<Channel>& channels) {
    std::vector<cv::Mat> pictures;
    for (const Channel& channel : channels) {
        pictures.push_back(readGray(channel.file));
        if (pictures.back().size() != pictures.front().size())
            throw Failure("the pictures have different sizes: " + channels.front().file + " has " +
                          sizeText(pictures.front()) + " pixels, " + channel.file + " has " +
                          sizeText(pictures.back()));
    }
    return pictures;
}

cv::Mat toEightBits(const cv::Mat& gray) {
    if (gray.depth() == CV_8U)
        return gray;
    double darkest = 0, brightest = 0;
    cv::minMaxLoc(gray, &darkest, &brightest);
    const double scale = 255 / std::max(brightest - darkest, 1.0);
    cv::Mat eightBits;
    gray.convertTo(eightBits, CV_8U, scale, -darkest * scale);
    return eightBits;
}

void writePicture(const std::string& file, const cv::Mat& picture) {
    if (!cv::haveImageWriter(file) || !cv::imwrite(file, picture))
        throw Failure("cannot write a picture to " + file);
}
