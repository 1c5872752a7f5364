#include "apps/cli/instrument_names.h"

namespace lumetra {

const std::vector<InstrumentNames>& instrumentNames() {
    static const std::vector<InstrumentNames> all = {
        {"BBBC005", "SIMCEPImages_{well:A#}_C{cells:#}_F{blur:#}_s{site:#}_w{channel:#}"},
        {"BBBC006", "BBBC006_v1_images_z_{z:#}/{plate}_{well:A#}_s{site:#}_w{channel:#}[{*:G}]"},
        {"BBBC013, BBBC014", "Channel{channel:#}-{*:#}-{well:A-#}"},
        {"BBBC020", "{site}/{site}_c{channel:#}"},
        {"ImageXpress, MetaXpress", "[TimePoint_{t:#}/][ZStep_{z:#}/]{plate}_{well:A#}[_s{site:#}]"
                                    "_w{channel:#}[_][{*:G}]"},
        {"ImageXpress, MetaXpress",
         "[TimePoint_{t:#}/][ZStep_{z:#}/]{plate}_{well:A#}_s{site:#}[_][{*:G}]"},
        // Actions belong to channels, and lines of time repeat what the points in time count.
        {"CellVoyager", "{plate}_{well:A#}_T{t:#}F{site:#}L{line:#}A{*:#}Z{z:#}C{channel:#}"},
        {"Opera Phenix, Operetta",
         "{well:r#c#}f{site:#}p{z:#}[rc{record:#}]-ch{channel:#}sk{t:#}fk{fast:#}fl{lifetime:#}"},
        {"Opera Phenix, Operetta", "{well:r#c#}f{site:#}p{z:#}-ch{channel:#}t{t:#}"},
        {"IN Cell",
         "[{plate}_]{well:A - #}(fld {site:#} wv {channel}[ z {z:#}][ time {t:#} - {*:#} ms])"},
        {"Incucyte", "{channel}_{well:A#}_{site:#}_{t:#y#m#d_#h#m}"},
        {"Incucyte", "{channel}_{well:A#}_{site:#}_{t:#d#h#m}"},
        {"Cellomics", "{plate}_{well:A#}f{site:#}d{channel:#}"},
        {"Micro-Manager", "img_channel{channel:#}_position{site:#}_time{t:#}_z{z:#}"},
        {"Micro-Manager", "{site}/img_{t:#}_{channel}_{z:#}"},
        {"Micro-Manager", "img_{t:#}_{channel}_{z:#}"},
        {"Micro-Manager", "{plate}_MMStack_{site}.ome"},
    };
    return all;
}

QStringList expandedPattern(const QString& pattern) {
    const auto open = static_cast<int>(pattern.indexOf(QLatin1Char('[')));
    if (open < 0)
        return {pattern};
    const auto close = static_cast<int>(pattern.indexOf(QLatin1Char(']'), open));
    const QString before = pattern.left(open), part = pattern.mid(open + 1, close - open - 1),
                  after = pattern.mid(close + 1);
    return expandedPattern(before + part + after) + expandedPattern(before + after);
}

} // namespace lumetra
