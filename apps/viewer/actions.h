// Everything that the user can do, with its place in the menus and its keys, in one table.
#pragma once

#include <QAction>

#include <map>

class QMainWindow;

namespace apps {

enum class Act {
    // clang-format off
    open, add, saveAs, saveSettings, copyPicture, copyCommand, ownDyes, closeAll, quit,
    camera2, camera3, camera4, cameraFiles, run, single, previousPage, nextPage,
    fit, actualSize, zoomIn, zoomOut, gray, saturated, legend, scaleBar, pixelSize, pseudo, reversed,
    channelPanel, course, fullScreen,
    show1, show2, show3, show4, show5, show6, show7, show8, show9, solo, showAll, distinct,
    goToChannels, left, right, up, down, farLeft, farRight, farUp, farDown, unmoved,
    goToLevels, automatic, allAutomatic, follow, full8, full10, full12, full14, full16, reset, toAll,
    keepSettings, keys, about
    // clang-format on
};

/// Makes the menus of a window.
class Actions {
public:
    /// @param picture  The widget in which the arrow keys move channels; elsewhere they move what
    ///                 they always move.
    Actions(QMainWindow& window, QWidget& picture);

    QAction& operator[](Act act) const { return *actions_.at(act); }

    /// All actions that have keys, in the order of the menus.
    QString keyTable() const;

private:
    std::map<Act, QAction*> actions_;
};

} // namespace apps
