#include "apps/cli/large_image.h"

#include "apps/cli/image_strips.h"
#include "apps/cli/sequence.h"
#include "apps/cli/signals.h"
#include "apps/cli/workers.h"
#include "imageio/png_encoder.h"
#include "render/overlap.h"
#include "render/renderer.h"

#include <algorithm>
#include <deque>
#include <memory>
#include <mutex>

namespace lumetra {
namespace {

/// Parts of planes of equal height, read strip by strip. Each file is read by one thread at a time,
/// and different files by different ones.
class PlaneStrips {
public:
    void add(OpenRows plane, cv::Rect part) { sources_.emplace_back(std::move(plane), part); }

    /// Reads the same rows of all parts.
    /// @param number  Of the strip: they are to be read once each, whatever the order of the calls.
    /// @param planes  Renewed, since others may hold what is in it.
    void read(std::size_t number, int rows, std::vector<cv::Mat>& planes) {
        planes.resize(sources_.size());
        try {
            for (std::size_t i = 0; i < sources_.size(); ++i)
                sources_[i].turn.pass(number, [&] {
                    throwIfInterrupted();
                    planes[i] = sources_[i].read(rows);
                });
        } catch (...) {
            for (Source& source : sources_)
                source.turn.abandon();
            throw;
        }
    }

private:
    struct Source {
        Source(OpenRows opened, cv::Rect wanted) : plane(std::move(opened)), part(wanted) {}

        cv::Mat read(int rows) {
            skipTo(part.y);
            const cv::Mat strip = next(rows);
            if (at == part.br().y)
                skipTo(plane.rows->size().height); // a file that is damaged there is damaged
            return strip.colRange(part.x, part.br().x);
        }

        cv::Mat next(int rows) {
            cv::Mat strip(rows, plane.rows->size().width, plane.rows->type());
            plane.rows->read(strip);
            at += rows;
            return strip;
        }

        void skipTo(int row) {
            constexpr int atOnce = 16;
            while (at < row)
                next(std::min(atOnce, row - at));
        }

        OpenRows plane;
        cv::Rect part;
        Sequence turn{};
        int at = 0; ///< The row that comes next.
    };

    std::deque<Source> sources_; // which stay where they are
};

/// The type of the image that channels give.
int imageType(const std::vector<int>& types, const std::vector<Channel>& channels) {
    std::vector<cv::Mat> pixels;
    pixels.reserve(types.size());
    for (const int type : types)
        pixels.emplace_back(1, 1, type, cv::Scalar(0));
    cv::Mat pixel;
    Renderer().render(pixels, channels, pixel);
    return pixel.type();
}

} // namespace

std::optional<LargeImage> LargeImage::of(const ChannelFiles& files) {
    LargeImage image(files);
    for (std::size_t i = 0; i < files.channels(); ++i) {
        const std::unique_ptr<PlaneRows> rows = files.rows(i);
        if (!rows || !isLarge(rows->size()) || (i > 0 && rows->size() != image.size_))
            return {};
        image.size_ = rows->size();
        image.types_.push_back(rows->type());
    }
    return image;
}

std::vector<Histogram> LargeImage::histograms(int jobs) const {
    constexpr int rowsOfStrip = 64;
    PlaneStrips reader;
    for (std::size_t i = 0; i < types_.size(); ++i)
        reader.add(files_->openRows(i), {{}, size_});
    std::vector<Histogram> sums(types_.size());
    std::mutex mutex;
    const auto makeWorker = [&] {
        return [&, planes = std::vector<cv::Mat>()](std::size_t number) mutable {
            const int top = static_cast<int>(number) * rowsOfStrip;
            reader.read(number, std::min(rowsOfStrip, size_.height - top), planes);
            for (std::size_t i = 0; i < planes.size(); ++i) {
                Histogram histogram;
                histogram.add(planes[i]);
                const std::lock_guard lock(mutex);
                sums[i].add(histogram);
            }
        };
    };
    const int strips = (size_.height - 1) / rowsOfStrip + 1;
    runWorkers(jobs, static_cast<std::size_t>(strips), makeWorker, [] {});
    throwIfInterrupted();
    return sums;
}

cv::Size LargeImage::render(const std::vector<Channel>& channels, const RenderSpec& rendering,
                            const QString& output) const {
    const Overlap overlap(size_, channels);
    PlaneStrips strips;
    std::vector<Channel> aligned = channels;
    for (std::size_t i = 0; i < channels.size(); ++i) {
        strips.add(files_->openRows(i), overlap.partOf(i));
        aligned[i].offset = {};
    }
    const auto makePainter = [&]() -> StripPainter {
        return [&, renderer = std::make_shared<Renderer>(),
                planes = std::vector<cv::Mat>()](std::size_t number, cv::Range rows) mutable {
            strips.read(number, rows.size(), planes);
            cv::Mat image;
            renderer->render(planes, aligned, image);
            return image;
        };
    };
    writeStrips(output, overlap.imageSize(), imageType(types_, aligned), rendering.pixelSize,
                rendering, makePainter);
    return overlap.imageSize();
}

} // namespace lumetra
