#include "apps/viewer/channel_actions.h"

#include "apps/viewer/channel_model.h"
#include "apps/viewer/channel_panel.h"

namespace lumetra {

void connectChannelActions(const Actions& actions, ChannelModel& model, ChannelPanel& panel) {
    using Id = ActionId;
    const auto onAll = [&](Id id, auto change) {
        QObject::connect(&actions[id], &QAction::triggered, &model,
                         [&model, change] { change(model); });
    };
    const auto onSelected = [&](Id id, auto change) {
        QObject::connect(&actions[id], &QAction::triggered, &panel,
                         [&model, &panel, change] { change(model, panel.currentRow()); });
    };
    for (int row = 0; row < 9; ++row)
        onAll(Id::show1 + row, [row](ChannelModel& m) {
            if (row < m.size())
                m.setVisible(row, !m.channel(row).visible);
        });
    onSelected(Id::solo, [](ChannelModel& m, int row) { m.solo(row); });
    onAll(Id::showAll, [](ChannelModel& m) { m.showAll(); });
    onAll(Id::colourBlindSafe, [](ChannelModel& m) { m.useColourBlindSafeColours(); });
    constexpr int far = 10;
    const std::pair<Id, QPoint> shifts[] = {{Id::left, {-1, 0}},      {Id::right, {1, 0}},
                                            {Id::up, {0, -1}},        {Id::down, {0, 1}},
                                            {Id::farLeft, {-far, 0}}, {Id::farRight, {far, 0}},
                                            {Id::farUp, {0, -far}},   {Id::farDown, {0, far}}};
    for (const auto& shift : shifts)
        onSelected(shift.first,
                   [by = shift.second](ChannelModel& m, int row) { m.nudge(row, by); });
    onAll(Id::resetOffsets, [](ChannelModel& m) { m.resetOffsets(); });

    onSelected(Id::automatic, [](ChannelModel& m, int row) { m.useAutomaticLevels(row); });
    onAll(Id::allAutomatic, [](ChannelModel& m) {
        for (int row = 0; row < m.size(); ++row)
            m.useAutomaticLevels(row);
    });
    QObject::connect(&actions[Id::continuous], &QAction::toggled, &model,
                     &ChannelModel::setContinuousLevels);
    for (int i = 0; i < 5; ++i)
        onSelected(Id::full8 + i,
                   [i](ChannelModel& m, int row) { m.useFullRange(row, 8 + 2 * i); });
    onSelected(Id::reset, [](ChannelModel& m, int row) { m.useFullRange(row); });
    onSelected(Id::toAll, [](ChannelModel& m, int row) { m.copyLevelsToAll(row); });

    QObject::connect(&actions[Id::goToChannels], &QAction::triggered, &panel,
                     &ChannelPanel::focusChannels);
    QObject::connect(&actions[Id::goToLevels], &QAction::triggered, &panel,
                     &ChannelPanel::focusLevels);
}

} // namespace lumetra
