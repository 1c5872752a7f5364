// Names of files with named parts.
#pragma once

#include <QMap>
#include <QRegularExpression>
#include <QString>
#include <QStringList>

#include <vector>

namespace apps {

/// The named parts of a name: part to text.
using Parts = QMap<QString, QString>;

/// A pattern such as `plate/{field}_{channel}.tif`.
///
/// A part stands for one letter or more, but no slash; the same part stands for the same text
/// everywhere. `{{` and `}}` are braces.
class Pattern {
public:
    /// @param choices  The texts that some parts are limited to.
    /// @throws BadUsage for braces that are not closed, or hold no plain name.
    explicit Pattern(const QString& text, const QMap<QString, QStringList>& choices = {});

    /// The names of the parts in their order, each once.
    const QStringList& names() const { return names_; }

    /// Whether the whole name matches, and then its parts.
    bool match(const QString& name, Parts& parts) const;

    /// The name with these parts in the place of theirs.
    /// @throws BadUsage for a part that is not among them.
    QString filled(const Parts& parts) const;

    /// All files that are there and match.
    QStringList files() const;

private:
    struct Piece {
        QString text;
        bool isPart;
    };

    void walk(const QString& folder, std::size_t step, QStringList& found) const;

    QStringList names_;
    std::vector<Piece> pieces_;
    QRegularExpression whole_;
    std::vector<QRegularExpression> steps_; ///< One for each name between slashes.
    QStringList plainSteps_;                ///< The name where a step has no parts, else empty.
};

} // namespace apps
