// lumetra merge: channels in one image.

#include "apps/cli/commands.h"
#include "apps/cli/fonts.h"
#include "apps/cli/print.h"
#include "apps/cli/render_field.h"
#include "apps/cli/slice_files.h"
#include "apps/common/error.h"
#include "apps/common/file_channels.h"
#include "imageio/file_error.h"
#include "imageio/output_conflicts.h"

#include <QFileInfo>

namespace lumetra {
namespace {

/// The channels of a file; the file itself if it cannot be read, which is told and logged when its
/// turn comes.
std::vector<InputFile> channelsIfReadable(const InputFile& input) {
    try {
        return channelsOf(ImageFile(input.sliceFiles.value(0, input.file)), input);
    } catch (const FileError&) {
        return {input};
    }
}

/// The files and channels of a command line. With settings, the nth channel is the nth of the
/// settings, in the dye and offset that are written beside its file, if there are any.
std::vector<ChannelFile> channelFiles(const QStringList& arguments,
                                      const std::optional<Settings>& settings,
                                      const DyeList& dyes) {
    std::vector<ChannelFile> files;
    std::vector<bool> hasDye;
    for (const QString& argument : arguments) {
        const bool named = isChannelText(argument);
        ChannelFile file = named ? parseChannelFile(argument, dyes) : parseFile(argument);
        findSliceFiles(file);
        if (named) { // it is opened when its turn comes, so that a log has it
            files.push_back(file);
        } else if (settings) {
            for (const InputFile& channel : channelsIfReadable(file))
                files.push_back({channel, {}});
        } else {
            for (const ChannelFile& channel : channelFilesOf(file, dyes))
                files.push_back(channel);
        }
        hasDye.resize(files.size(), named);
    }
    if (settings && settings->channels.size() != files.size())
        throw UsageError(QStringLiteral("the settings have %1, and the files have %2")
                             .arg(plural(settings->channels.size(), QStringLiteral("channel")))
                             .arg(files.size()));
    for (std::size_t i = 0; settings && i < files.size(); ++i) {
        const Channel named = files[i].channel;
        files[i].channel = settings->channels[i];
        if (!hasDye[i])
            continue;
        files[i].channel.dye = named.dye;
        files[i].channel.colour = named.colour;
        files[i].channel.offset = named.offset;
    }
    return files;
}

} // namespace

int runMerge(const MergeOptions& options) {
    const DyeList dyes = dyesWith(options.channel.customDyes);
    const QString& output = options.image.output.file;
    RenderJob job{{}, output};
    std::vector<Channel> channels;
    for (const ChannelFile& file :
         channelFiles(options.files, settingsOf(options.channel, dyes), dyes)) {
        job.inputs.push_back(file);
        channels.push_back(file.channel);
    }
    checkImageOutput(output, options.image.output.compression);
    RenderSpec rendering = renderSpec(channels, options.image, options.channel);
    rendering.panels = panelsOf(options);
    const auto fonts = fontsFor(rendering);
    checkOutputConflicts({options.log, output},
                         inputNames(job) << options.channel.settings << options.channel.customDyes);
    BatchLog log(options.log, false);
    FileRenderer renderer(rendering);
    const Field field{QFileInfo(output).completeBaseName(), {}, job, {}};
    const RenderedFile rendered = renderField(field, workOf(field, rendering), renderer, log);
    reportImage(options.image.output, rendered.size);
    if (hasMeasuredLevels(rendering.channels))
        reportLevels(options.image.output, rendered.channels);
    return done;
}

} // namespace lumetra
