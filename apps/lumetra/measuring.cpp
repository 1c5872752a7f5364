#include "apps/lumetra/measuring.h"

#include "apps/common/failure.h"
#include "apps/lumetra/signals.h"
#include "apps/lumetra/workers.h"

#include <memory>
#include <mutex>

namespace apps {
namespace {

/// The samples of one field, all of them or, if one cannot be read, none.
std::vector<Histogram> measureField(const Field& field, const Pages& pages,
                                    std::vector<cv::Mat>& planes) {
    const ChannelStacks stacks(field.files.inputs, pages);
    std::vector<Histogram> histograms(stacks.channels());
    for (int i = 0; i < stacks.pictures(); ++i) {
        stacks.planes(i, planes);
        for (std::size_t channel = 0; channel < planes.size(); ++channel)
            histograms[channel].add(planes[channel]);
    }
    return histograms;
}

} // namespace

DataSetLevels measureLevels(std::vector<Field>& fields, const Pages& pages, int jobs,
                            Progress& progress) {
    DataSetLevels sum;
    std::mutex mutex;
    const auto addToSum = [&](const Field& field, const std::vector<Histogram>& histograms) {
        const std::lock_guard lock(mutex);
        sum.histograms.resize(histograms.size());
        for (std::size_t channel = 0; channel < histograms.size(); ++channel) {
            try {
                sum.histograms[channel].add(histograms[channel]);
            } catch (const Failure&) { // no levels would fit both
                throw Failure(
                    QStringLiteral("%1: has another depth than other files of its channel")
                        .arg(shown(field.files.inputs[channel].file)));
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
                    throw Failure(field.problem);
                histograms = measureField(field, pages, planes);
            } catch (const Interrupted&) {
                throw;
            } catch (...) {
                field.problem = currentReason();
                return progress.fieldFailed();
            }
            addToSum(field, histograms);
            progress.fieldDone();
        };
    };
    runWorkers(jobs, fields.size(), makeWorker, [&] { progress.tick(); });
    throwIfInterrupted();
    return sum;
}

} // namespace apps
