// Any bytes as what people write: settings files, patterns of file names, channels, contrast
// limits. What is understood is written in a form that is understood the same; nothing else than an
// error comes of the rest.

#include "apps/cli/pattern.h"
#include "apps/common/channel_spec.h"
#include "apps/common/error.h"
#include "apps/common/settings.h"
#include "apps/common/text.h"
#include "fuzz/input.h"
#include "render/level_policy.h"
#include "render/render_error.h"

namespace {

using namespace lumetra;

QString textOf(const std::string& bytes) {
    return QString::fromUtf8(bytes.data(), static_cast<int>(bytes.size()));
}

const DyeList& dyes() {
    static const DyeList list;
    return list;
}

void checkSettings(FuzzedDataProvider& input) {
    const std::string json = input.ConsumeRemainingBytesAsString();
    const Settings settings = parseSettings({json.data(), static_cast<int>(json.size())}, dyes());
    for (const Channel& channel : settings.channels)
        require(!channel.levels || channel.levels->low < channel.levels->high, "limits of nothing");
    const Settings again = parseSettings(settingsJson(settings), dyes());
    // What is written of limits is of one kind: a range in values, or levels.
    require(again.channels.size() == settings.channels.size(), "another number of channels");
    for (std::size_t i = 0; i < again.channels.size(); ++i) {
        Channel written = again.channels[i], read = settings.channels[i];
        written.levelsBits = read.levelsBits = 0; // which stand beside levels alone
        require(written == read, "another channel");
    }
}

void checkPattern(FuzzedDataProvider& input) {
    const Pattern pattern(textOf(input.ConsumeRandomLengthString(30)));
    const QString name = textOf(input.ConsumeRandomLengthString(60));
    Placeholders placeholders;
    static_cast<void>(pattern.whyNot({name}));
    if (!pattern.match(name, placeholders))
        return;
    Placeholders narrower;
    require(Pattern(pattern.narrowed(placeholders)).match(name, narrower),
            "a pattern of this name that does not match it");
}

void checkChannel(FuzzedDataProvider& input) {
    const ChannelFile file =
        parseChannelFile(textOf(input.ConsumeRemainingBytesAsString()), dyes());
    const Channel again = parseChannel(channelSpec(file.channel, dyes()), dyes());
    require(again.colour == file.channel.colour && again.offset == file.channel.offset,
            "another channel");
    require(fileSpec(parseFile(fileSpec(file))) == fileSpec(file), "another file");
}

void checkLevels(FuzzedDataProvider& input) {
    const LevelPolicy policy = parseLevelPolicy(input.ConsumeRemainingBytesAsString());
    const LevelPolicy again = parseLevelPolicy(policy.text());
    require(again.method == policy.method && again.percent == policy.percent &&
                again.limits == policy.limits,
            "other limits");
}

} // namespace

// The JSON parser of Qt 5 leaks the first list where a key is given twice.
extern "C" const char* __lsan_default_suppressions() { // NOLINT(bugprone-reserved-identifier)
    return "leak:libQt5Core.so";
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    try {
        switch (number(input, 0, 3)) {
        case 0:
            checkSettings(input);
            break;
        case 1:
            checkPattern(input);
            break;
        case 2:
            checkChannel(input);
            break;
        default:
            checkLevels(input);
        }
    } catch (const Error&) {       // as it should be
    } catch (const RenderError&) { // likewise
    }
    return 0;
}
