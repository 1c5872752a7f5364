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
int editDistance(QString const& a, QString const& b) {
    std::vector<int> row(static_cast<size_t>(b.size()) + 1);
    std::iota(row.begin(), row.end(), 0);
    for (QChar const letter : a) {
        int diagonal = row[0]++;
        for (size_t i = 1; i < row.size(); ++i) {
            bool const same = letter.toLower() == b[static_cast<int>(i) - 1].toLower();
            int const replaced = diagonal + (same ? 0 : 1);
            diagonal = row[i];
            row[i] = std::min({replaced, row[i] + 1, row[i - 1] + 1});
        }
    }
    return row.back();
}

/// The three names of the catalogue that are nearest to what was written, with or without what
/// looks like an offset.
QStringList nearestDyes(QString const& written, QString const& withoutOffset) {
    std::vector<std::pair<int, QString>> ranked;
    for (QString const& name : Lumetra::g_mapFluo.keys())
        ranked.emplace_back(
            std::min(editDistance(written, name), editDistance(withoutOffset, name)), name);
    std::partial_sort(ranked.begin(), ranked.begin() + 3, ranked.end());
    return {ranked[0].second, ranked[1].second, ranked[2].second};
}

int offsetPart(QString const& digits) {
    bool fits = false;
    int const value = digits.toInt(&fits);
    if (!fits)
        throw Failure("the offset " + digits.toStdString() + " is too large");
    return value;
}

std::string sizeText(cv::Mat const& picture) {
    return std::to_string(picture.cols) + " x " + std::to_string(picture.rows);
}

} // namespace

Channel parseChannel(std::string const& argument) {
    size_t const equals = argument.rfind('=');
    if (equals == std::string::npos || equals == 0)
        throw BadUsage{};
    std::string const file = argument.substr(0, equals);
    QString const written = QString::fromStdString(argument.substr(equals + 1));
    if (Lumetra::g_mapFluo.contains(written))
        return {file, written, {}};

    static QRegularExpression const offset("([+-][0-9]+)([+-][0-9]+)$");
    auto const match = offset.match(written);
    QString const dye = match.hasMatch() ? written.left(match.capturedStart()) : written;
    if (!Lumetra::g_mapFluo.contains(dye))
        throw Failure("there is no dye \"" + written.toStdString() +
                      "\"; the nearest names are \"" +
                      nearestDyes(written, dye).join("\", \"").toStdString() + '"');
    return {file, dye, {offsetPart(match.captured(1)), offsetPart(match.captured(2))}};
}

std::vector<Channel> parseChannels(int argc, char const* const* argv, int first) {
    if (argc < first + 2)
        throw BadUsage{};
    std::vector<Channel> channels;
    std::transform(argv + first, argv + argc, std::back_inserter(channels), parseChannel);
    return channels;
}

cv::Mat readGray(std::string const& file) {
    cv::Mat gray = cv::imread(file, cv::IMREAD_GRAYSCALE | cv::IMREAD_ANYDEPTH);
    if (gray.empty())
        throw Failure("cannot read a picture from " + file);
    return gray;
}

std::vector<cv::Mat> readChannels(std::vector<Channel> const& channels) {
    std::vector<cv::Mat> pictures;
    for (Channel const& channel : channels) {
        pictures.push_back(readGray(channel.file));
        if (pictures.back().size() != pictures.front().size())
            throw Failure("the pictures have different sizes: " + channels.front().file + " has " +
                          sizeText(pictures.front()) + " pixels, " + channel.file + " has " +
                          sizeText(pictures.back()));
    }
    return pictures;
}

cv::Mat toEightBits(cv::Mat const& gray) {
    if (gray.depth() == CV_8U)
        return gray;
    double darkest = 0, brightest = 0;
    cv::minMaxLoc(gray, &darkest, &brightest);
    double const scale = 255 / std::max(brightest - darkest, 1.0);
    cv::Mat eightBits;
    gray.convertTo(eightBits, CV_8U, scale, -darkest * scale);
    return eightBits;
}

void writePicture(std::string const& file, cv::Mat const& picture) {
    if (!cv::haveImageWriter(file) || !cv::imwrite(file, picture))
        throw Failure("cannot write a picture to " + file);
}
