// A list of the fields of a data set, found once for all tasks that share the work.
#pragma once

#include "apps/cli/field.h"
#include "render/channel.h"

#include <QByteArray>
#include <QFile>
#include <QString>

#include <vector>

namespace lumetra {

/// What all fields of a list have in common.
struct FieldListHeader {
    std::size_t fields = 0;
    std::vector<Channel> channels; ///< With names, dyes, colours and offsets.
    QString images;                ///< The pattern of outputs.
    bool isProjected = false;      ///< Whether `{z}` stands for z-slices of one field.
};

/// A file of JSON: a line with what all fields have in common, and then one line for each field, in
/// their order, with its number, from 1. So any part is found by its place, and the rest of the
/// file is not read. Safe from any thread.
class FieldList : public FieldSource {
public:
    /// @throws Error with the file's name, as all of this class, for what is no such list.
    explicit FieldList(const QString& file);

    const FieldListHeader& header() const { return header_; }

    /// Says which channels fields are to have, in their order.
    /// @throws UsageError unless they are those of the list.
    void useChannels(const std::vector<Channel>& channels);

    std::size_t size() const override { return header_.fields; }
    Field field(std::size_t number) const override;

    /// Reads the lines of a part.
    void prepare(std::size_t first, std::size_t last) override;

private:
    [[noreturn]] void fail(const QString& reason) const;
    QByteArray readAt(qint64 offset, qint64 count) const;
    qint64 lineFrom(qint64 offset) const;
    std::size_t numberAt(qint64 offset) const;
    qint64 offsetOf(std::size_t number) const;
    QByteArray lineOfField(std::size_t number) const;

    mutable std::mutex mutex_;
    mutable QFile file_;
    FieldListHeader header_;
    std::vector<std::size_t> order_; ///< The channel of the list for each that is used.
    qint64 begin_ = 0;               ///< Of the first field's line.
    QByteArray part_;                ///< Lines that were read.
    std::vector<qint64> lines_;      ///< Where each of them begins, and the last one ends.
    std::size_t firstOfPart_ = 0;
};

/// Writes the list of fields, whose outputs are known, to a device.
/// @throws FileError if it does not take them.
void writeFieldList(QIODevice& device, const FieldListHeader& header, const FieldSet& fields);

} // namespace lumetra
