// How black and white levels are found.
#pragma once

#include "apps/common/channel.h"
#include "apps/common/histogram.h"

#include <optional>

namespace apps {

/// The word of a user for how levels are found.
struct LevelPolicy {
    enum class Method {
        clip,  ///< The range of the samples, without a share cut off at each end.
        given, ///< Given by the user.
        none   ///< Samples stay as they are, in their depth.
    };
    Method method = Method::clip;
    double percent = 0.1; ///< Of `clip`, from 0 to below 50; 0 takes smallest and largest sample.
    LevelRange range;     ///< Of `given`.

    /// Whether the levels depend on pictures.
    bool isMeasured() const { return method == Method::clip; }

    /// The levels that are known before there is a picture.
    std::optional<LevelRange> known() const {
        return method == Method::given ? std::optional(range) : std::nullopt;
    }

    /// As `parseLevelPolicy` understands it.
    QString text() const;
};

/// Understands `auto` (smallest and largest sample), `clip:PERCENT`, `LOW:HIGH` and `none`.
/// @throws BadUsage for anything else.
LevelPolicy parseLevelPolicy(const QString& words);

/// Understands `LOW:HIGH`, 0 to 65535, LOW below HIGH.
/// @throws BadUsage for anything else.
LevelRange parseRange(const QString& words);

/// The levels of samples so distributed; none if they stay as they are. Where only one value is
/// left, the levels are its neighbours within the depth, as the library's automatic levels are.
std::optional<LevelRange> levelsOf(const Histogram& histogram, const LevelPolicy& policy);

} // namespace apps
