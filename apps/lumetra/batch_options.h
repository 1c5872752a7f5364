// What the commands for whole data sets have in common.
#pragma once

#include "apps/lumetra/data_set.h"
#include "apps/lumetra/options.h"
#include "apps/lumetra/workers.h"

#include <memory>

namespace apps {

struct BatchOptions {
    PictureOptions picture;
    std::string pattern, filesFrom, shard, levelsOver = "dataset", log, progress, output;
    std::vector<std::string> channels;
    int jobs = defaultJobs();
    bool resume = false, dryRun = false, quiet = false;
};

/// Adds pattern, channels and what else tells which files are meant, and how they are worked on.
void addDataSetOptions(BatchOptions& options, CLI::App& command);

/// The fields that the options ask for; says that there are none if so.
std::vector<Field> requestedFields(const BatchOptions& options,
                                   const std::vector<Channel>& channels);

/// The names of all files that are read: pictures, settings, dyes, the list of files.
QStringList filesRead(const BatchOptions& options, const std::vector<Field>& fields);

/// Tells the fields with a problem, one in a line, and their number.
void tellProblems(const std::vector<Field>& fields);

} // namespace apps
