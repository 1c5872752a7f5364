// lumetra levels: the contrast limits of a whole data set.

#include "apps/cli/commands.h"
#include "apps/cli/data_set.h"
#include "apps/cli/data_set_levels.h"
#include "apps/cli/instrument_folder.h"
#include "apps/cli/print.h"
#include "apps/common/error.h"
#include "apps/common/text.h"
#include "imageio/output_conflicts.h"

namespace lumetra {
namespace {

/// How levels were found, each way once.
QString methodText(const std::vector<ChannelSpec>& channels) {
    QStringList methods;
    for (const ChannelSpec& channel : channels)
        methods << toQt(channel.levels.text());
    methods.removeDuplicates();
    return methods.join(QStringLiteral(", "));
}

Settings settingsWith(const std::vector<ChannelSpec>& channels, const DataSetLevels& measured) {
    Settings settings;
    for (std::size_t i = 0; i < channels.size(); ++i) {
        const ChannelValues& values = measured.channels[i];
        Channel channel = channels[i].channel;
        setLimits(channel, settledLevels(channels[i].levels, values), values);
        channel.levelsBits = values.range ? 0 : values.histogram.bitDepth();
        settings.channels.push_back(channel);
    }
    settings.measured = Measurement{methodText(channels), measured.files};
    return settings;
}

} // namespace

int runLevels(const LevelsOptions& options) {
    requirePattern(options.dataSet);
    DataSetOptions dataSet = options.dataSet;
    usePatternOfFolder(dataSet, options.output.quiet);
    const DyeList dyes = dyesWith(options.customDyes);
    std::vector<Channel> channels = namedChannels(options.dataSet.channels, std::nullopt, dyes);
    static_cast<void>(channelSpecs(channels, options.contrast, {}, false)); // before any work
    const QString& output = options.output.file;
    checkOutput(output, {}, existingOf(options.output));
    const bool isProjected = options.pages.project.has_value();
    const FieldSet fields =
        requestedFields(dataSet, {}, isProjected, dyes, channels).part(QString());
    if (fields.empty())
        return nothingMatched;
    const std::vector<ChannelSpec> shown = channelSpecs(channels, options.contrast, {}, false);
    checkFiles(fields, {}, {output, options.dataSet.progress},
               {options.customDyes, options.dataSet.filesFrom, options.dataSet.fields}, true);

    FieldProblems problems;
    DataSetLevels measured;
    {
        Progress progress(QStringLiteral("measuring"), static_cast<int>(fields.size()),
                          options.output.quiet, options.dataSet.progress);
        measured = measureLevels(fields, problems, options.pages, options.dataSet.jobs, progress);
    }
    problems.print(fields);
    if (measured.files == 0)
        throw Error(QStringLiteral("no field could be measured"));
    const Settings settings = settingsWith(shown, measured);
    writeBytes(output, settingsJson(settings), existingOf(options.output));
    reportLevels(options.output, settings.channels);
    return problems.count(fields) > 0 ? failed : done;
}

} // namespace lumetra
