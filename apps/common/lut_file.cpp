#include "apps/common/lut_file.h"

#include "apps/common/error.h"
#include "apps/common/text.h"
#include "render/colormaps.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>
#include <optional>
#include <vector>

namespace lumetra {
namespace {

constexpr int colours = 256;

Colormap binaryLut(const QByteArray& bytes) {
    const auto* const component = reinterpret_cast<const std::uint8_t*>(bytes.constData());
    Colormap lut;
    for (std::size_t i = 0; i < lut.size(); ++i)
        lut[i] = {component[i], component[colours + i], component[2 * colours + i]};
    return lut;
}

/// Lines of red, green and blue, with or without the number of the line before them; the first line
/// may be a heading. None if the text is anything else.
std::optional<Colormap> textLut(const QByteArray& bytes) {
    static const QRegularExpression form(
        QStringLiteral("^(?:\\d+[\\s,]+)?(\\d{1,3})[\\s,]+(\\d{1,3})[\\s,]+(\\d{1,3})$"));
    std::vector<Colour> found;
    bool isFirst = true;
    for (const QString& text : QString::fromLatin1(bytes).split(QLatin1Char('\n'))) {
        const auto match = form.match(text.trimmed());
        const QColor colour(match.captured(1).toInt(), match.captured(2).toInt(),
                            match.captured(3).toInt());
        if (match.hasMatch() && colour.isValid())
            found.push_back(toColour(colour));
        else if (!isFirst && !text.trimmed().isEmpty())
            return std::nullopt;
        isFirst = false;
    }
    Colormap lut;
    if (found.size() != lut.size())
        return std::nullopt;
    std::copy(found.begin(), found.end(), lut.begin());
    return lut;
}

Colormap readLut(const QString& file) {
    constexpr qint64 longest = 65536; // far more than any LUT has
    constexpr int header = 32, binary = 3 * colours;
    QFile device(file);
    if (!QFileInfo(file).isFile() || !device.open(QIODevice::ReadOnly))
        throw Error(QStringLiteral("%1: cannot be read as a LUT").arg(file));
    const QByteArray bytes = device.read(longest);
    if (bytes.size() == binary)
        return binaryLut(bytes);
    if (bytes.size() == header + binary && bytes.startsWith("ICOL"))
        return binaryLut(bytes.mid(header));
    if (const auto lut = textLut(bytes))
        return *lut;
    throw Error(QStringLiteral("%1: is not a LUT file: neither 768 bytes nor 256 lines of red, "
                               "green and blue")
                    .arg(file));
}

} // namespace

QStringList lutNames() {
    QStringList names;
    for (const char* name : colormapNames())
        names << toQt(name);
    return names;
}

Colormap namedLut(const QString& nameOrFile) {
    if (const auto colormap = findColormap(toUtf8(nameOrFile)))
        return *colormap;
    if (QFileInfo::exists(nameOrFile))
        return readLut(nameOrFile);
    throw Error(QStringLiteral("there is no LUT \"%1\", by name or as a file; the names are %2")
                    .arg(nameOrFile, lutNames().join(QStringLiteral(", "))));
}

} // namespace lumetra
