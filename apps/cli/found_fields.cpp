#include "apps/cli/found_fields.h"

#include "apps/cli/natural_order.h"
#include "apps/cli/slice_files.h"
#include "apps/common/error.h"
#include "apps/common/text.h"

#include <algorithm>
#include <limits>

namespace lumetra {
namespace {

constexpr std::size_t bytesOfChannel = 2; // its number, the larger byte first

} // namespace

FoundFields::FoundFields(const Pattern& pattern, bool isProjected)
    : pattern_(pattern), hasChannels_(pattern.names().contains(channelPlaceholder())),
      hasSlices_(isProjected && pattern.names().contains(slicePlaceholder())) {
    for (const QString& name : pattern.names())
        if (name != channelPlaceholder() && !(hasSlices_ && name == slicePlaceholder()))
            fieldNames_ << name;
}

void FoundFields::nameChannels(const std::vector<Channel>& channels) {
    channels_.clear();
    for (const Channel& channel : channels)
        channels_ << toQt(channel.name);
    selected_.resize(channels.size());
}

bool FoundFields::add(const QString& file) {
    if (!pattern_.match(file, texts_))
        return false;
    if (firstFile_.isEmpty() || compareNaturally(file, firstFile_) < 0)
        firstFile_ = file;
    const auto textOf = [&](const QString& placeholder) {
        return texts_[static_cast<int>(pattern_.names().indexOf(placeholder))];
    };
    const std::size_t begin = bytes_.size();
    const auto length = [&] { return static_cast<std::uint32_t>(bytes_.size() - begin); };
    File found{begin, 0, 0, 0};
    for (const QString& name : fieldNames_)
        appendNaturalKey(bytes_, textOf(name));
    found.field = length();
    const auto channel = hasChannels_ ? channels_.indexOf(textOf(channelPlaceholder())) : 0;
    bytes_ += static_cast<char>(channel >> 8);
    bytes_ += static_cast<char>(channel & 255);
    if (hasSlices_)
        appendNaturalKey(bytes_, textOf(slicePlaceholder()));
    found.key = length();
    bytes_ += file.toStdString();
    found.end = length();
    files_.push_back(found);
    if (files_.size() > std::numeric_limits<std::uint32_t>::max())
        throw Error(QStringLiteral("there are more than 4 thousand million files"));
    return true;
}

void FoundFields::sort() {
    const auto all = [this](const File& file) { return part(file, 0, file.end); };
    std::sort(files_.begin(), files_.end(),
              [&](const File& a, const File& b) { return all(a) < all(b); });
    const auto isSame = [&](const File& a, const File& b) { return all(a) == all(b); };
    files_.erase(std::unique(files_.begin(), files_.end(), isSame), files_.end());
    requireOneFileEach();
    for (std::size_t i = 0; i < files_.size(); ++i)
        if (i == 0 ||
            part(files_[i - 1], 0, files_[i - 1].field) != part(files_[i], 0, files_[i].field))
            fields_.push_back(static_cast<std::uint32_t>(i));
}

void FoundFields::requireOneFileEach() const {
    const auto isSame = [this](const File& a, const File& b) {
        return part(a, 0, a.key) == part(b, 0, b.key);
    };
    const auto two = std::adjacent_find(files_.begin(), files_.end(), isSame);
    if (two == files_.end())
        return;
    QStringList texts;
    const char* at = bytes_.data() + two->begin;
    for (int i = 0; i < static_cast<int>(fieldNames_.size()); ++i)
        texts << textOfNaturalKey(at);
    throw UsageError(
        QStringLiteral("%1 and %2 are both %3: give {*} or {**} a name, such as {site}, where "
                       "it tells fields apart")
            .arg(nameOf(*two), nameOf(*(two + 1)),
                 texts.isEmpty() ? QStringLiteral("the same channel of the same field")
                                 : QStringLiteral("the same channel of field %1")
                                       .arg(texts.join(QLatin1Char('/')))));
}

QString FoundFields::nameOf(const File& file) const {
    const std::string_view name = part(file, file.key, file.end);
    return QString::fromUtf8(name.data(), static_cast<int>(name.size()));
}

std::size_t FoundFields::channelOf(const File& file) const {
    const std::string_view number = part(file, file.field, file.field + bytesOfChannel);
    return std::size_t{static_cast<std::uint8_t>(number[0])} << 8 |
           static_cast<std::uint8_t>(number[1]);
}

/// The files of a channel as an image reads them, among those of its field.
InputFile FoundFields::inputOf(std::size_t firstFile, std::size_t endFile, std::size_t channel,
                               Placeholders placeholders) const {
    InputFile input = selected_[channel];
    for (std::size_t i = firstFile; i < endFile; ++i) {
        if (hasChannels_ && channelOf(files_[i]) != channel)
            continue;
        if (hasSlices_)
            input.sliceFiles << nameOf(files_[i]);
        else
            input.file = nameOf(files_[i]);
    }
    if (hasSlices_ && !input.sliceFiles.isEmpty()) {
        if (hasChannels_)
            placeholders[channelPlaceholder()] = channels_[static_cast<int>(channel)];
        input.file = pattern_.narrowed(placeholders);
    }
    return input;
}

/// Behind the files of a field.
std::size_t FoundFields::endOf(std::size_t field) const {
    return field + 1 < fields_.size() ? fields_[field + 1] : files_.size();
}

QStringList FoundFields::inputs(std::size_t number) const {
    QStringList names;
    for (std::size_t i = fields_[number]; i < endOf(number); ++i)
        names << nameOf(files_[i]);
    return names;
}

Field FoundFields::field(std::size_t number) const {
    const std::size_t first = fields_[number];
    const std::size_t end = endOf(number);
    Field field;
    field.number = number;
    QStringList texts;
    const char* at = bytes_.data() + files_[first].begin;
    for (const QString& name : fieldNames_) {
        texts << textOfNaturalKey(at);
        field.placeholders[name] = texts.back();
    }
    field.name = texts.join(QLatin1Char('/'));
    for (std::size_t channel = 0; channel < selected_.size(); ++channel) {
        field.job.inputs.push_back(inputOf(first, end, channel, field.placeholders));
        if (!field.job.inputs.back().file.isEmpty() || !field.problem.isEmpty())
            continue;
        const QString& name = channels_[static_cast<int>(channel)];
        Placeholders placeholders = field.placeholders;
        placeholders[channelPlaceholder()] = name;
        field.problem = QStringLiteral("channel \"%1\" is missing: there is no %2")
                            .arg(name, pattern_.partlyFilled(placeholders));
    }
    if (outputs_)
        field.job.output = outputs_->filled(field.placeholders);
    return field;
}

} // namespace lumetra
