// The fields that the files of a data set make.
#pragma once

#include "apps/cli/field.h"
#include "apps/cli/pattern.h"
#include "render/channel.h"

#include <QString>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lumetra {

/// The placeholder of channels in patterns.
inline QString channelPlaceholder() { return QStringLiteral("channel"); }

/// Files that match a pattern, sorted into fields, in the natural order of their names: s2 before
/// s10. Kept as one run of bytes, so that a million names take less than a hundred megabytes.
class FoundFields : public FieldSource {
public:
    /// @param isProjected  Whether files that differ in `{z}` alone are z-slices of one field.
    FoundFields(const Pattern& pattern, bool isProjected);

    /// Adds a file, if it matches; false if it does not.
    bool add(const QString& file);

    /// Says what the channels are that `{channel}` stands for, before files are added; or that each
    /// file holds, before fields are made.
    void nameChannels(const std::vector<Channel>& channels);

    /// To be called when all files were added.
    /// @throws UsageError if two files are one channel of one field.
    void sort();

    /// The file that is first by its name; empty if none matches.
    const QString& firstFile() const { return firstFile_; }

    /// Whether each file holds all channels.
    bool areOneFile() const { return !hasChannels_; }

    /// Says where files hold the channels.
    /// @param inputs  One for each channel, without the file's name.
    void selectChannels(const std::vector<InputFile>& inputs) { selected_ = inputs; }

    /// How outputs are named. Otherwise fields have none.
    void setOutputs(const Pattern& outputs) { outputs_ = outputs; }

    std::size_t size() const override { return fields_.size(); }
    Field field(std::size_t number) const override;
    QStringList inputs(std::size_t number) const override;

private:
    /// A file in `bytes_`: a key whose order is that of fields, channels and z-slices, and the name
    /// after it.
    struct File {
        std::size_t begin;
        std::uint32_t field, key,
            end; ///< Where the field's part of the key, the key, the name end.
    };

    std::string_view part(const File& file, std::size_t begin, std::size_t end) const {
        return std::string_view(bytes_).substr(file.begin + begin, end - begin);
    }
    QString nameOf(const File& file) const;
    std::size_t endOf(std::size_t field) const;
    std::size_t channelOf(const File& file) const;
    void requireOneFileEach() const;
    InputFile inputOf(std::size_t firstFile, std::size_t endFile, std::size_t channel,
                      Placeholders placeholders) const;

    Pattern pattern_;
    std::optional<Pattern> outputs_;
    QStringList channels_, fieldNames_; ///< Names of channels; placeholders that tell fields apart.
    std::vector<InputFile> selected_;   ///< What of its file is meant, for each channel.
    bool hasChannels_, hasSlices_;
    std::string bytes_;
    std::vector<File> files_;
    std::vector<std::uint32_t> fields_; ///< The first file of each.
    QString firstFile_;
    QStringList texts_; ///< Of the last file, whose memory is used again.
};

} // namespace lumetra
