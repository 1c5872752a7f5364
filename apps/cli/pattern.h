// Names of files with placeholders.
#pragma once

#include <QMap>
#include <QRegularExpression>
#include <QString>
#include <QStringList>

#include <vector>

namespace lumetra {

/// What stands in the place of each placeholder: its name to the text.
using Placeholders = QMap<QString, QString>;

/// A pattern such as `plate/{field}_{channel}.tif`.
///
/// A placeholder stands for one letter or more, but no slash; the same one stands for the same
/// text everywhere. `{{` and `}}` are braces.
class Pattern {
public:
    /// @param choices  The texts that some placeholders are limited to.
    /// @throws UsageError for unmatched braces, or such that hold no valid name.
    explicit Pattern(const QString& text, const QMap<QString, QStringList>& choices = {});

    /// The names of the placeholders in their order, each once.
    const QStringList& names() const { return names_; }

    /// Whether the whole name matches, and then its placeholders.
    bool match(const QString& name, Placeholders& placeholders) const;

    /// The name with these texts in place of the placeholders.
    /// @throws UsageError for a placeholder that is not among them.
    QString filled(const Placeholders& placeholders) const;

    /// All files that are there and match.
    QStringList files() const;

private:
    struct Piece {
        QString text;
        bool isPlaceholder;
    };

    void walk(const QString& folder, std::size_t step, QStringList& found) const;

    QStringList names_;
    std::vector<Piece> pieces_;
    QRegularExpression whole_;
    std::vector<QRegularExpression> steps_; ///< One for each name between slashes.
    QStringList plainSteps_; ///< The name where a step has no placeholders, else null.
};

} // namespace lumetra
