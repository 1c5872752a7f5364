// The files of a data set, sorted into fields of channels.
#pragma once

#include "apps/cli/field.h"
#include "apps/cli/options.h"
#include "apps/common/channel_spec.h"
#include "apps/common/settings.h"

#include <QString>
#include <QStringList>

#include <vector>

namespace lumetra {

/// @throws UsageError unless there is either a pattern or a list of fields.
void requirePattern(const DataSetOptions& options);

/// The fields that options ask for, in the natural order of their names: s2 before s10; or those of
/// a list. Those with a channel missing have a problem. Prints a message if there are none, with a
/// file that comes near, and how many files were left out since their names are not UTF-8.
/// @param outputs      A pattern for the outputs of fields that are not listed; may be empty.
/// @param isProjected  Whether files that differ in `{z}` alone are z-slices of one field.
/// @param channels     With names. Where there are none, and the pattern has no `{channel}`, they
///                     become those that the first file tells, or the list.
/// @throws UsageError if pattern and channels do not fit, or two files are one channel of one
///         field; Error if a list cannot be read, or the first file does not tell its channels.
FieldSet requestedFields(const DataSetOptions& options, const QString& outputs, bool isProjected,
                         const DyeList& dyes, std::vector<Channel>& channels);

/// Looks at what is written before there is any work: outputs have names of images, nothing is
/// written that is read, and nothing twice. Files are seen through all of their names.
/// @param fields     With outputs, or without.
/// @param written    Other files that are written, and `read`, that are read; names may be empty.
/// @param inputsToo  Whether the inputs of fields count, which may be looked at then.
/// @throws UsageError if two fields have one output, or an output is an input of any field;
///         FileError for the other files, and as `checkImageOutput`.
void checkFiles(const FieldSet& fields, const QString& compression, const QStringList& written,
                const QStringList& read, bool inputsToo);

/// Understands `NAME=DYE+X+Y`.
/// @throws UsageError, Error as `parseChannel`.
Channel parseNamedChannel(const QString& text, const DyeList& dyes);

/// The channels of a data set: those named on the command line, those of the settings, or those of
/// the settings that are named; none if nobody names any.
/// @throws UsageError if two have one name, or one is not in the settings.
std::vector<Channel> namedChannels(const QStringList& texts,
                                   const std::optional<Settings>& settings, const DyeList& dyes);

} // namespace lumetra
