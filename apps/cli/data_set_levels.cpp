#include "apps/cli/data_set_levels.h"

#include "apps/cli/signals.h"
#include "apps/cli/workers.h"
#include "apps/common/error.h"
#include "render/render_error.h"

#include <memory>
#include <mutex>

namespace lumetra {
namespace {

/// The pixel values of one field, all of them or, if one cannot be read, none.
std::vector<Histogram> measureField(const Field& field, const PageSelection& pages,
                                    std::vector<cv::Mat>& planes) {
    ChannelFiles files(field.job.inputs, pages);
    std::vector<Histogram> histograms(files.channels());
    for (int i = 0; i < files.images(); ++i) {
        files.planes(i, planes);
        for (std::size_t channel = 0; channel < planes.size(); ++channel)
            histograms[channel].add(planes[channel]);
    }
    for (std::size_t channel = 0; channel < histograms.size(); ++channel)
        if (files.convertedRange(channel)) // each field by its own range
            throw Error(QStringLiteral("%1: has values that are neither 8- nor 16-bit unsigned, "
                                       "which share no counts: give --levels LOW:HIGH")
                            .arg(files.file(channel).file()));
    return histograms;
}

} // namespace

DataSetLevels measureLevels(std::vector<Field>& fields, const PageSelection& pages, int jobs,
                            Progress& progress) {
    DataSetLevels sum;
    std::mutex mutex;
    const auto addToSum = [&](const Field& field, const std::vector<Histogram>& histograms) {
        const std::lock_guard lock(mutex);
        sum.histograms.resize(histograms.size());
        for (std::size_t channel = 0; channel < histograms.size(); ++channel) {
            try {
                sum.histograms[channel].add(histograms[channel]);
            } catch (const RenderError&) { // no levels would fit both
                throw Error(
                    QStringLiteral("%1: has a different bit depth than other files of its channel; "
                                   "give --levels LOW:HIGH, or render them apart")
                        .arg(field.job.inputs[channel].file));
            }
        }
        sum.files += static_cast<int>(histograms.size());
    };
    const auto makeWorker = [&] {
        return [&, planes = std::vector<cv::Mat>()](std::size_t i) mutable {
            Field& field = fields[i];
            std::vector<Histogram> histograms;
            try {
                if (!field.problem.isEmpty())
                    throw Error(field.problem);
                histograms = measureField(field, pages, planes);
            } catch (const Interrupted&) {
                throw;
            } catch (...) {
                field.problem = currentExceptionText();
                return progress.fieldFailed();
            }
            addToSum(field, histograms);
            progress.fieldDone();
        };
    };
    runWorkers(jobs, fields.size(), makeWorker, [&] { progress.tick(); });
    if (caughtSignal() != 0)
        throw Interrupted(QStringLiteral("stopped after measuring ") + progress.reached());
    return sum;
}

} // namespace lumetra
