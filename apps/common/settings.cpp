#include "apps/common/settings.h"

#include "apps/common/error.h"
#include "apps/common/text.h"
#include "render/render_error.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>
#include <limits>
#include <tuple>
#include <utility>

namespace lumetra {
namespace {

QJsonObject toObject(const Channel& channel) {
    QJsonObject object{{"dye", toQt(channel.dye)},
                       {"colour", toQt(toHex(channel.colour))},
                       {"offset", QJsonArray{channel.offset.x, channel.offset.y}},
                       {"gamma", channel.gamma},
                       {"visible", channel.visible}};
    if (!channel.name.empty())
        object["name"] = toQt(channel.name);
    if (channel.blend != Blend::add)
        object["blend"] = toQt(blendText(channel.blend));
    if (channel.valueLimits) {
        object["range"] = QJsonArray{channel.valueLimits->low, channel.valueLimits->high};
    } else if (channel.levels) {
        object["levels"] = QJsonArray{channel.levels->low, channel.levels->high};
        if (channel.levelsBits > 0)
            object["bits"] = channel.levelsBits;
    }
    return object;
}

/// One value of an object, in the words of messages.
struct Entry {
    QString where;
    QJsonValue value;

    [[noreturn]] void refuse(const QString& wanted) const {
        throw Error(QStringLiteral("%1 is not %2").arg(where, wanted));
    }
    QString string() const {
        if (!value.isString())
            refuse(QStringLiteral("a text"));
        return value.toString();
    }
    bool boolean() const {
        if (!value.isBool())
            refuse(QStringLiteral("true or false"));
        return value.toBool();
    }
    int integer(int least, int most) const {
        const double number = value.toDouble(std::numeric_limits<double>::quiet_NaN());
        if (!(number >= least && number <= most) || number != std::floor(number))
            refuse(QStringLiteral("a whole number from %1 to %2").arg(least).arg(most));
        return static_cast<int>(number);
    }
    std::pair<int, int> twoIntegers(int least, int most) const {
        const QJsonArray array = value.toArray();
        if (array.size() != 2)
            refuse(QStringLiteral("a list of two numbers"));
        return {Entry{where, array[0]}.integer(least, most),
                Entry{where, array[1]}.integer(least, most)};
    }
    ValueLimits range() const {
        constexpr double none = std::numeric_limits<double>::quiet_NaN();
        const QJsonArray array = value.toArray();
        const ValueLimits limits{array[0].toDouble(none), array[1].toDouble(none)};
        if (array.size() != 2 || !(limits.low < limits.high))
            refuse(QStringLiteral("a list of two numbers, the smaller one first"));
        return limits;
    }
    Colour colour() const {
        const auto parsed = parseHex(toUtf8(string()));
        if (!parsed)
            refuse(QStringLiteral("a colour #rrggbb"));
        return *parsed;
    }
    double gamma() const {
        const double number = value.toDouble(0);
        if (!(number >= smallestGamma && number <= largestGamma))
            refuse(QStringLiteral("a number from %1 to %2").arg(smallestGamma).arg(largestGamma));
        return number;
    }
    Blend blend() const {
        try {
            return parseBlend(toUtf8(string()));
        } catch (const RenderError&) {
            refuse(QStringLiteral("add, screen or darkest"));
        }
    }
    int bitDepth() const {
        const int bits = value.toInt();
        if (bits != 8 && bits != 16)
            refuse(QStringLiteral("8 or 16"));
        return bits;
    }
    ContrastLimits levels() const {
        const auto [low, high] = twoIntegers(0, 65535);
        if (low >= high)
            refuse(QStringLiteral("a black level below a white level"));
        return {low, high};
    }
};

/// Calls `take(key, entry)` for each value of an object; false from it refuses the key.
template<class Take>
void forEachEntry(const QJsonValue& value, const QString& where, const Take& take) {
    if (!value.isObject())
        throw Error(QStringLiteral("%1 is not an object").arg(where));
    const QJsonObject object = value.toObject();
    for (auto entry = object.begin(); entry != object.end(); ++entry)
        if (!take(entry.key(),
                  Entry{QStringLiteral("\"%1\" of %2").arg(entry.key(), where), entry.value()}))
            throw Error(QStringLiteral("%1 has an unknown key \"%2\"").arg(where, entry.key()));
}

Channel toChannel(const QJsonValue& value, int number, const DyeList& dyes) {
    Channel channel;
    bool hasColour = false;
    const QString where = QStringLiteral("channel %1").arg(number);
    forEachEntry(value, where, [&](const QString& key, const Entry& entry) {
        if (key == QLatin1String("name"))
            channel.name = toUtf8(entry.string());
        else if (key == QLatin1String("dye"))
            channel.dye = toUtf8(entry.string());
        else if (key == QLatin1String("colour"))
            channel.colour = entry.colour(), hasColour = true;
        else if (key == QLatin1String("offset"))
            std::tie(channel.offset.x, channel.offset.y) =
                entry.twoIntegers(std::numeric_limits<int>::min(), std::numeric_limits<int>::max());
        else if (key == QLatin1String("levels"))
            channel.levels = entry.levels();
        else if (key == QLatin1String("range"))
            channel.valueLimits = entry.range(), channel.levels = ContrastLimits{0, 65535};
        else if (key == QLatin1String("bits"))
            channel.levelsBits = entry.bitDepth();
        else if (key == QLatin1String("gamma"))
            channel.gamma = entry.gamma();
        else if (key == QLatin1String("visible"))
            channel.visible = entry.boolean();
        else if (key == QLatin1String("blend"))
            channel.blend = entry.blend();
        else
            return false;
        return true;
    });
    if (!hasColour && channel.dye.empty())
        throw Error(where + QStringLiteral(" has neither a dye nor a colour"));
    if (!hasColour) {
        const Dye& dye = dyes.at(channel.dye);
        channel.dye = dye.name;
        channel.colour = dye.colour;
    }
    return channel;
}

Measurement toMeasurement(const QJsonValue& value) {
    Measurement measured;
    forEachEntry(value, QStringLiteral("\"measured\""),
                 [&](const QString& key, const Entry& entry) {
                     if (key == QLatin1String("method"))
                         measured.method = entry.string();
                     else if (key == QLatin1String("files"))
                         measured.files = entry.integer(0, std::numeric_limits<int>::max());
                     else
                         return false;
                     return true;
                 });
    return measured;
}

} // namespace

QByteArray channelJson(const Channel& channel) {
    return QJsonDocument(toObject(channel)).toJson(QJsonDocument::Compact);
}

QByteArray settingsJson(const Settings& settings) {
    QJsonArray channels;
    for (const Channel& channel : settings.channels)
        channels << toObject(channel);
    QJsonObject file{{"version", LUMETRA_VERSION}, {"channels", channels}};
    if (settings.measured)
        file["measured"] =
            QJsonObject{{"method", settings.measured->method}, {"files", settings.measured->files}};
    return QJsonDocument(file).toJson();
}

Settings parseSettings(const QByteArray& json, const DyeList& dyes) {
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (document.isNull())
        throw Error(QStringLiteral("invalid JSON at byte %1: %2")
                        .arg(error.offset)
                        .arg(error.errorString()));
    Settings settings;
    const QJsonValue root = document.isObject() ? QJsonValue(document.object()) : QJsonValue();
    forEachEntry(root, QStringLiteral("the file"), [&](const QString& key, const Entry& entry) {
        if (key == QLatin1String("version")) {
            static_cast<void>(entry.string()); // says who wrote the file; any version is read
        } else if (key == QLatin1String("channels")) {
            if (!entry.value.isArray())
                entry.refuse(QStringLiteral("a list"));
            for (const QJsonValue channel : entry.value.toArray())
                settings.channels.push_back(
                    toChannel(channel, static_cast<int>(settings.channels.size()) + 1, dyes));
        } else if (key == QLatin1String("measured")) {
            settings.measured = toMeasurement(entry.value);
        } else {
            return false;
        }
        return true;
    });
    if (settings.channels.empty())
        throw Error(QStringLiteral("has no channels"));
    return settings;
}

Settings readSettings(const QString& file, const DyeList& dyes) {
    QFile device(file);
    if (!device.open(QIODevice::ReadOnly))
        throw Error(QStringLiteral("%1: %2").arg(file, device.errorString()));
    try {
        return parseSettings(device.readAll(), dyes);
    } catch (const std::runtime_error& error) {
        throw Error(QStringLiteral("%1: %2").arg(file, toQt(error.what())));
    }
}

} // namespace lumetra
