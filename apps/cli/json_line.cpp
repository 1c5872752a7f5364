#include "apps/cli/json_line.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace lumetra {
namespace {

bool isSpace(char letter) {
    return letter == ' ' || letter == '\t' || letter == '\r' || letter == '\n';
}

std::size_t skipSpaces(std::string_view line, std::size_t at) {
    while (at < line.size() && isSpace(line[at]))
        ++at;
    return at;
}

/// Behind the text that begins with the quote at `at`.
std::size_t endOfText(std::string_view line, std::size_t at) {
    for (++at; at < line.size() && line[at] != '"'; ++at)
        if (line[at] == '\\')
            ++at;
    return std::min(at + 1, line.size());
}

/// Behind the value that begins at `at`: at a comma or a closing brace.
std::size_t endOfValue(std::string_view line, std::size_t at) {
    for (int depth = 0; at < line.size();) {
        const char letter = line[at];
        if (letter == '"') {
            at = endOfText(line, at);
            continue;
        }
        if (depth == 0 && (letter == ',' || letter == '}'))
            break;
        if (letter == '{' || letter == '[')
            ++depth;
        else if (letter == '}' || letter == ']')
            --depth;
        ++at;
    }
    return at;
}

} // namespace

std::string_view memberOf(std::string_view line, std::string_view key) {
    std::size_t at = skipSpaces(line, 0);
    if (at == line.size() || line[at] != '{')
        return {};
    while (true) {
        const std::size_t name = skipSpaces(line, at + 1);
        if (name >= line.size() || line[name] != '"')
            return {};
        const std::size_t endOfName = endOfText(line, name);
        const std::size_t colon = skipSpaces(line, endOfName);
        if (colon >= line.size() || line[colon] != ':')
            return {};
        const std::size_t value = skipSpaces(line, colon + 1);
        at = endOfValue(line, value);
        if (line.substr(name + 1, endOfName - name - 2) == key) {
            std::size_t end = at;
            while (end > value && isSpace(line[end - 1]))
                --end;
            return line.substr(value, end - value);
        }
        if (at >= line.size() || line[at] != ',')
            return {};
    }
}

QByteArray textOf(std::string_view member) {
    if (member.size() < 2 || member.front() != '"' || member.back() != '"')
        return {};
    const auto size = static_cast<int>(member.size());
    if (member.find('\\') == std::string_view::npos)
        return {member.data() + 1, size - 2};
    const QByteArray list = '[' + QByteArray(member.data(), size) + ']';
    return QJsonDocument::fromJson(list).array().at(0).toString().toUtf8();
}

QByteArray lineOf(const QJsonObject& object) {
    return QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
}

QJsonObject parsedLine(const QByteArray& line) { return QJsonDocument::fromJson(line).object(); }

} // namespace lumetra
