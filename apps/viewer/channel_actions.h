// What the actions of the menus Channels and Contrast do.
#pragma once

#include "apps/viewer/actions.h"

namespace lumetra {

class ChannelModel;
class ChannelPanel;

/// Connects the actions with the channels; some are for the one that is selected in the panel. All
/// three have to live equally long.
void connectChannelActions(const Actions& actions, ChannelModel& model, ChannelPanel& panel);

} // namespace lumetra
