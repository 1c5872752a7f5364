#include "apps/cli/merge_line.h"

#include "apps/common/command_line.h"
#include "apps/common/shell.h"
#include "apps/common/text.h"

namespace lumetra {
namespace {

/// The options that are the same for each field.
QStringList sharedArguments(const RenderSpec& rendering, const BatchOptions& options) {
    QStringList arguments;
    if (!options.log.isEmpty())
        arguments << "--log" << fileArgument(options.log);
    if (rendering.pages.number > 0)
        arguments << "--page" << QString::number(rendering.pages.number);
    if (rendering.pages.all)
        arguments << "--all-pages";
    if (rendering.pages.project)
        arguments << "--project" << toQt(projectionText(*rendering.pages.project));
    if (!options.image.framing.crop.isEmpty())
        arguments << "--crop" << options.image.framing.crop;
    if (!options.image.framing.resize.isEmpty())
        arguments << "--resize" << options.image.framing.resize;
    if (rendering.existing == Existing::replace)
        arguments << "--overwrite";
    if (!options.image.output.compression.isEmpty())
        arguments << "--compression" << options.image.output.compression;
    if (options.image.output.quiet)
        arguments << "--quiet";
    return arguments;
}

} // namespace

QString mergeLine(const Field& field, const RenderSpec& rendering, const BatchOptions& options,
                  const DyeList& builtInDyes) {
    std::vector<ChannelFile> channels;
    std::vector<QString> levels;
    for (const auto& [channel, policy] : rendering.channels) {
        channels.push_back({field.job.inputs[channels.size()], channel});
        levels.push_back(toQt(policy.text()));
    }
    return shellLine(QStringList{"lumetra"} +
                     mergeArguments(channels, levels, rendering.annotation, builtInDyes) +
                     sharedArguments(rendering, options) +
                     QStringList{"-o", fileArgument(field.job.output)});
}

} // namespace lumetra
