// Lines of JSON, of which a file has a million.
#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>

#include <cstddef>
#include <string_view>

namespace lumetra {

inline std::string_view viewOf(const QByteArray& bytes) {
    return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

/// The text of an object's member as it stands in the line, quotes included; empty if there is no
/// such member, or the line is no object. Members of members do not count.
///
/// This is a tenth of the work of understanding the line.
std::string_view memberOf(std::string_view line, std::string_view key);

/// The text that a member stands for; empty if it is no text.
QByteArray textOf(std::string_view member);

QByteArray lineOf(const QJsonObject& object);

/// Null if the line is no object.
QJsonObject parsedLine(const QByteArray& line);

} // namespace lumetra
