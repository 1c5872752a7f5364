// lumetra merge: channels in one image.

#include "apps/cli/commands.h"
#include "apps/cli/fonts.h"
#include "apps/cli/print.h"
#include "apps/cli/render_field.h"
#include "apps/common/error.h"
#include "imageio/output_conflicts.h"
#include "imageio/output_format.h"

#include <QFileInfo>

namespace lumetra {
namespace {

/// The files and channels of a command line. With settings, the nth file is the nth channel of the
/// settings, in the dye and offset that are written beside it, if there are any.
std::vector<ChannelFile> channelFiles(const QStringList& arguments,
                                      const std::optional<Settings>& settings,
                                      const DyeList& dyes) {
    std::vector<ChannelFile> files;
    if (!settings) {
        for (const QString& argument : arguments)
            files.push_back(parseChannelFile(argument, dyes));
        return files;
    }
    const auto count = static_cast<std::size_t>(arguments.size());
    if (settings->channels.size() != count)
        throw UsageError(QStringLiteral("the settings have %1, and there are %2")
                             .arg(plural(settings->channels.size(), QStringLiteral("channel")),
                                  plural(count, QStringLiteral("file"))));
    for (const QString& argument : arguments) {
        const bool hasDye = argument.contains(QLatin1Char('=')) && !QFileInfo::exists(argument);
        ChannelFile file = hasDye ? parseChannelFile(argument, dyes) : parseFile(argument);
        Channel channel = settings->channels[files.size()];
        if (hasDye) {
            channel.dye = file.channel.dye;
            channel.colour = file.channel.colour;
            channel.offset = file.channel.offset;
        }
        file.channel = channel;
        files.push_back(file);
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
    static_cast<void>(outputFormat(output)); // before any work
    const RenderSpec rendering = renderSpec(channels, options.image, options.channel);
    const auto fonts = fontsFor(rendering.annotation);
    checkOutputConflicts({options.log, output},
                         inputNames(job) << options.channel.settings << options.channel.customDyes);
    BatchLog log(options.log, false);
    FileRenderer renderer(rendering);
    const Field field{QFileInfo(output).completeBaseName(), {}, job, {}};
    const QString size = renderField(field, workOf(field, rendering), renderer, log);
    reportImage(options.image.output, size);
    return done;
}

} // namespace lumetra
