// Everything that the user can do, with its place in the menus and its keys, in one table.
#pragma once

#include <QAction>

#include <map>

class QMainWindow;

namespace lumetra {

enum class ActionId {
    // clang-format off
    open, add, recent, keepSettings, saveImage, saveSettings, copyImage, copyCommand, batchCommand,
    customDyes, closeAll, quit,
    undo, redo, copyValues,
    live, snap, camera1, camera2, camera3, camera4, cameraFromImages,
    fit, actualSize, zoomIn, zoomOut, previousSlice, nextSlice, previousFrame, nextFrame, gray,
    safeColours, saturated, legend, scaleBar, pixelSize, panels, colourPanels, profile, pseudo,
    inverted, channelPanel, fullScreen,
    goToChannels, show1, show2, show3, show4, show5, show6, show7, show8, show9, solo, showAll,
    rename, moveUp, moveDown, remove, left, right, up, down, farLeft, farRight, farUp, farDown,
    resetOffsets,
    goToLevels, automatic, allAutomatic, continuous, full8, full10, full12, full14, full16, reset,
    toAll, dataRange, logarithmic,
    about
    // clang-format on
};

/// The action so many places behind another.
inline ActionId operator+(ActionId first, int places) {
    return static_cast<ActionId>(static_cast<int>(first) + places);
}

/// Makes the menus of a window.
class Actions {
public:
    /// @param image  The widget in which the arrow keys shift channels; elsewhere they move what
    ///               they always move.
    Actions(QMainWindow& window, QWidget& image);

    QAction& operator[](ActionId id) const { return *actions_.at(id); }

private:
    std::map<ActionId, QAction*> actions_;
};

} // namespace lumetra
