#include "apps/cli/instrument_folder.h"

#include "apps/cli/folder_listing.h"
#include "apps/cli/instrument_names.h"
#include "apps/cli/natural_order.h"
#include "apps/cli/pattern.h"
#include "apps/common/error.h"
#include "apps/common/messages.h"
#include "platform/platform.h"

#include <QFileInfo>
#include <QHash>
#include <QJsonArray>
#include <QSet>

#include <algorithm>
#include <map>
#include <optional>
#include <set>

namespace lumetra {
namespace {

using Texts = std::set<QString, NaturalOrder>;

const QString patternForm = QStringLiteral(
    "a pattern looks like 'plate/{well}_{site}_w{channel}.tif', with {*} for anything else and "
    "{**}/ for any folders");

/// One way of naming, with what may be missing in it decided.
struct Naming {
    QString instrument;
    Pattern pattern;
    int slashes;
};

bool isFullImage(const QString& name) {
    static const QSet<QString> extensions{"tif", "tiff", "png", "jpg", "jpeg", "bmp", "pgm", "ppm"};
    return extensions.contains(QFileInfo(name).suffix().toLower()) &&
           !name.contains(QLatin1String("_thumb"), Qt::CaseInsensitive);
}

/// @param folder  Empty or with a slash at its end.
void collectImages(const QString& root, const QString& folder, QStringList& images) {
    QStringList below;
    listFolder(root + folder, [&](const FolderEntry& entry) {
        if (entry.isFolder && !entry.isLink) // a link could lead back up
            below << folder + entry.name + QLatin1Char('/');
        else if (!entry.isFolder && isFullImage(entry.name))
            images << folder + entry.name;
    });
    for (const QString& name : below)
        collectImages(root, name, images);
}

/// The extension that most of the images have.
QString commonExtension(const QStringList& images) {
    QHash<QString, int> counts;
    QString most;
    for (const QString& image : images) {
        const QString extension = QFileInfo(image).suffix().toLower();
        if (++counts[extension] > counts.value(most))
            most = extension;
    }
    return most;
}

std::vector<Naming> namings(const QString& extension) {
    std::vector<Naming> all;
    for (const auto& [instrument, pattern] : instrumentNames())
        for (const QString& expanded : expandedPattern(pattern)) {
            const QString source = expanded + QLatin1Char('.') + extension;
            all.push_back(
                {instrument, Pattern(source), static_cast<int>(source.count(QLatin1Char('/')))});
        }
    return all;
}

/// Where the part of a path begins that has this many slashes; below 0 if it has fewer.
int tailOf(const QString& path, int slashes) {
    auto begin = path.size();
    for (; slashes >= 0 && begin >= 0; --slashes)
        begin = begin == 0 ? -1 : path.lastIndexOf(QLatin1Char('/'), begin - 1);
    return slashes >= 0 ? -1 : static_cast<int>(begin) + 1;
}

bool matches(const Naming& naming, const QString& image, Placeholders& placeholders) {
    const int tail = tailOf(image, naming.slashes);
    return tail >= 0 && naming.pattern.match(image.mid(tail), placeholders);
}

QStringList matching(const Naming& naming, const QStringList& images, bool isMatch) {
    Placeholders placeholders;
    QStringList found;
    for (const QString& image : images)
        if (matches(naming, image, placeholders) == isMatch)
            found << image;
    return found;
}

/// Some images from everywhere in the list, which tell as much as all of them.
QStringList sampleOf(const QStringList& images) {
    constexpr std::size_t most = 500;
    const auto count = static_cast<std::size_t>(images.size());
    QStringList sample;
    for (std::size_t i = 0; i < std::min(count, most); ++i)
        sample << images[static_cast<int>(i * count / std::min(count, most))];
    return sample;
}

/// The first of the namings that match the most.
const Naming& bestNaming(const std::vector<Naming>& all, const QStringList& images) {
    return *std::max_element(all.begin(), all.end(), [&](const Naming& a, const Naming& b) {
        return matching(a, images, true).size() < matching(b, images, true).size();
    });
}

const Naming& chosenNaming(const QString& folder, const std::vector<Naming>& all,
                           const QStringList& sample) {
    const Naming& best = bestNaming(all, sample);
    const QStringList others = matching(best, sample, false);
    const auto matched = sample.size() - others.size();
    if (matched == 0) {
        QStringList known;
        for (const Naming& naming : all)
            if (!known.contains(naming.instrument))
                known << naming.instrument;
        throw Error(
            QStringLiteral("%1: the names, such as %2, are not those of an instrument that is "
                           "known (%3); %4")
                .arg(folder, sample.first(), known.join(QStringLiteral(", ")), patternForm));
    }
    const Naming& second = bestNaming(all, others.isEmpty() ? sample : others);
    const auto alsoMatched = matching(second, others, true).size();
    if (second.instrument != best.instrument && alsoMatched * 10 > sample.size())
        throw Error(QStringLiteral("%1: the names are those of %2, such as %3, and of %4, such as "
                                   "%5: name a folder of one of them, or write a pattern; %6")
                        .arg(folder, best.instrument, matching(best, sample, true).first(),
                             second.instrument, matching(second, others, true).first(),
                             patternForm));
    if (matched * 2 <= sample.size())
        throw Error(QStringLiteral("%1: only %2 of %3 names are those of an instrument (%4); %5 is "
                                   "not; %6")
                        .arg(folder)
                        .arg(matched)
                        .arg(sample.size())
                        .arg(best.instrument, others.first(), patternForm));
    return best;
}

QString withDoubledBraces(QString text) {
    return text.replace(QLatin1Char('{'), QLatin1String("{{"))
        .replace(QLatin1Char('}'), QLatin1String("}}"));
}

/// A pattern of the folders that images are in: what is the same for all of them as it is, and the
/// rest as placeholders.
QString folderPattern(const QSet<QString>& folders) {
    std::vector<QStringList> paths;
    for (const QString& folder : folders)
        paths.push_back(folder.split(QLatin1Char('/')));
    QString pattern;
    int placeholders = 0;
    for (int i = 0; i + 1 < static_cast<int>(paths.front().size()); ++i) { // the last is empty
        for (const QStringList& path : paths)
            if (path.size() != paths.front().size())
                return QStringLiteral("{**}/");
        const bool isSame = std::all_of(paths.begin(), paths.end(), [&](const QStringList& path) {
            return path[i] == paths.front()[i];
        });
        if (isSame)
            pattern += withDoubledBraces(paths.front()[i]);
        else
            pattern += ++placeholders == 1 ? QStringLiteral("{folder}")
                                           : QStringLiteral("{folder%1}").arg(placeholders);
        pattern += QLatin1Char('/');
    }
    return pattern;
}

/// The pattern with texts in the place of those placeholders that have one text everywhere. Wells,
/// sites and channels stay, since names of outputs are made of them.
QString withoutConstants(const Pattern& pattern, const std::map<QString, Texts>& texts) {
    static const QStringList kept{"well", "site", "channel"};
    Placeholders constants;
    for (const auto& [name, values] : texts)
        if (values.size() == 1 && !kept.contains(name))
            constants[name] = withDoubledBraces(*values.begin());
    return pattern.partlyFilled(constants);
}

QStringList listOf(const std::map<QString, Texts>& texts, const QString& name) {
    const auto found = texts.find(name);
    return found == texts.end() ? QStringList()
                                : QStringList(found->second.begin(), found->second.end());
}

/// What all images of a naming have in the places of its placeholders.
InstrumentFolder described(const QString& root, const Naming& naming, const QStringList& images) {
    InstrumentFolder folder;
    folder.instrument = naming.instrument;
    std::map<QString, Texts> texts;
    QSet<QString> folders, fields;
    for (const QString& image : images) {
        Placeholders placeholders;
        if (!matches(naming, image, placeholders)) {
            ++folder.others;
            continue;
        }
        ++folder.images;
        const QString above = image.left(tailOf(image, naming.slashes));
        folders << above;
        for (auto text = placeholders.begin(); text != placeholders.end(); ++text)
            texts[text.key()].insert(text.value());
        for (const char* inField : {"channel", "z", "t"})
            placeholders.remove(inField);
        fields << above + placeholders.values().join(QLatin1Char('/'));
    }
    folder.fields = static_cast<std::size_t>(fields.size());
    folder.channels = listOf(texts, QStringLiteral("channel"));
    folder.z = listOf(texts, QStringLiteral("z"));
    folder.t = listOf(texts, QStringLiteral("t"));
    folder.pattern =
        withDoubledBraces(root) + folderPattern(folders) + withoutConstants(naming.pattern, texts);
    return folder;
}

QString counted(const QStringList& values, const QString& noun) {
    return values.size() < 2
               ? QString()
               : QStringLiteral(", %1").arg(plural(static_cast<std::size_t>(values.size()), noun));
}

} // namespace

InstrumentFolder recognisedFolder(const QString& folder) {
    const QString root = folder.endsWith(QLatin1Char('/')) ? folder : folder + QLatin1Char('/');
    QStringList images;
    collectImages(root, QString(), images);
    std::sort(images.begin(), images.end()); // what is seen does not depend on the file system
    if (images.isEmpty())
        throw Error(QStringLiteral("%1: there is no image in this folder").arg(folder));
    const std::vector<Naming> all = namings(commonExtension(images));
    const Naming& naming = chosenNaming(folder, all, sampleOf(images));
    InstrumentFolder found = described(root, naming, images);
    found.folder = folder;
    return found;
}

QString text(const InstrumentFolder& folder) {
    const QString channels =
        folder.channels.isEmpty()
            ? QString()
            : QStringLiteral(", channel%1 %2")
                  .arg(folder.channels.size() == 1 ? QString() : QStringLiteral("s"),
                       folder.channels.join(QStringLiteral(", ")));
    const QString others = folder.others == 0
                               ? QString()
                               : QStringLiteral("; %1 left out")
                                     .arg(plural(folder.others, QStringLiteral("other image")));
    return QStringLiteral("%1: %2: %3, %4%5%6%7%8; pattern %9")
        .arg(folder.folder, folder.instrument, plural(folder.images, QStringLiteral("image")),
             plural(folder.fields, QStringLiteral("field")), channels,
             counted(folder.z, QStringLiteral("z-slice")),
             counted(folder.t, QStringLiteral("time point")), others,
             quotedForShell(folder.pattern));
}

QJsonObject toJson(const InstrumentFolder& folder) {
    return {{"folder", folder.folder},
            {"instrument", folder.instrument},
            {"pattern", folder.pattern},
            {"images", static_cast<double>(folder.images)},
            {"other images", static_cast<double>(folder.others)},
            {"fields", static_cast<double>(folder.fields)},
            {"channels", QJsonArray::fromStringList(folder.channels)},
            {"z", QJsonArray::fromStringList(folder.z)},
            {"t", QJsonArray::fromStringList(folder.t)}};
}

void usePatternOfFolder(DataSetOptions& options, bool isQuiet) {
    if (!QFileInfo(options.pattern).isDir())
        return;
    if (!options.filesFrom.isEmpty())
        throw UsageError(QStringLiteral("%1 is a folder: a list of files needs a pattern; %2")
                             .arg(options.pattern, patternForm));
    const InstrumentFolder folder = recognisedFolder(options.pattern);
    if (!isQuiet)
        printError(text(folder));
    options.pattern = folder.pattern;
}

} // namespace lumetra
