#include "apps/cli/pattern.h"

#include "apps/common/error.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace lumetra {
namespace {

bool isValidName(const QString& name) {
    static const QRegularExpression plain(QStringLiteral("^[A-Za-z][A-Za-z0-9_]*$"));
    return plain.match(name).hasMatch();
}

QRegularExpression exactly(const QString& expression) {
    return QRegularExpression(QStringLiteral("\\A(?:%1)\\z").arg(expression),
                              QRegularExpression::DotMatchesEverythingOption |
                                  QRegularExpression::UseUnicodePropertiesOption);
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

} // namespace

Pattern::Pattern(const QString& text, const QMap<QString, QStringList>& choices) {
    const auto refuse = [&](const QString& reason) {
        throw UsageError(QStringLiteral("the pattern \"%1\" %2").arg(text, reason));
    };
    QString expression, stepExpression, plain;
    bool hasPlaceholders = false; // in this step
    const auto endStep = [&] {
        steps_.push_back(exactly(stepExpression));
        plainSteps_ << (hasPlaceholders ? QString() : plain);
        stepExpression.clear();
        plain = QLatin1String(""); // empty, but not null
        hasPlaceholders = false;
    };
    const auto addText = [&](const QString& piece) {
        pieces_.push_back({piece, false});
        for (const QChar letter : piece) {
            expression += escaped(letter);
            if (letter == QLatin1Char('/')) {
                endStep();
            } else {
                stepExpression += escaped(letter);
                plain += letter;
            }
        }
    };
    const auto addPlaceholder = [&](const QString& name) {
        if (!isValidName(name))
            refuse(QStringLiteral("has the placeholder {%1}, which is not a valid name").arg(name));
        const QString any = choices.contains(name) ? anyOf(choices[name]) : QStringLiteral("[^/]+");
        expression += names_.contains(name) ? QStringLiteral("\\g{%1}").arg(name)
                                            : QStringLiteral("(?<%1>%2)").arg(name, any);
        stepExpression += QStringLiteral("(?:%1)").arg(any);
        hasPlaceholders = true;
        pieces_.push_back({name, true});
        if (!names_.contains(name))
            names_ << name;
    };
    plain = QLatin1String("");
    for (int i = 0; i < static_cast<int>(text.size()); ++i) {
        const QChar letter = text[i];
        if (letter != QLatin1Char('{') && letter != QLatin1Char('}')) {
            addText(letter);
        } else if (i + 1 < static_cast<int>(text.size()) && text[i + 1] == letter) {
            addText(letter);
            ++i;
        } else {
            const auto end = static_cast<int>(text.indexOf(QLatin1Char('}'), i));
            if (letter == QLatin1Char('}') || end < 0)
                refuse(QStringLiteral("has an unmatched brace"));
            addPlaceholder(text.mid(i + 1, end - i - 1));
            i = end;
        }
    }
    endStep();
    whole_ = exactly(expression);
    if (!whole_.isValid())
        refuse(QStringLiteral("is not valid"));
}

bool Pattern::match(const QString& name, Placeholders& placeholders) const {
    const auto found = whole_.match(name);
    if (!found.hasMatch())
        return false;
    placeholders.clear();
    for (const QString& placeholder : names_)
        placeholders[placeholder] = found.captured(placeholder);
    return true;
}

QString Pattern::filled(const Placeholders& placeholders) const {
    QString name;
    for (const Piece& piece : pieces_) {
        if (piece.isPlaceholder && !placeholders.contains(piece.text))
            throw UsageError(
                QStringLiteral("there is no placeholder {%1}; there is %2")
                    .arg(piece.text,
                         placeholders.isEmpty()
                             ? QStringLiteral("none")
                             : QStringLiteral("{%1}").arg(
                                   QStringList(placeholders.keys()).join(QStringLiteral("}, {")))));
        name += piece.isPlaceholder ? placeholders[piece.text] : piece.text;
    }
    return name;
}

/// Follows the steps from folder to folder; names are compared with the whole pattern at the end.
void Pattern::walk(const QString& folder, std::size_t step, QStringList& found) const {
    const bool isLast = step + 1 == steps_.size();
    const QString& plain = plainSteps_[static_cast<int>(step)];
    QStringList names{plain};
    if (plain.isNull()) {
        const QDir directory(folder.isEmpty() ? QStringLiteral(".") : folder);
        names = directory.entryList((isLast ? QDir::Files : QDir::Dirs | QDir::NoDotAndDotDot) |
                                        QDir::Hidden,
                                    QDir::NoSort);
    }
    for (const QString& name : names) {
        const QString path = folder + name;
        Placeholders placeholders;
        if (plain.isNull() && !steps_[step].match(name).hasMatch())
            continue;
        if (!isLast)
            walk(path + QLatin1Char('/'), step + 1, found);
        else if (match(path, placeholders) && QFileInfo(path).isFile())
            found << path;
    }
}

QStringList Pattern::files() const {
    QStringList found;
    walk(QString(), 0, found);
    return found;
}

} // namespace lumetra
