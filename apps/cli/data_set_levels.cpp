#include "apps/cli/data_set_levels.h"

#include "apps/cli/large_image.h"
#include "apps/cli/signals.h"
#include "apps/cli/workers.h"
#include "apps/common/error.h"
#include "render/render_error.h"

#include <algorithm>
#include <memory>
#include <mutex>

namespace lumetra {
namespace {

using AllValues = std::vector<ChannelValues>; ///< Of each channel.

/// The pixel values of one field: their counts, or their range where they first have to be brought
/// to 16 bits.
/// @param jobs  Threads for a large image.
AllValues measureField(ChannelFiles& files, std::vector<cv::Mat>& planes, int jobs) {
    AllValues values(files.channels());
    if (const auto image = LargeImage::of(files)) {
        std::vector<Histogram> histograms = image->histograms(jobs);
        for (std::size_t k = 0; k < values.size(); ++k)
            values[k].histogram = std::move(histograms[k]);
        return values;
    }
    for (int i = 0; i < files.images(); ++i) {
        files.planes(i, planes);
        for (std::size_t k = 0; k < values.size(); ++k) {
            values[k].range = files.convertedRange(k);
            if (!values[k].range)
                values[k].histogram.add(planes[k]);
        }
    }
    return values;
}

/// The counts of one field's values where they have to be brought to 16 bits.
/// @param dataSet  With the ranges of the whole data set.
AllValues countWithinRanges(ChannelFiles& files, const AllValues& dataSet) {
    AllValues values(files.channels());
    for (std::size_t k = 0; k < values.size(); ++k) {
        if (!dataSet[k].range)
            continue;
        files.setRange(k, {dataSet[k].range->low, dataSet[k].range->high});
        for (int i = 0; i < files.images(); ++i)
            values[k].histogram.add(files.gray(k, i));
    }
    return values;
}

/// @throws Error if the files of the channel have values of another type.
void addTo(ChannelValues& sum, const ChannelValues& values, const QString& file) {
    const bool isFirst = sum.histogram.isEmpty() && !sum.range;
    try {
        if (!isFirst && sum.range.has_value() != values.range.has_value())
            throw RenderError("the types differ");
        sum.histogram.add(values.histogram);
    } catch (const RenderError&) { // no levels would fit both
        throw Error(QStringLiteral("%1: has a different bit depth than other files of its channel; "
                                   "give --levels LOW:HIGH, or render them apart")
                        .arg(file));
    }
    if (values.range && sum.range)
        sum.range->add(*values.range);
    else
        sum.range = values.range;
}

/// Calls `measure` for the files of each field that has no problem, `jobs` fields at once, and
/// `add` with what it gives, one at a time. A field that cannot be read gets a problem.
template<class Measure, class Add>
void forEachField(const FieldSet& fields, FieldProblems& problems, const PageSelection& pages,
                  int jobs, Progress& progress, const Measure& measure, const Add& add) {
    std::mutex mutex;
    const auto makeWorker = [&] {
        return [&, planes = std::vector<cv::Mat>()](std::size_t i) mutable {
            Field field = fields[i];
            field.problem = problems.of(field);
            AllValues values;
            try {
                if (!field.problem.isEmpty())
                    throw Error(field.problem);
                ChannelFiles files(field.job.inputs, pages);
                values = measure(files, planes);
            } catch (const Interrupted&) {
                throw;
            } catch (...) {
                field.problem = currentExceptionText();
                problems.add(field);
                return progress.fieldFailed();
            }
            {
                const std::lock_guard lock(mutex);
                add(field, values);
            }
            progress.fieldDone();
        };
    };
    runWorkers(jobs, fields.size(), makeWorker, [&] { progress.tick(); });
    if (caughtSignal() != 0)
        throw Interrupted(QStringLiteral("stopped after measuring ") + progress.reached());
}

} // namespace

DataSetLevels measureLevels(const FieldSet& fields, FieldProblems& problems,
                            const PageSelection& pages, int jobs, Progress& progress) {
    DataSetLevels sum;
    const auto add = [&](const Field& field, const AllValues& values) {
        sum.channels.resize(values.size());
        for (std::size_t k = 0; k < values.size(); ++k)
            addTo(sum.channels[k], values[k], field.job.inputs[k].file);
        sum.files += static_cast<int>(values.size());
    };
    forEachField(
        fields, problems, pages, jobs, progress,
        [jobsOfField = jobsOfEach(jobs, fields.size())](ChannelFiles& files,
                                                        std::vector<cv::Mat>& planes) {
            return measureField(files, planes, jobsOfField);
        },
        add);

    const auto hasRange = [](const ChannelValues& channel) { return channel.range.has_value(); };
    if (std::none_of(sum.channels.begin(), sum.channels.end(), hasRange))
        return sum;
    progress.restart();
    const AllValues ranges = sum.channels;
    const auto addCounts = [&](const Field& /*field*/, const AllValues& values) {
        for (std::size_t k = 0; k < values.size(); ++k)
            if (ranges[k].range)
                sum.channels[k].histogram.add(values[k].histogram);
    };
    forEachField(
        fields, problems, pages, jobs, progress,
        [&](ChannelFiles& files, const std::vector<cv::Mat>&) {
            return countWithinRanges(files, ranges);
        },
        addCounts);
    return sum;
}

} // namespace lumetra
