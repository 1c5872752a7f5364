// How the programs say what went wrong.
#pragma once

#include <QString>

#include <cstddef>
#include <stdexcept>

namespace apps {

/// Why something cannot be done, in one line for the user, with the name of the file concerned.
struct Failure : std::runtime_error {
    explicit Failure(const QString& reason) : std::runtime_error(reason.toStdString()) {}
    QString text() const { return QString::fromUtf8(what()); }
};

/// The request itself makes no sense.
struct BadUsage : Failure {
    using Failure::Failure;
};

/// A name of a file, or other words of the user, as a message shows them: always in one line, with
/// control characters written as escapes.
QString shown(const QString& words);

/// "1 field", "2 fields".
QString counted(std::size_t count, const QString& noun);

/// The reason that an exception carries, in one line. To be called in a catch block.
QString currentReason();

} // namespace apps
