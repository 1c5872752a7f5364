// How the programs say what went wrong.
#pragma once

#include <QString>

#include <cstddef>
#include <stdexcept>

namespace lumetra {

/// Why something cannot be done, in one sentence for the user, with the name of the file concerned.
struct Error : std::runtime_error {
    explicit Error(const QString& reason) : std::runtime_error(reason.toStdString()) {}
    QString text() const { return QString::fromUtf8(what()); }
};

/// The request itself makes no sense.
struct UsageError : Error {
    using Error::Error;
};

/// A name of a file, or another text of the user's, in one line: control characters are written as
/// escapes.
QString escaped(const QString& text);

/// "1 field", "2 fields".
QString plural(std::size_t count, const QString& noun);

/// The reason that an exception carries, for a message. To be called in a catch block.
QString currentExceptionText();

} // namespace lumetra
