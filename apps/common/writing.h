// Picture files, written whole or not at all.
#pragma once

#include <QByteArray>
#include <QSaveFile>
#include <QString>
#include <QStringList>

#include <opencv2/core/mat.hpp>

#include <cstdint>
#include <memory>

namespace apps {

enum class Format { png, tiff, jpeg };

/// The format that a file's extension asks for; PNG for `-`, the standard output.
/// @throws Failure for any other extension.
Format formatOf(const QString& file);

/// Where a file is: absolute, with the links of its folders followed, though it may not be there.
QString placeOf(const QString& file);

/// What all names of one file have in common, whether it is there or not.
QString identityOf(const QString& file);

/// @throws Failure if a file that is to be written is one of those that are read, or another one of
///         those that are written. Names that are empty, `-`, a pipe or a device are passed over.
void keepApart(const QStringList& written, const QStringList& read);

/// @throws Failure if an output would replace one of the inputs, anything that is not a file, or,
///         unless `overwrite`, any file.
void checkOutput(const QString& output, const QStringList& inputs, bool overwrite);

/// A file that is seen under its name only when it is complete.
///
/// Until then it is called `.NAME.part.XXXXXX`, so that what is left over after a power cut
/// can be told from everything else.
class WholeFile {
public:
    /// @throws Failure with the file's name, as all of this class; also if what has the name is no
    ///         file.
    explicit WholeFile(const QString& file);

    /// The file while it is written. Nothing is kept of it unless `commit` is called.
    QSaveFile& device() { return device_; }

    void write(const char* bytes, qint64 count);
    void commit();
    [[noreturn]] void fail(const QString& reason) const;

private:
    QString file_;
    QSaveFile device_;
};

/// Removes what a program that was killed left of these files. Nobody may be writing them.
void removeLeftovers(const QStringList& files);

/// Writes bytes to a file, or to the standard output for `-`.
/// @throws Failure with the file's name.
void writeBytes(const QString& file, const char* bytes, std::size_t count);

/// Writes a picture of one or three channels of 8 or 16 bits to a file in the format of its
/// extension, or as PNG to the standard output for `-`.
/// @throws Failure with the file's name; for 16 bits in a JPEG file.
void writePicture(const QString& file, const cv::Mat& picture);

/// Writes a TIFF file of many pages, one after another.
class StackWriter {
public:
    /// @param expectedBytes  About how large all pages are.
    /// @throws Failure with the file's name, as all of this class.
    StackWriter(const QString& file, std::uint64_t expectedBytes);
    ~StackWriter();
    StackWriter(const StackWriter&) = delete;
    StackWriter& operator=(const StackWriter&) = delete;

    /// Appends a page of one or three channels of 8 or 16 bits.
    void add(const cv::Mat& page);

    /// Makes the file seen.
    void commit();

private:
    struct Tiff;
    std::unique_ptr<Tiff> tiff_;
};

} // namespace apps
