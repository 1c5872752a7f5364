// Wells of plates, as names of images hold them.
#pragma once

#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace lumetra {

/// A well and what its name stands between.
struct Well {
    QString plate;  ///< All of the name before the well.
    int row = 0;    ///< A is 0, Z is 25, AA is 26.
    int column = 0; ///< Counted from 1.
    QString rest;   ///< All of the name after the well.
};

/// The letters of a row.
QString rowName(int row);

/// The well of each name: a row from A to AF and a column from 1 to 48, such as `B03` or `B - 03`,
/// with no letter or digit beside it; or both as numbers, such as `r02c03`, with no letter or digit
/// before it and no digit behind it.
///
/// Plates, sites and points in time are often named in the same way (`P01_B03_F02`). Of the places
/// where names hold something like a well, the one with the most wells over all names is meant.
std::vector<std::optional<Well>> findWells(const QStringList& names);

} // namespace lumetra
