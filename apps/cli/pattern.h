// Names of files with placeholders.
#pragma once

#include <QMap>
#include <QRegularExpression>
#include <QString>
#include <QStringList>

#include <cstddef>
#include <functional>
#include <set>
#include <vector>

namespace lumetra {

/// What stands in the place of each placeholder: its name to the text.
using Placeholders = QMap<QString, QString>;

/// A pattern such as `plate/{field}_{channel}.tif`.
///
/// A placeholder stands for one letter or more, but no slash; the same one stands for the same
/// text everywhere. `{name:FORM}` limits it to a form, in which `#` is a number of one digit or
/// more, `A` one letter or more, `G` a GUID, and anything else stands for itself: `{well:A#}` is
/// B03, `{well:r#c#}` is r02c03. `{*}` stands for anything without a slash, nothing included, and
/// has no name; `{*:FORM}` likewise for that form. `{**}/` stands for any number of folders, none
/// included. `{{` and `}}` are braces. The case of the extension does not matter.
///
/// Thread-safe once it is made.
class Pattern {
public:
    /// @param choices  The texts that some placeholders are limited to.
    /// @throws UsageError for unmatched braces, or such that hold no valid name or form.
    explicit Pattern(const QString& text, const QMap<QString, QStringList>& choices = {});

    /// The names of the placeholders in their order, each once; those without a name left out.
    const QStringList& names() const { return names_; }

    /// Whether the whole name matches, and then its placeholders.
    bool match(const QString& name, Placeholders& placeholders) const;

    /// The same, with the texts of the placeholders in the order of `names`.
    bool match(const QString& name, QStringList& texts) const;

    /// The name with these texts in place of the placeholders.
    /// @throws UsageError for a placeholder that is not among them.
    QString filled(const Placeholders& placeholders) const;

    /// The name with these texts where they are there, and the placeholders elsewhere.
    QString partlyFilled(const Placeholders& placeholders) const;

    /// The pattern of the names that have these texts.
    QString narrowed(const Placeholders& placeholders) const;

    /// Gives all files that are there and may match, each once, in no order. Each folder is listed
    /// once.
    /// @return How many were left out, since their names are not UTF-8.
    std::size_t forEachFile(const std::function<void(const QString&)>& add) const;

    /// All files that are there and match, each once, in no order.
    QStringList files() const;

    /// Why none of these names matches: the one that comes nearest, and where it differs.
    QString whyNot(const QStringList& names) const;

    /// Why no file matches: the same for those that are there.
    QString whyNot() const;

private:
    /// A letter, or a placeholder.
    struct Piece {
        QString text; ///< The letter; the placeholder's name, `*` or `**`.
        bool isPlaceholder;
        QString source;     ///< As the pattern has it.
        QString expression; ///< What it matches, where it stands for the first time.
        bool hasForm;
    };

    /// What is between two slashes.
    struct Step {
        QRegularExpression expression;
        QString plain; ///< The name if there are no placeholders, else null.
        bool isAnyFolders;
    };

    void addPlaceholder(const QString& text, const QMap<QString, QStringList>& choices);
    void ignoreCaseOfExtension();
    void endStep(std::size_t begin, std::size_t end);
    QString expressionOf(std::size_t pieces) const;
    std::size_t walk(const QString& folder, std::set<std::size_t> steps,
                     const std::function<void(const QString&)>& add) const;
    QString difference(const QString& name, std::size_t pieces) const;

    QString text_;
    QMap<QString, QStringList> choices_;
    QStringList names_;
    std::vector<Piece> pieces_;
    QRegularExpression whole_;
    std::vector<int> groups_; ///< Of `whole_`, for each name.
    std::vector<Step> steps_;
};

} // namespace lumetra
