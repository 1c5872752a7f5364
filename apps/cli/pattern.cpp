#include "apps/cli/pattern.h"

#include "apps/cli/folder_listing.h"
#include "apps/cli/natural_order.h"
#include "apps/common/error.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <map>

namespace lumetra {
namespace {

const QString anything = QStringLiteral("*"), anyFolders = QStringLiteral("**");

bool isValidName(const QString& name) {
    static const QRegularExpression plain(QStringLiteral("^[A-Za-z][A-Za-z0-9_]*$"));
    return plain.match(name).hasMatch() || name == anything || name == anyFolders;
}

QRegularExpression compiled(const QString& expression) {
    return QRegularExpression(expression, QRegularExpression::DotMatchesEverythingOption |
                                              QRegularExpression::UseUnicodePropertiesOption);
}

QRegularExpression exactly(const QString& expression) {
    return compiled(QStringLiteral("\\A(?:%1)\\z").arg(expression));
}

/// Letters beyond ASCII stand for themselves, and may come in two halves.
QString escaped(QChar letter) {
    return letter.unicode() < 128 ? QRegularExpression::escape(letter) : QString(letter);
}

/// The expression for one of some texts, the longest first.
QString anyOf(QStringList texts) {
    std::sort(texts.begin(), texts.end(),
              [](const QString& a, const QString& b) { return a.size() > b.size(); });
    for (QString& text : texts)
        text = QRegularExpression::escape(text);
    return texts.join(QLatin1Char('|'));
}

/// The expression for a form such as `A#`.
QString formExpression(const QString& form) {
    QString expression;
    for (const QChar letter : form) {
        if (letter == QLatin1Char('#'))
            expression += QStringLiteral("[0-9]+");
        else if (letter == QLatin1Char('A'))
            expression += QStringLiteral("[A-Za-z]+");
        else if (letter == QLatin1Char('G'))
            expression += QStringLiteral("[0-9A-Fa-f]{8}(?:-[0-9A-Fa-f]{4}){3}-[0-9A-Fa-f]{12}");
        else
            expression += escaped(letter);
    }
    return expression;
}

/// Some of the files below a folder, which are enough for an example.
QStringList filesBelow(const QString& folder) {
    constexpr int mostFolders = 100, mostFiles = 1000;
    QStringList files, folders{folder};
    for (int i = 0; i < std::min(static_cast<int>(folders.size()), mostFolders); ++i) {
        const QString above = folders[i];
        std::vector<FolderEntry> entries;
        listFolder(above, [&](const FolderEntry& entry) { entries.push_back(entry); });
        std::sort(entries.begin(), entries.end(),
                  [](const FolderEntry& a, const FolderEntry& b) { return a.name < b.name; });
        for (const FolderEntry& entry : entries) {
            if (entry.isFolder && !entry.isLink)
                folders << above + entry.name + QLatin1Char('/');
            else if (!entry.isFolder && static_cast<int>(files.size()) < mostFiles)
                files << above + entry.name;
        }
    }
    return files;
}

} // namespace

Pattern::Pattern(const QString& text, const QMap<QString, QStringList>& choices)
    : text_(QDir::fromNativeSeparators(text)), choices_(choices) {
    const auto refuse = [&](const QString& reason) {
        throw UsageError(QStringLiteral("the pattern \"%1\" %2").arg(text, reason));
    };
    for (int i = 0; i < static_cast<int>(text_.size()); ++i) {
        const QChar letter = text_[i];
        const bool isBrace = letter == QLatin1Char('{') || letter == QLatin1Char('}');
        if (!isBrace) {
            pieces_.push_back({letter, false, letter, escaped(letter), false});
        } else if (i + 1 < static_cast<int>(text_.size()) && text_[i + 1] == letter) {
            pieces_.push_back({letter, false, QString(2, letter), escaped(letter), false});
            ++i;
        } else {
            const auto end = static_cast<int>(text_.indexOf(QLatin1Char('}'), i));
            if (letter == QLatin1Char('}') || end < 0)
                refuse(QStringLiteral("has an unmatched brace"));
            try {
                addPlaceholder(text_.mid(i + 1, end - i - 1), choices);
            } catch (const Error& error) {
                refuse(error.text());
            }
            i = end;
        }
    }
    ignoreCaseOfExtension();
    std::size_t begin = 0;
    for (std::size_t i = 0; i < pieces_.size(); ++i)
        if (pieces_[i].text == QLatin1String("/") && !pieces_[i].isPlaceholder) {
            endStep(begin, i);
            begin = i + 1;
        }
    endStep(begin, pieces_.size());
    for (std::size_t i = 0; i < steps_.size(); ++i)
        if (steps_[i].isAnyFolders && i + 1 == steps_.size())
            refuse(QStringLiteral("ends with {**}, which stands for folders: write {**}/{*}"));
    whole_ = exactly(expressionOf(pieces_.size()));
    if (!whole_.isValid())
        refuse(QStringLiteral("is not valid"));
    const QStringList groups = whole_.namedCaptureGroups();
    for (const QString& name : names_)
        groups_.push_back(static_cast<int>(groups.indexOf(name)));
}

void Pattern::addPlaceholder(const QString& text, const QMap<QString, QStringList>& choices) {
    const auto colon = static_cast<int>(text.indexOf(QLatin1Char(':')));
    const bool hasForm = colon >= 0;
    const QString name = hasForm ? text.left(colon) : text;
    const QString form = hasForm ? text.mid(colon + 1) : QString();
    if (!isValidName(name))
        throw Error(
            QStringLiteral("has the placeholder {%1}, which is not a valid name").arg(text));
    if (hasForm && (form.isEmpty() || name == anyFolders || form.contains(QLatin1Char('/'))))
        throw Error(QStringLiteral("has the placeholder {%1}, whose form is not valid: # is a "
                                   "number, A letters, such as {well:A#}")
                        .arg(text));
    QString any = name == anything ? QStringLiteral("[^/]*") : QStringLiteral("[^/]+");
    if (hasForm)
        any = formExpression(form);
    if (choices.contains(name))
        any = anyOf(choices[name]);
    pieces_.push_back({name, true, QStringLiteral("{%1}").arg(text), any, hasForm});
    if (!names_.contains(name) && name != anything && name != anyFolders)
        names_ << name;
}

/// Where a name ends with a dot and letters, of which none are placeholders.
void Pattern::ignoreCaseOfExtension() {
    std::size_t begin = pieces_.size();
    while (begin > 0 && !pieces_[begin - 1].isPlaceholder &&
           pieces_[begin - 1].text[0].isLetterOrNumber())
        --begin;
    if (begin == 0 || pieces_[begin - 1].text != QLatin1String("."))
        return;
    for (; begin < pieces_.size(); ++begin)
        pieces_[begin].expression = QStringLiteral("(?i:%1)").arg(pieces_[begin].expression);
}

void Pattern::endStep(std::size_t begin, std::size_t end) {
    QString expression, plain = QLatin1String(""); // empty, but not null
    bool hasPlaceholders = false, isAnyFolders = false;
    for (std::size_t i = begin; i < end; ++i) {
        const Piece& piece = pieces_[i];
        expression += QStringLiteral("(?:%1)").arg(piece.expression);
        plain += piece.text;
        hasPlaceholders |= piece.isPlaceholder;
        isAnyFolders |= piece.isPlaceholder && piece.text == anyFolders;
    }
    if (isAnyFolders && end - begin != 1)
        throw UsageError(QStringLiteral("the pattern \"%1\" has {**} beside other letters; it "
                                        "stands between slashes")
                             .arg(text_));
    steps_.push_back({exactly(expression), hasPlaceholders ? QString() : plain, isAnyFolders});
}

/// The expression of the first pieces.
QString Pattern::expressionOf(std::size_t pieces) const {
    QString expression;
    QStringList known;
    for (std::size_t i = 0; i < pieces; ++i) {
        const Piece& piece = pieces_[i];
        const bool isNamed = piece.isPlaceholder && names_.contains(piece.text);
        if (piece.isPlaceholder && piece.text == anyFolders) {
            expression += QStringLiteral("(?:[^/]+/)*");
            ++i; // its slash is among them
        } else if (!isNamed) {
            expression += QStringLiteral("(?:%1)").arg(piece.expression);
        } else if (known.contains(piece.text)) {
            expression += QStringLiteral("\\g{%1}").arg(piece.text);
        } else {
            expression += QStringLiteral("(?<%1>%2)").arg(piece.text, piece.expression);
            known << piece.text;
        }
    }
    return expression;
}

bool Pattern::match(const QString& name, QStringList& texts) const {
    const auto found = whole_.match(name);
    if (!found.hasMatch())
        return false;
    texts.clear();
    for (const int group : groups_)
        texts << found.captured(group);
    return true;
}

bool Pattern::match(const QString& name, Placeholders& placeholders) const {
    QStringList texts;
    if (!match(name, texts))
        return false;
    placeholders.clear();
    for (int i = 0; i < static_cast<int>(texts.size()); ++i)
        placeholders[names_[i]] = texts[i];
    return true;
}

QString Pattern::filled(const Placeholders& placeholders) const {
    for (const Piece& piece : pieces_)
        if (piece.isPlaceholder && !placeholders.contains(piece.text))
            throw UsageError(
                QStringLiteral("there is no placeholder {%1}; there is %2")
                    .arg(piece.text,
                         placeholders.isEmpty()
                             ? QStringLiteral("none")
                             : QStringLiteral("{%1}").arg(
                                   QStringList(placeholders.keys()).join(QStringLiteral("}, {")))));
    return partlyFilled(placeholders);
}

QString Pattern::partlyFilled(const Placeholders& placeholders) const {
    QString name;
    name.reserve(2 * static_cast<int>(text_.size()));
    for (const Piece& piece : pieces_)
        name += piece.isPlaceholder ? placeholders.value(piece.text, piece.source) : piece.text;
    return name;
}

QString Pattern::narrowed(const Placeholders& placeholders) const {
    QString pattern;
    for (const Piece& piece : pieces_) {
        if (!piece.isPlaceholder || !placeholders.contains(piece.text)) {
            pattern += piece.source;
            continue;
        }
        QString text = placeholders[piece.text];
        text.replace(QLatin1Char('{'), QLatin1String("{{"));
        pattern += text.replace(QLatin1Char('}'), QLatin1String("}}"));
    }
    return pattern;
}

/// Follows the steps from folder to folder; names are compared with the whole pattern at the end.
/// @param steps  Those that this folder's entries may be.
std::size_t Pattern::walk(const QString& folder, std::set<std::size_t> steps,
                          const std::function<void(const QString&)>& add) const {
    const std::size_t last = steps_.size() - 1;
    for (const std::size_t step : std::set<std::size_t>(steps))
        for (std::size_t next = step; steps_[next].isAnyFolders; ++next)
            steps.insert(next + 1);

    // A name without placeholders needs no listing, unless its extension has another case.
    if (steps.size() == 1 && !steps_[*steps.begin()].plain.isNull()) {
        const std::size_t step = *steps.begin();
        const QString path = folder + steps_[step].plain;
        if (step != last)
            return walk(path + QLatin1Char('/'), {step + 1}, add);
        if (QFileInfo(path).isFile()) {
            add(path);
            return 0;
        }
    }
    const bool mayHoldFiles = steps.count(last) > 0;
    std::map<QString, std::set<std::size_t>> below;
    std::size_t notText = listFolder(folder, [&](const FolderEntry& entry) {
        if (!entry.isFolder && mayHoldFiles)
            add(folder + entry.name);
        for (const std::size_t step : steps) {
            if (!entry.isFolder || (!steps_[step].isAnyFolders && step == last))
                continue;
            if (!steps_[step].isAnyFolders && steps_[step].expression.match(entry.name).hasMatch())
                below[entry.name].insert(step + 1);
            else if (steps_[step].isAnyFolders && !entry.isLink) // a link could lead back up
                below[entry.name].insert(step);
        }
    });
    for (const auto& [name, stepsBelow] : below)
        notText += walk(folder + name + QLatin1Char('/'), stepsBelow, add);
    return notText;
}

std::size_t Pattern::forEachFile(const std::function<void(const QString&)>& add) const {
    return walk(QString(), {0}, add);
}

QStringList Pattern::files() const {
    QStringList files, texts;
    forEachFile([&](const QString& file) {
        if (match(file, texts))
            files << file;
    });
    return files;
}

/// Of a name that the first pieces match, but no more of them.
QString Pattern::difference(const QString& name, std::size_t pieces) const {
    // What is free to be anything has taken all that follows: the difference is from there on.
    std::size_t first = pieces;
    while (first > 0 && pieces_[first - 1].isPlaceholder && !pieces_[first - 1].hasForm &&
           !choices_.contains(pieces_[first - 1].text))
        --first;
    const auto matched =
        compiled(QStringLiteral("\\A(?:%1)").arg(expressionOf(first))).match(name).capturedEnd();
    const QString rest = name.mid(static_cast<int>(matched));
    QString expected;
    for (std::size_t i = first; i < pieces_.size(); ++i)
        expected += pieces_[i].source;
    QString text =
        QStringLiteral("%1 differs from the pattern at %2: expected %3")
            .arg(name,
                 rest.isEmpty() ? QStringLiteral("its end") : QStringLiteral("\"%1\"").arg(rest),
                 expected.isEmpty() ? QStringLiteral("its end")
                                    : QStringLiteral("\"%1\"").arg(expected));
    const auto choices = pieces < pieces_.size() && pieces_[pieces].isPlaceholder
                             ? choices_.find(pieces_[pieces].text)
                             : choices_.end();
    if (choices != choices_.end())
        text += QStringLiteral(", where {%1} is %2")
                    .arg(choices.key(), choices.value().join(QStringLiteral(" or ")));
    return text;
}

QString Pattern::whyNot(const QStringList& names) const {
    std::vector<QRegularExpression> beginnings;
    for (std::size_t i = 0; i <= pieces_.size(); ++i)
        beginnings.push_back(compiled(QStringLiteral("\\A(?:%1)").arg(expressionOf(i))));
    QString nearest;
    std::size_t most = 0;
    for (const QString& name : names) {
        const auto end =
            std::partition_point(beginnings.begin(), beginnings.end(), [&](const auto& beginning) {
                return beginning.match(name).hasMatch();
            });
        const auto matched = static_cast<std::size_t>(end - beginnings.begin()) - 1;
        const bool isFirst = compareNaturally(name, nearest) < 0;
        if (nearest.isEmpty() || matched > most || (matched == most && isFirst)) {
            nearest = name;
            most = matched;
        }
    }
    QStringList reasons;
    if (!nearest.isEmpty())
        reasons << difference(nearest, most);
    const auto isStar = [](const Piece& piece) {
        return !piece.isPlaceholder && piece.text == anything;
    };
    if (std::any_of(pieces_.begin(), pieces_.end(), isStar))
        reasons << QStringLiteral("* alone is no wildcard: write {*}, and quote the pattern for "
                                  "the shell");
    return reasons.join(QStringLiteral("; "));
}

QString Pattern::whyNot() const {
    QString folder;
    for (std::size_t i = 0; i + 1 < steps_.size() && !steps_[i].plain.isNull(); ++i) {
        const QString below = folder + steps_[i].plain + QLatin1Char('/');
        if (!QFileInfo(below).isDir() && !steps_[i].plain.contains(QLatin1Char('*')))
            return QStringLiteral("no folder %1").arg(below);
        if (!QFileInfo(below).isDir())
            break;
        folder = below;
    }
    const QStringList files = filesBelow(folder);
    QStringList reasons;
    if (files.isEmpty())
        reasons << QStringLiteral("there is no file in %1")
                       .arg(folder.isEmpty() ? QStringLiteral("this folder") : folder);
    const QString reason = whyNot(files);
    if (!reason.isEmpty())
        reasons << reason;
    return reasons.join(QStringLiteral("; "));
}

} // namespace lumetra
