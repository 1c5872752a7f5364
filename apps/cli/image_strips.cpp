#include "apps/cli/image_strips.h"

#include "apps/cli/sequence.h"
#include "apps/cli/signals.h"
#include "apps/cli/workers.h"
#include "imageio/png_encoder.h"
#include "imageio/tiff_writer.h"

#include <algorithm>

namespace lumetra {
namespace {

/// Does something with a strip that is painted, in any thread.
using StripSink = std::function<void(std::size_t number, const cv::Mat& strip)>;

void runStrips(cv::Size size, int rowsOfStrip, int jobs,
               const std::function<StripPainter()>& makePainter, const StripSink& sink) {
    const int count = (size.height - 1) / rowsOfStrip + 1;
    const auto makeWorker = [&] {
        return [&, paint = makePainter()](std::size_t number) {
            const int top = static_cast<int>(number) * rowsOfStrip;
            const int rows = std::min(rowsOfStrip, size.height - top);
            sink(number, paint(number, {top, top + rows}));
        };
    };
    runWorkers(jobs, static_cast<std::size_t>(count), makeWorker, [] {});
    throwIfInterrupted();
}

/// Does a strip's part of the work that others wait for.
template<class Work>
void orAbandon(Sequence& sequence, const Work& work) {
    try {
        work();
    } catch (...) {
        sequence.abandon();
        throw;
    }
}

/// As a painter that tells those who wait for its strip if there will be none.
StripPainter careful(StripPainter paint, Sequence& writing) {
    return [paint = std::move(paint), &writing](std::size_t number, cv::Range rows) {
        cv::Mat strip;
        orAbandon(writing, [&] { strip = paint(number, rows); });
        return strip;
    };
}

} // namespace

bool canBeWrittenInStrips(const QString& output) {
    return outputFormat(output) != OutputFormat::jpeg;
}

void writeStrips(const QString& output, cv::Size size, int type, std::optional<double> pixelSize,
                 const RenderSpec& rendering, const std::function<StripPainter()>& makePainter) {
    Sequence writing;
    const auto makeCareful = [&] { return careful(makePainter(), writing); };
    if (outputFormat(output) == OutputFormat::png)
        return writeFile(output, rendering.existing, [&](QIODevice& device) {
            PngStrips file(size, type, device, pixelSize);
            runStrips(size, PngStrips::rowsOf(size, type), rendering.jobs, makeCareful,
                      [&](std::size_t number, const cv::Mat& rows) {
                          PngStrips::Strip strip;
                          orAbandon(writing, [&] {
                              strip = PngStrips::encode(rows, static_cast<int>(number));
                          });
                          writing.pass(number, [&] { file.add(strip); });
                      });
            file.finish();
        });
    TiffWriter file(output, rendering.existing,
                    static_cast<std::uint64_t>(size.width) *
                        static_cast<std::uint64_t>(size.height) * CV_ELEM_SIZE(type),
                    pixelSize, rendering.compression);
    file.begin(size, type);
    constexpr int together = 16; // strips of the file, to wait for one another less often
    const int rows = std::min(size.height, TiffWriter::rowsOfStrip(size, type) * together);
    runStrips(size, rows, rendering.jobs, makeCareful,
              [&](std::size_t number, const cv::Mat& strip) {
                  writing.pass(number, [&] { file.addRows(strip); });
              });
    file.commit();
}

} // namespace lumetra
