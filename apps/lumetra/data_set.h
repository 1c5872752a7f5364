// The files of a data set, sorted into fields of channels.
#pragma once

#include "apps/common/channel.h"
#include "apps/lumetra/pattern.h"
#include "apps/lumetra/picture_maker.h"

#include <QString>
#include <QStringList>

#include <vector>

namespace apps {

/// One place of the specimen: a file for each channel.
struct Field {
    QString name; ///< The texts of the parts, in their order, between slashes.
    Parts parts;
    PictureFiles files;
    QString problem; ///< Why it cannot be made; empty if nothing is known against it.
};

/// What is looked for.
struct DataSetRequest {
    QString pattern;
    std::vector<Channel> channels; ///< With names.
    QString filesFrom; ///< A list of files, `-` for standard input; empty: what is there.
};

/// The fields in the order of their names. Those with a channel missing have a problem.
/// @throws BadUsage if pattern, channels and list do not make sense.
std::vector<Field> findFields(const DataSetRequest& request);

/// Gives each field the output that a pattern asks for.
/// @throws BadUsage if two fields have one output, or an output is an input of any field.
void nameOutputs(std::vector<Field>& fields, const QString& outputPattern);

/// The part K of N of the fields; all of them if `shard` is empty.
/// @throws BadUsage for anything else than `K/N`.
std::vector<Field> shardOf(const std::vector<Field>& fields, const QString& shard);

/// Understands `NAME=DYE+X+Y`.
/// @throws BadUsage, Failure as `parseChannel`.
Channel parseNamedChannel(const QString& words, const DyeList& dyes);

/// The channels of a data set: those named on the command line, those of the settings, or those of
/// the settings that are named.
/// @throws BadUsage if there are none, two have one name, or one is not in the settings.
std::vector<Channel> namedChannels(const QStringList& words,
                                   const std::optional<Settings>& settings, const DyeList& dyes);

/// The names of the fields in a line that stays readable.
QString fieldList(const std::vector<Field>& fields);

} // namespace apps
