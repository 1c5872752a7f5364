// The files of a data set, sorted into fields of channels.
#pragma once

#include "apps/cli/file_renderer.h"
#include "apps/cli/pattern.h"
#include "apps/common/channel_spec.h"

#include <QString>
#include <QStringList>

#include <vector>

namespace lumetra {

/// One place of the specimen: a file for each channel, or one that holds all of them.
struct Field {
    QString name; ///< The texts of the placeholders, in their order, between slashes.
    Placeholders placeholders;
    RenderJob job;
    QString problem;        ///< Why it cannot be rendered; empty if nothing is known against it.
    bool isOneFile = false; ///< One file for all channels: its own channels are meant.
};

/// The fields that options ask for, in the natural order of their names: s2 before s10. Those with
/// a channel missing have a problem. Prints a message if there are none, with a file that comes
/// near, and how many files were left out since their names are not UTF-8.
/// @param isProjected  Whether files that differ in `{z}` alone are z-slices of one field.
/// @param channels     With names. Where there are none, and the pattern has no `{channel}`, they
///                     become those that the first file tells.
/// @throws UsageError if pattern and channels do not fit, or two files are one channel of one
///         field; Error if the list of files cannot be read, or the first file does not tell its
///         channels.
std::vector<Field> requestedFields(const DataSetOptions& options, bool isProjected,
                                   const DyeList& dyes, std::vector<Channel>& channels);

/// The names of all images that are read.
QStringList inputNames(const std::vector<Field>& fields);

bool hasProblems(const std::vector<Field>& fields);

/// Prints the fields with a problem, one per line, and their number.
void printProblems(const std::vector<Field>& fields);

/// Gives each field the output that a pattern asks for.
/// @throws UsageError if two fields have one output, or an output is an input of any field.
void nameOutputs(std::vector<Field>& fields, const QString& outputPattern);

/// Shard K of N of the fields; all of them if `shard` is empty.
/// @throws UsageError for anything else than `K/N`.
std::vector<Field> shardOf(const std::vector<Field>& fields, const QString& shard);

/// Understands `NAME=DYE+X+Y`.
/// @throws UsageError, Error as `parseChannel`.
Channel parseNamedChannel(const QString& text, const DyeList& dyes);

/// The channels of a data set: those named on the command line, those of the settings, or those of
/// the settings that are named; none if nobody names any.
/// @throws UsageError if two have one name, or one is not in the settings.
std::vector<Channel> namedChannels(const QStringList& texts,
                                   const std::optional<Settings>& settings, const DyeList& dyes);

/// How many fields there are, the first and the last of them: "60 fields, A01_s1 to P24_s4".
QString fieldList(const std::vector<Field>& fields);

} // namespace lumetra
