// lumetra list: the fields of a data set, found once for all tasks that share the work.

#include "apps/cli/commands.h"
#include "apps/cli/data_set.h"
#include "apps/cli/field_list.h"
#include "apps/cli/instrument_folder.h"
#include "apps/cli/render_spec.h"
#include "apps/common/messages.h"
#include "imageio/output_conflicts.h"

namespace lumetra {

int runList(const ListOptions& options) {
    const QString& output = options.output.file;
    checkOutput(output, {}, existingOf(options.output));
    DataSetOptions dataSet = options.dataSet;
    usePatternOfFolder(dataSet, options.output.quiet);
    const DyeList dyes = dyesWith(options.channel.customDyes);
    std::vector<Channel> channels =
        namedChannels(dataSet.channels, settingsOf(options.channel, dyes), dyes);
    const bool isProjected = options.pages.project.has_value();
    const FieldSet fields = requestedFields(dataSet, options.images, isProjected, dyes, channels);
    if (fields.empty())
        return nothingMatched;
    checkFiles(fields, {}, {output},
               {options.channel.settings, options.channel.customDyes, dataSet.filesFrom}, true);
    const FieldListHeader header{fields.size(), channels, options.images, isProjected};
    writeFile(output, existingOf(options.output),
              [&](QIODevice& device) { writeFieldList(device, header, fields); });
    if (!options.output.quiet)
        printError(fieldList(fields));
    return done;
}

} // namespace lumetra
