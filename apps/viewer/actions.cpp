#include "apps/viewer/actions.h"

#include <QCoreApplication>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>

namespace lumetra {
namespace {

enum Kind {
    command,
    choice, ///< Can be switched on and off.
    shift   ///< Its keys are taken in the image only.
};

struct Row {
    ActionId id;
    const char* menu;
    const char* text;
    const char* keys;
    QKeySequence::StandardKey standardKey = QKeySequence::UnknownKey; ///< In place of `keys`.
    Kind kind = command;
    bool endsGroup = false;
};

constexpr auto noKey = QKeySequence::UnknownKey;

constexpr auto fileMenu = QT_TRANSLATE_NOOP("Actions", "&File");
constexpr auto editMenu = QT_TRANSLATE_NOOP("Actions", "&Edit");
constexpr auto acquisitionMenu = QT_TRANSLATE_NOOP("Actions", "&Acquisition");
constexpr auto viewMenu = QT_TRANSLATE_NOOP("Actions", "&View");
constexpr auto channelsMenu = QT_TRANSLATE_NOOP("Actions", "&Channels");
constexpr auto contrastMenu = QT_TRANSLATE_NOOP("Actions", "Co&ntrast");
constexpr auto helpMenu = QT_TRANSLATE_NOOP("Actions", "&Help");

// clang-format off
const Row actionTable[] = {
    {ActionId::open, fileMenu, QT_TRANSLATE_NOOP("Actions", "&Open…"), "", QKeySequence::Open},
    {ActionId::add, fileMenu, QT_TRANSLATE_NOOP("Actions", "&Add Channels…"), "Ctrl+Shift+O"},
    {ActionId::recent, fileMenu, QT_TRANSLATE_NOOP("Actions", "Open &Recent"), ""},
    {ActionId::keepSettings, fileMenu, QT_TRANSLATE_NOOP("Actions", "&Keep Channel Settings for Similar Files"), "", noKey, choice, true},
    {ActionId::saveImage, fileMenu, QT_TRANSLATE_NOOP("Actions", "&Save Image As…"), "", QKeySequence::Save},
    {ActionId::saveSettings, fileMenu, QT_TRANSLATE_NOOP("Actions", "Save Channel S&ettings As…"), "Ctrl+Shift+S"},
    {ActionId::copyCommand, fileMenu, QT_TRANSLATE_NOOP("Actions", "Copy as Co&mmand"), "Ctrl+Shift+C"},
    {ActionId::batchCommand, fileMenu, QT_TRANSLATE_NOOP("Actions", "Show &Batch Command for the Folder…"), "Ctrl+B", noKey, command, true},
    {ActionId::customDyes, fileMenu, QT_TRANSLATE_NOOP("Actions", "Custom &Dyes…"), "Ctrl+D", noKey, command, true},
    {ActionId::closeAll, fileMenu, QT_TRANSLATE_NOOP("Actions", "C&lose"), "", QKeySequence::Close},
    {ActionId::quit, fileMenu, QT_TRANSLATE_NOOP("Actions", "&Quit"), "Ctrl+Q"},

    {ActionId::undo, editMenu, QT_TRANSLATE_NOOP("Actions", "&Undo"), "", QKeySequence::Undo},
    {ActionId::redo, editMenu, QT_TRANSLATE_NOOP("Actions", "&Redo"), "", QKeySequence::Redo, command, true},
    {ActionId::copyImage, editMenu, QT_TRANSLATE_NOOP("Actions", "&Copy Image"), "", QKeySequence::Copy},
    {ActionId::copyValues, editMenu, QT_TRANSLATE_NOOP("Actions", "Copy Pixel &Values"), "Ctrl+Shift+V"},

    {ActionId::live, acquisitionMenu, QT_TRANSLATE_NOOP("Actions", "&Live"), "F5", noKey, choice},
    {ActionId::snap, acquisitionMenu, QT_TRANSLATE_NOOP("Actions", "&Snap"), "F6", noKey, command, true},
    {ActionId::camera1, acquisitionMenu, QT_TRANSLATE_NOOP("Actions", "Simulate Camera with &1 Channel"), "Shift+F2"},
    {ActionId::camera2, acquisitionMenu, QT_TRANSLATE_NOOP("Actions", "Simulate Camera with &2 Channels"), "F2"},
    {ActionId::camera3, acquisitionMenu, QT_TRANSLATE_NOOP("Actions", "Simulate Camera with &3 Channels"), "F3"},
    {ActionId::camera4, acquisitionMenu, QT_TRANSLATE_NOOP("Actions", "Simulate Camera with &4 Channels"), "F4"},
    {ActionId::cameraFromImages, acquisitionMenu, QT_TRANSLATE_NOOP("Actions", "Simulate Camera from &Open Files"), "Shift+F3"},

    {ActionId::fit, viewMenu, QT_TRANSLATE_NOOP("Actions", "&Fit to Window"), "0"},
    {ActionId::actualSize, viewMenu, QT_TRANSLATE_NOOP("Actions", "&1:1"), "Ctrl+1"},
    {ActionId::zoomIn, viewMenu, QT_TRANSLATE_NOOP("Actions", "Zoom &In"), "", QKeySequence::ZoomIn},
    {ActionId::zoomOut, viewMenu, QT_TRANSLATE_NOOP("Actions", "Zoom &Out"), "", QKeySequence::ZoomOut, command, true},
    {ActionId::previousSlice, viewMenu, QT_TRANSLATE_NOOP("Actions", "Pre&vious Z-Slice"), "Ctrl+,"},
    {ActionId::nextSlice, viewMenu, QT_TRANSLATE_NOOP("Actions", "&Next Z-Slice"), "Ctrl+."},
    {ActionId::previousFrame, viewMenu, QT_TRANSLATE_NOOP("Actions", "Previous &Time Point"), "Ctrl+Shift+Left"},
    {ActionId::nextFrame, viewMenu, QT_TRANSLATE_NOOP("Actions", "Next Ti&me Point"), "Ctrl+Shift+Right", noKey, command, true},
    {ActionId::gray, viewMenu, QT_TRANSLATE_NOOP("Actions", "Single Channel in &Gray"), "G", noKey, choice},
    {ActionId::safeColours, viewMenu, QT_TRANSLATE_NOOP("Actions", "&Colour-Blind-Safe Colours"), "D", noKey, choice},
    {ActionId::saturated, viewMenu, QT_TRANSLATE_NOOP("Actions", "Mark &Saturated Pixels"), "M", noKey, choice, true},
    {ActionId::legend, viewMenu, QT_TRANSLATE_NOOP("Actions", "&Legend"), "L", noKey, choice},
    {ActionId::scaleBar, viewMenu, QT_TRANSLATE_NOOP("Actions", "Scale &Bar"), "B", noKey, choice},
    {ActionId::pixelSize, viewMenu, QT_TRANSLATE_NOOP("Actions", "Pi&xel Size…"), "Shift+B", noKey, command, true},
    {ActionId::panels, viewMenu, QT_TRANSLATE_NOOP("Actions", "Channels Side b&y Side"), "T", noKey, choice},
    {ActionId::colourPanels, viewMenu, QT_TRANSLATE_NOOP("Actions", "P&anels in Colour"), "Shift+T", noKey, choice},
    {ActionId::profile, viewMenu, QT_TRANSLATE_NOOP("Actions", "Line P&rofile"), "I", noKey, choice, true},
    {ActionId::pseudo, viewMenu, QT_TRANSLATE_NOOP("Actions", "&Pseudo-Colour"), "P", noKey, choice},
    {ActionId::inverted, viewMenu, QT_TRANSLATE_NOOP("Actions", "Inv&ert LUT"), "Shift+P", noKey, choice, true},
    {ActionId::channelPanel, viewMenu, QT_TRANSLATE_NOOP("Actions", "Channel Pane&l"), "F8", noKey, choice},
    {ActionId::fullScreen, viewMenu, QT_TRANSLATE_NOOP("Actions", "F&ull Screen"), "F11", noKey, choice},

    {ActionId::goToChannels, channelsMenu, QT_TRANSLATE_NOOP("Actions", "&Go to Channel List"), "Shift+Z", noKey, command, true},
    {ActionId::show1, channelsMenu, QT_TRANSLATE_NOOP("Actions", "Show or Hide Channel &1"), "1"},
    {ActionId::show2, channelsMenu, QT_TRANSLATE_NOOP("Actions", "Show or Hide Channel &2"), "2"},
    {ActionId::show3, channelsMenu, QT_TRANSLATE_NOOP("Actions", "Show or Hide Channel &3"), "3"},
    {ActionId::show4, channelsMenu, QT_TRANSLATE_NOOP("Actions", "Show or Hide Channel &4"), "4"},
    {ActionId::show5, channelsMenu, QT_TRANSLATE_NOOP("Actions", "Show or Hide Channel &5"), "5"},
    {ActionId::show6, channelsMenu, QT_TRANSLATE_NOOP("Actions", "Show or Hide Channel &6"), "6"},
    {ActionId::show7, channelsMenu, QT_TRANSLATE_NOOP("Actions", "Show or Hide Channel &7"), "7"},
    {ActionId::show8, channelsMenu, QT_TRANSLATE_NOOP("Actions", "Show or Hide Channel &8"), "8"},
    {ActionId::show9, channelsMenu, QT_TRANSLATE_NOOP("Actions", "Show or Hide Channel &9"), "9", noKey, command, true},
    {ActionId::solo, channelsMenu, QT_TRANSLATE_NOOP("Actions", "Show Selected Channel &Only"), "S"},
    {ActionId::showAll, channelsMenu, QT_TRANSLATE_NOOP("Actions", "Show &All Channels"), "Shift+S", noKey, command, true},
    {ActionId::rename, channelsMenu, QT_TRANSLATE_NOOP("Actions", "Re&name Channel"), "Ctrl+R"},
    {ActionId::moveUp, channelsMenu, QT_TRANSLATE_NOOP("Actions", "Move Channel &Up"), "Ctrl+Up"},
    {ActionId::moveDown, channelsMenu, QT_TRANSLATE_NOOP("Actions", "Move Channel &Down"), "Ctrl+Down"},
    {ActionId::remove, channelsMenu, QT_TRANSLATE_NOOP("Actions", "Remo&ve Channel"), "Ctrl+Del", noKey, command, true},
    {ActionId::left, channelsMenu, QT_TRANSLATE_NOOP("Actions", "Shift Channel Left"), "Left", noKey, shift},
    {ActionId::right, channelsMenu, QT_TRANSLATE_NOOP("Actions", "Shift Channel Right"), "Right", noKey, shift},
    {ActionId::up, channelsMenu, QT_TRANSLATE_NOOP("Actions", "Shift Channel Up"), "Up", noKey, shift},
    {ActionId::down, channelsMenu, QT_TRANSLATE_NOOP("Actions", "Shift Channel Down"), "Down", noKey, shift},
    {ActionId::farLeft, channelsMenu, QT_TRANSLATE_NOOP("Actions", "Shift Channel Left by 10 Pixels"), "Shift+Left", noKey, shift},
    {ActionId::farRight, channelsMenu, QT_TRANSLATE_NOOP("Actions", "Shift Channel Right by 10 Pixels"), "Shift+Right", noKey, shift},
    {ActionId::farUp, channelsMenu, QT_TRANSLATE_NOOP("Actions", "Shift Channel Up by 10 Pixels"), "Shift+Up", noKey, shift},
    {ActionId::farDown, channelsMenu, QT_TRANSLATE_NOOP("Actions", "Shift Channel Down by 10 Pixels"), "Shift+Down", noKey, shift},
    {ActionId::resetOffsets, channelsMenu, QT_TRANSLATE_NOOP("Actions", "&Reset All Offsets"), "Ctrl+Backspace"},

    {ActionId::goToLevels, contrastMenu, QT_TRANSLATE_NOOP("Actions", "&Go to Contrast Limits"), "Shift+C", noKey, command, true},
    {ActionId::automatic, contrastMenu, QT_TRANSLATE_NOOP("Actions", "&Auto-Contrast"), "A"},
    {ActionId::allAutomatic, contrastMenu, QT_TRANSLATE_NOOP("Actions", "A&uto-Contrast for All Channels"), "Shift+A"},
    {ActionId::continuous, contrastMenu, QT_TRANSLATE_NOOP("Actions", "&Continuous Auto-Contrast"), "F", noKey, choice, true},
    {ActionId::full8, contrastMenu, QT_TRANSLATE_NOOP("Actions", "Full &8-Bit Range"), "Alt+1"},
    {ActionId::full10, contrastMenu, QT_TRANSLATE_NOOP("Actions", "Full 1&0-Bit Range"), "Alt+2"},
    {ActionId::full12, contrastMenu, QT_TRANSLATE_NOOP("Actions", "Full 1&2-Bit Range"), "Alt+3"},
    {ActionId::full14, contrastMenu, QT_TRANSLATE_NOOP("Actions", "Full 1&4-Bit Range"), "Alt+4"},
    {ActionId::full16, contrastMenu, QT_TRANSLATE_NOOP("Actions", "Full 1&6-Bit Range"), "Alt+5", noKey, command, true},
    {ActionId::reset, contrastMenu, QT_TRANSLATE_NOOP("Actions", "&Reset Contrast"), "R"},
    {ActionId::toAll, contrastMenu, QT_TRANSLATE_NOOP("Actions", "Copy Contrast to A&ll Channels"), "Shift+L", noKey, command, true},
    {ActionId::dataRange, contrastMenu, QT_TRANSLATE_NOOP("Actions", "&Histogram over the Data Range"), "H", noKey, choice},
    {ActionId::logarithmic, contrastMenu, QT_TRANSLATE_NOOP("Actions", "Lo&garithmic Histogram"), "Shift+H", noKey, choice},

    {ActionId::about, helpMenu, QT_TRANSLATE_NOOP("Actions", "&About Lumetra Viewer"), ""},
};
// clang-format on

QString translated(const char* text) { return QCoreApplication::translate("Actions", text); }

QMenu& menuCalled(QMainWindow& window, const QString& title) {
    for (QAction* action : window.menuBar()->actions())
        if (action->text() == title)
            return *action->menu();
    QMenu& menu = *window.menuBar()->addMenu(title);
    menu.setStyleSheet(QStringLiteral("QMenu { menu-scrollable: 1 }")); // on small screens
    return menu;
}

} // namespace

Actions::Actions(QMainWindow& window, QWidget& image) {
    for (const Row& row : actionTable) {
        auto* action = new QAction(translated(row.text), &window);
        if (row.standardKey != noKey)
            action->setShortcuts(row.standardKey);
        if (action->shortcut().isEmpty()) // not every desktop has keys for everything
            action->setShortcut(QKeySequence(QString::fromLatin1(row.keys)));
        action->setCheckable(row.kind == choice);
        if (row.kind == shift) {
            action->setShortcutContext(Qt::WidgetShortcut);
            image.addAction(action);
        }
        QMenu& menu = menuCalled(window, translated(row.menu));
        menu.addAction(action);
        if (row.kind != shift)
            window.addAction(action); // keys go on working while the menu bar is hidden
        if (row.endsGroup)
            menu.addSeparator();
        actions_[row.id] = action;
    }
}

} // namespace lumetra
