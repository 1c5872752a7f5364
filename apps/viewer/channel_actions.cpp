#include "apps/viewer/channel_actions.h"

#include "apps/viewer/channel_model.h"
#include "apps/viewer/channel_panel.h"

#include <algorithm>

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
    onSelected(Id::moveUp, [&panel](ChannelModel& m, int row) {
        m.move(row, -1);
        panel.setCurrentRow(std::max(row - 1, 0));
    });
    onSelected(Id::moveDown, [&panel](ChannelModel& m, int row) {
        m.move(row, 1);
        panel.setCurrentRow(std::min(row + 1, m.size() - 1));
    });
    onSelected(Id::remove, [](ChannelModel& m, int row) { m.remove(row); });
    QObject::connect(&actions[Id::rename], &QAction::triggered, &panel,
                     &ChannelPanel::renameCurrent);
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
    onAll(Id::allAutomatic, [](ChannelModel& m) { m.useAutomaticLevelsForAll(); });
    QObject::connect(&actions[Id::continuous], &QAction::toggled, &model,
                     &ChannelModel::setContinuousLevels);
    for (int i = 0; i < 5; ++i)
        onSelected(Id::full8 + i,
                   [i](ChannelModel& m, int row) { m.useFullRange(row, 8 + 2 * i); });
    onSelected(Id::reset, [](ChannelModel& m, int row) { m.resetContrast(row); });
    onSelected(Id::toAll, [](ChannelModel& m, int row) { m.copyLevelsToAll(row); });

    QObject::connect(&actions[Id::undo], &QAction::triggered, &model.undoStack(),
                     &QUndoStack::undo);
    QObject::connect(&actions[Id::redo], &QAction::triggered, &model.undoStack(),
                     &QUndoStack::redo);
    QObject::connect(&model.undoStack(), &QUndoStack::canUndoChanged, &actions[Id::undo],
                     &QAction::setEnabled);
    QObject::connect(&model.undoStack(), &QUndoStack::canRedoChanged, &actions[Id::redo],
                     &QAction::setEnabled);
    actions[Id::undo].setEnabled(false);
    actions[Id::redo].setEnabled(false);

    QObject::connect(&actions[Id::goToChannels], &QAction::triggered, &panel,
                     &ChannelPanel::focusChannels);
    QObject::connect(&actions[Id::goToLevels], &QAction::triggered, &panel,
                     &ChannelPanel::focusLevels);
}

} // namespace lumetra
