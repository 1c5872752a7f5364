#include "apps/common/render.h"

#include "apps/common/failure.h"

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <lumetra>

#include <algorithm>
#include <cmath>
#include <ctime>
#include <memory>

namespace apps {
namespace {

int bitsOf(const cv::Mat& plane) { return plane.depth() == CV_8U ? 8 : 16; }

int typeOf(PixelForm form, bool deep) {
    if (form == PixelForm::screen)
        return CV_8UC4;
    return deep ? CV_16UC3 : CV_8UC3;
}

int stripRows(const cv::Mat& picture, int pixels) {
    return std::clamp(pixels / std::max(picture.cols, 1), 1, std::max(picture.rows, 1));
}

/// The part of all planes that every one of them covers once it is moved, in a plane that is not.
cv::Rect commonPart(cv::Size size, const std::vector<Channel>& channels) {
    const auto extremes = [&](auto part) {
        std::int64_t least = part(channels.front().offset);
        std::int64_t most = least;
        for (const Channel& channel : channels) {
            least = std::min<std::int64_t>(least, part(channel.offset));
            most = std::max<std::int64_t>(most, part(channel.offset));
        }
        return std::pair(least, most - least);
    };
    const auto [left, width] = extremes([](QPoint p) { return p.x(); });
    const auto [top, height] = extremes([](QPoint p) { return p.y(); });
    if (width >= size.width || height >= size.height)
        throw Failure(
            QStringLiteral("the offsets are so far apart that the pictures share no pixel"));
    return {static_cast<int>(left), static_cast<int>(top), size.width - static_cast<int>(width),
            size.height - static_cast<int>(height)};
}

} // namespace

std::int64_t threadNanoseconds() {
    timespec now = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return std::int64_t{1000000000} * now.tv_sec + now.tv_nsec;
}

/// Adds the time since it was last asked to a stage.
class Renderer::StageClock {
public:
    void addTo(std::int64_t& stage) {
        const std::int64_t now = threadNanoseconds();
        stage += now - last_;
        last_ = now;
    }

private:
    std::int64_t last_ = threadNanoseconds();
};

/// What a picture is made of, and where in each plane.
struct Renderer::Canvas {
    const std::vector<cv::Mat>& planes;
    const std::vector<Channel>& channels;
    cv::Rect common;
};

void Renderer::prepare(const std::vector<cv::Mat>& planes, const std::vector<Channel>& channels) {
    if (planes.empty() || planes.size() != channels.size())
        throw Failure(QStringLiteral("there are no channels to show"));
    visible_.clear();
    images_.clear();
    noOffsets_.clear();
    lanes_.resize(std::max(lanes_.size(), planes.size()));
    for (std::size_t i = 0; i < planes.size(); ++i) {
        CV_Assert(planes[i].type() == CV_8UC1 || planes[i].type() == CV_16UC1);
        if (planes[i].size() != planes.front().size())
            throw Failure(QStringLiteral("the pictures have different sizes"));
        if (!channels[i].visible)
            continue;
        visible_.push_back(i);
        noOffsets_ << QPoint();
        if (channels[i].levels)
            lanes_[i].table.set(bitsOf(planes[i]), *channels[i].levels, channels[i].gamma);
    }
}

cv::Mat& Renderer::tint(const cv::Mat& part, const Channel& channel, Lane& lane, bool isLast) {
    cv::Mat source = part;
    StageClock clock;
    if (channel.levels) {
        if (lane.eightBits.rows < part.rows || lane.eightBits.cols != part.cols)
            lane.eightBits.create(part.rows, part.cols, CV_8UC1);
        source = lane.eightBits.rowRange(0, part.rows);
        lane.table.apply(part, source);
        clock.addTo(times_.eightBits);
    }
    cv::Mat& tinted = isLast ? lane.lastTinted : lane.tinted;
    const QColor& colour = channel.colour;
    Lumetra::Dye(source, tinted, colour.red(), colour.green(), colour.blue(), false, false);
    clock.addTo(times_.dye);
    return tinted;
}

/// Brings a strip into its part of the picture while it is in the cache.
void Renderer::finish(const cv::Mat& strip, cv::Mat part, StageClock& clock) {
    if (part.channels() == 4) {
        cv::cvtColor(strip, part, cv::COLOR_BGR2BGRA);
        return clock.addTo(times_.screen);
    }
    strip.copyTo(part);
    clock.addTo(times_.composite);
}

void Renderer::renderStrip(const Canvas& canvas, int firstRow, cv::Mat part, bool isLast) {
    images_.clear();
    for (const std::size_t i : visible_) {
        const Channel& channel = canvas.channels[i];
        const cv::Rect seen(channel.offset.x() - canvas.common.x,
                            channel.offset.y() - canvas.common.y + firstRow, part.cols, part.rows);
        cv::Mat& tinted = tint(canvas.planes[i](seen), channel, lanes_[i], isLast);
        if (tinted.depth() != part.depth())
            tinted.convertTo(tinted, part.depth(), 257); // equal shares of full scale
        images_ << &tinted;
    }
    StageClock clock;
    if (images_.size() < 2) // the sum of one
        return finish(*images_.front(), part, clock);
    const std::unique_ptr<cv::Mat> sum(Lumetra::Composite(&images_, &noOffsets_));
    CV_Assert(sum);
    clock.addTo(times_.composite);
    finish(*sum, part, clock);
}

void Renderer::render(const std::vector<cv::Mat>& planes, const std::vector<Channel>& channels,
                      cv::Mat& picture, PixelForm form) {
    constexpr int stripPixels = 1 << 16;
    times_ = {};
    prepare(planes, channels);
    const Canvas canvas{planes, channels, commonPart(planes.front().size(), channels)};
    const bool deep = std::any_of(visible_.begin(), visible_.end(), [&](std::size_t i) {
        return planes[i].depth() == CV_16U && !channels[i].levels;
    });
    if (deep && form == PixelForm::screen)
        throw Failure(QStringLiteral("samples of 16 bits need levels to be seen"));
    picture.create(canvas.common.size(), typeOf(form, deep));
    if (visible_.empty()) {
        picture.setTo(cv::Scalar(0, 0, 0, 255));
        return;
    }
    const int rows = stripRows(picture, stripPixels);
    for (int first = 0; first < picture.rows; first += rows) {
        const int last = std::min(first + rows, picture.rows);
        renderStrip(canvas, first, picture.rowRange(first, last), last - first < rows);
    }
}

void Renderer::setRangeTable(int bits, LevelRange levels, double gamma) {
    const std::size_t size = bits == 8 ? 256 : 65536;
    if (rangeTable_.size() == size && tableLevels_ == levels && tableGamma_ == gamma)
        return;
    rangeTable_.resize(size);
    tableLevels_ = levels;
    tableGamma_ = gamma;
    const double span = std::max(levels.high - levels.low, 1);
    for (std::size_t i = 0; i < size; ++i) {
        const int sample = std::clamp(static_cast<int>(i), levels.low, levels.high);
        const double share = std::pow((sample - levels.low) / span, gamma);
        rangeTable_[i] = static_cast<std::uint16_t>(levels.low + std::lround(span * share));
    }
}

void Renderer::renderPseudo(const cv::Mat& plane, std::optional<LevelRange> levels, double gamma,
                            const QVector<QColor>& slotColours, cv::Mat& picture, PixelForm form) {
    constexpr int stripPixels = 1 << 20, endRows = 2;
    CV_Assert(plane.type() == CV_8UC1 || plane.type() == CV_16UC1);
    if (!levels) {
        double smallest = 0, largest = 0;
        cv::minMaxLoc(plane, &smallest, &largest);
        levels = LevelRange{static_cast<int>(smallest), static_cast<int>(largest)};
    }
    times_ = {};
    StageClock clock;
    setRangeTable(bitsOf(plane), *levels, gamma);
    picture.create(plane.size(), typeOf(form, false));

    // The colours are spread over the range of the samples that are there, so two more rows hold
    // the ends of the range that is wanted. 16 bits, because all slots can be reached with them.
    const int rows = stripRows(picture, stripPixels);
    const int columns = plane.cols;
    const std::uint16_t* const table = rangeTable_.data();
    deep_.create(rows + endRows, plane.cols, CV_16UC1);
    pixels_.create(rows, plane.cols, CV_8UC3);
    for (int first = 0; first < plane.rows; first += rows) {
        const int count = std::min(rows, plane.rows - first);
        cv::Mat strip = deep_.rowRange(0, count + endRows);
        for (int y = 0; y < count; ++y) {
            auto* out = strip.ptr<std::uint16_t>(y);
            const auto lookUp = [&](auto* in) {
                for (int x = 0; x < columns; ++x)
                    out[x] = table[in[x]];
            };
            if (plane.depth() == CV_8U)
                lookUp(plane.ptr<unsigned char>(first + y));
            else
                lookUp(plane.ptr<std::uint16_t>(first + y));
        }
        strip.row(count).setTo(levels->low);
        strip.row(count + 1).setTo(levels->high);
        cv::Mat& coloured = count < rows ? lastColoured_ : coloured_;
        Lumetra::Pseudo(strip, coloured, slotColours);
        cv::Mat pixels = pixels_.rowRange(0, count);
        coloured.rowRange(0, count).convertTo(pixels, CV_8U, 1 / 256.0);
        clock.addTo(times_.dye);
        finish(pixels, picture.rowRange(first, first + count), clock);
    }
}

} // namespace apps
