#include "apps/cli/channel_levels.h"

#include "apps/cli/signals.h"
#include "apps/common/error.h"
#include "apps/common/messages.h"
#include "apps/common/text.h"
#include "imageio/value_conversion.h"

#include <algorithm>
#include <cmath>

namespace lumetra {
namespace {

constexpr ContrastLimits allOf16Bits{0, 65535};

double rounded(double value) { return QString::number(value, 'g', 7).toDouble(); }

/// Limits in the values that 0 to 65535 stand for. A single value is black.
ValueLimits inValues(ContrastLimits steps, const FiniteRange& range) {
    const auto valueOf = [&](int step) { return fromDisplay16(step, range.low, range.high); };
    const ValueLimits exact{valueOf(steps.low), valueOf(steps.high)};
    const ValueLimits few{rounded(exact.low), rounded(exact.high)};
    if (few.low < few.high)
        return few;
    if (exact.low < exact.high)
        return exact;
    return {exact.low, exact.low + std::max(1.0, std::abs(exact.low))};
}

int bitDepthOf(const cv::Mat& plane) { return plane.depth() == CV_8U ? 8 : 16; }

/// Refuses limits that would not fit the values.
void requireFitOf(const QString& file, std::size_t number, const ChannelSpec& wanted, int bits,
                  bool isConverted, const QString& settings) {
    const auto& [channel, policy] = wanted;
    if (isConverted && policy.method == LevelPolicy::Method::none)
        throw Error(QStringLiteral("%1: has values that are neither 8- nor 16-bit unsigned: give "
                                   "contrast limits (--levels)")
                        .arg(file));
    if (policy.method != LevelPolicy::Method::fixed)
        return;
    const QString has = isConverted
                            ? QStringLiteral("values that are neither 8- nor 16-bit unsigned")
                            : QStringLiteral("%1 bits").arg(bits);
    const QString measuredAt = channel.valueLimits
                                   ? QStringLiteral("of values of another type")
                                   : QStringLiteral("at %1 bits").arg(channel.levelsBits);
    const bool isOfSettings = channel.valueLimits || channel.levelsBits > 0;
    const bool isOther = isConverted ? !channel.valueLimits : channel.levelsBits != bits;
    if (isOfSettings && isOther)
        throw Error(QStringLiteral("%1 has %2, and the contrast limits of channel %3 in %4 were "
                                   "measured %5; give --levels")
                        .arg(file, has, QString::number(number + 1), settings, measuredAt));
    if (!isConverted && !policy.known())
        throw Error(QStringLiteral("%1 has %2: its contrast limits are whole numbers from 0 to "
                                   "65535, not %3")
                        .arg(file, has, toQt(policy.text())));
}

} // namespace

LevelPolicy settledLevels(const LevelPolicy& policy, const ChannelValues& values) {
    if (!policy.isMeasured())
        return policy;
    const ContrastLimits limits = *levelsOf(values.histogram, policy);
    return values.range ? LevelPolicy::fixedTo(inValues(limits, *values.range))
                        : LevelPolicy::fixedTo(limits);
}

void setLimits(Channel& channel, const LevelPolicy& settled, const ChannelValues& values) {
    channel.valueLimits.reset();
    channel.levels = settled.known();
    if (!values.range || settled.method != LevelPolicy::Method::fixed)
        return;
    channel.valueLimits = settled.limits;
    channel.levels = allOf16Bits;
}

void requireFit(const QString& file, std::size_t number, const ChannelSpec& wanted, int bits,
                const QString& settings) {
    requireFitOf(file, number, wanted, bits, false, settings);
}

Channel channelWithLimits(const ChannelSpec& wanted, const Histogram& histogram) {
    const ChannelValues values{{}, histogram};
    Channel channel = wanted.channel;
    setLimits(channel, settledLevels(wanted.levels, values), values);
    if (wanted.levels.isMeasured())
        channel.levelsBits = histogram.bitDepth();
    return channel;
}

Channel channelWithLimits(ChannelFiles& files, std::size_t number, const ChannelSpec& wanted,
                          cv::Mat& plane, const QString& settings) {
    const QString& name = files.file(number).file();
    ChannelValues values{files.convertedRange(number)};
    requireFitOf(name, number, wanted, bitDepthOf(plane), values.range.has_value(), settings);
    if (values.range && values.range->notFinite > 0)
        printError(QStringLiteral("%1: %2 that are infinite or not a number are shown as black")
                       .arg(name, plural(values.range->notFinite, QStringLiteral("pixel value"))));
    for (int i = 0; wanted.levels.isMeasured() && i < files.images(); ++i) {
        throwIfInterrupted();
        values.histogram.add(files.images() == 1 ? plane : files.gray(number, i));
    }
    const LevelPolicy settled = settledLevels(wanted.levels, values);
    Channel channel = wanted.channel;
    setLimits(channel, settled, values);
    if (wanted.levels.isMeasured())
        channel.levelsBits = values.histogram.bitDepth();
    if (values.range) {
        channel.levelsBits = 0;
        files.setRange(number, settled.limits);
        if (files.images() == 1)
            plane = files.gray(number, 0);
    }
    return channel;
}

QString levelsText(const Channel& channel) {
    if (channel.valueLimits)
        return toQt(LevelPolicy::fixedTo(*channel.valueLimits).text());
    return channel.levels ? toQt(LevelPolicy::fixedTo(*channel.levels).text()) : QString();
}

} // namespace lumetra
