// The dyes that a channel can have.
#pragma once

#include <QColor>
#include <QMap>
#include <QString>
#include <QStringList>

#include <vector>

namespace apps {

/// A dye of the catalogue or of the user.
struct Dye {
    QString name;
    QColor colour;
    int excitation = 0; ///< Peak wavelength in nanometres; 0 if it is not known.
    int emission = 0;   ///< As `excitation`.
    bool custom = false;
};

/// All dyes, built-in and custom ones, as one list. A custom dye stands in place of a built-in one
/// of its name.
///
/// Fills the library's catalogue, so the first one belongs to the thread that starts the program.
class DyeList {
public:
    DyeList();

    /// Adds a user's own dyes.
    void add(const QMap<QString, QColor>& custom);

    /// Every dye, in the order of the names.
    const std::vector<Dye>& all() const { return dyes_; }

    /// The dyes of the colour slider in their order, then the custom ones.
    std::vector<Dye> inSliderOrder() const;

    /// The dye of this name, in any case if that leaves one only; null if there is none.
    const Dye* find(const QString& name) const;

    /// As `find`, but throws Failure with the nearest names.
    const Dye& at(const QString& name) const;

    /// The dyes with `text` in their name, in any case.
    std::vector<Dye> containing(const QString& text) const;

    /// The names nearest to what was written, the nearest first.
    QStringList nearestNames(const QString& written, int count = 3) const;

private:
    std::vector<Dye> dyes_;
};

/// Orders dyes by the distance of a wavelength from `nanometres`, the nearest first, and drops
/// those that have none.
void sortByEmission(std::vector<Dye>& dyes, int nanometres);
void sortByExcitation(std::vector<Dye>& dyes, int nanometres);

/// Reads a file of custom dyes, as the library writes it.
/// @throws Failure if it cannot be read, holds no dyes, or a colour that cannot be understood.
QMap<QString, QColor> readCustomDyes(const QString& file);

} // namespace apps
