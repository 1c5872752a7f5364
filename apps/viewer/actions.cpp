#include "apps/viewer/actions.h"

#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>

namespace apps {
namespace {

enum Kind {
    command,
    choice,  ///< Can be switched on and off.
    movement ///< Its keys are taken in the picture only.
};

struct Row {
    Act act;
    const char* menu;
    const char* text;
    const char* keys;
    QKeySequence::StandardKey standardKey = QKeySequence::UnknownKey; ///< In place of `keys`.
    Kind kind = command;
    bool endsGroup = false;
};

constexpr auto noKey = QKeySequence::UnknownKey;

const Row rows[] = {
    {Act::open, "&File", "&Open…", "", QKeySequence::Open},
    {Act::add, "&File", "&Add Channels…", "Ctrl+Shift+O"},
    {Act::keepSettings, "&File", "&Keep Levels from File to File", "", noKey, choice, true},
    {Act::saveAs, "&File", "&Save Picture As…", "", QKeySequence::Save},
    {Act::saveSettings, "&File", "Save S&ettings As…", "Ctrl+Shift+S"},
    {Act::copyPicture, "&File", "&Copy Picture", "", QKeySequence::Copy},
    {Act::copyCommand, "&File", "Copy as Co&mmand", "Ctrl+Shift+C", noKey, command, true},
    {Act::ownDyes, "&File", "Own &Dyes…", "Ctrl+D", noKey, command, true},
    {Act::closeAll, "&File", "C&lose", "", QKeySequence::Close},
    {Act::quit, "&File", "&Quit", "Ctrl+Q"},

    {Act::camera2, "F&rames", "Camera of &2 Channels", "F2"},
    {Act::camera3, "F&rames", "Camera of &3 Channels", "F3"},
    {Act::camera4, "F&rames", "Camera of &4 Channels", "F4"},
    {Act::cameraFiles, "F&rames", "Camera Films the &Open Files", "Shift+F3", noKey, command, true},
    {Act::run, "F&rames", "&Run", "F5", noKey, choice},
    {Act::single, "F&rames", "&Single Frame", "F6", noKey, command, true},
    {Act::previousPage, "F&rames", "&Previous Page", "Ctrl+,"},
    {Act::nextPage, "F&rames", "&Next Page", "Ctrl+."},

    {Act::fit, "&View", "&Fit", "0"},
    {Act::actualSize, "&View", "&1:1", "Ctrl+1"},
    {Act::zoomIn, "&View", "Zoom &In", "", QKeySequence::ZoomIn},
    {Act::zoomOut, "&View", "Zoom &Out", "", QKeySequence::ZoomOut, command, true},
    {Act::gray, "&View", "Single Channel in &Gray", "G", noKey, choice},
    {Act::saturated, "&View", "&Mark Saturated Samples", "M", noKey, choice, true},
    {Act::legend, "&View", "&Legend", "L", noKey, choice},
    {Act::scaleBar, "&View", "Scale &Bar", "B", noKey, choice},
    {Act::pixelSize, "&View", "Pi&xel Size…", "Shift+B", noKey, command, true},
    {Act::pseudo, "&View", "&Pseudo-Colour", "P", noKey, choice},
    {Act::reversed, "&View", "&Reversed Table", "Shift+P", noKey, choice, true},
    {Act::channelPanel, "&View", "&Channel Panel", "F8", noKey, choice},
    {Act::course, "&View", "Course of &Times", "F9", noKey, choice},
    {Act::fullScreen, "&View", "F&ull Screen", "", QKeySequence::FullScreen, choice},

    {Act::goToChannels, "&Channels", "&Go to Channels", "Shift+Z", noKey, command, true},
    {Act::show1, "&Channels", "Channel &1", "1"},
    {Act::show2, "&Channels", "Channel &2", "2"},
    {Act::show3, "&Channels", "Channel &3", "3"},
    {Act::show4, "&Channels", "Channel &4", "4"},
    {Act::show5, "&Channels", "Channel &5", "5"},
    {Act::show6, "&Channels", "Channel &6", "6"},
    {Act::show7, "&Channels", "Channel &7", "7"},
    {Act::show8, "&Channels", "Channel &8", "8"},
    {Act::show9, "&Channels", "Channel &9", "9", noKey, command, true},
    {Act::solo, "&Channels", "&Solo", "S"},
    {Act::showAll, "&Channels", "Show &All", "Shift+S"},
    {Act::distinct, "&Channels", "Colours Told Apart by &Everybody", "D", noKey, command, true},
    {Act::left, "&Channels", "Move Left", "Left", noKey, movement},
    {Act::right, "&Channels", "Move Right", "Right", noKey, movement},
    {Act::up, "&Channels", "Move Up", "Up", noKey, movement},
    {Act::down, "&Channels", "Move Down", "Down", noKey, movement},
    {Act::farLeft, "&Channels", "Move Left by Ten", "Shift+Left", noKey, movement},
    {Act::farRight, "&Channels", "Move Right by Ten", "Shift+Right", noKey, movement},
    {Act::farUp, "&Channels", "Move Up by Ten", "Shift+Up", noKey, movement},
    {Act::farDown, "&Channels", "Move Down by Ten", "Shift+Down", noKey, movement},
    {Act::unmoved, "&Channels", "Move All &Back", "Ctrl+Backspace"},

    {Act::goToLevels, "&Levels", "&Go to Levels", "Shift+C", noKey, command, true},
    {Act::automatic, "&Levels", "&Automatic", "A"},
    {Act::allAutomatic, "&Levels", "A&utomatic for All", "Shift+A"},
    {Act::follow, "&Levels", "&Follow Every Frame", "F", noKey, choice, true},
    {Act::full8, "&Levels", "Full Range of &8 Bits", "Alt+1"},
    {Act::full10, "&Levels", "Full Range of 1&0 Bits", "Alt+2"},
    {Act::full12, "&Levels", "Full Range of 1&2 Bits", "Alt+3"},
    {Act::full14, "&Levels", "Full Range of 1&4 Bits", "Alt+4"},
    {Act::full16, "&Levels", "Full Range of 1&6 Bits", "Alt+5", noKey, command, true},
    {Act::reset, "&Levels", "&Reset", "R"},
    {Act::toAll, "&Levels", "Copy to A&ll Channels", "Shift+L"},

    {Act::keys, "&Help", "&Keys", "", QKeySequence::HelpContents},
    {Act::about, "&Help", "&About", ""},
};

QMenu& menuCalled(QMainWindow& window, const QString& title) {
    for (QAction* action : window.menuBar()->actions())
        if (action->text() == title)
            return *action->menu();
    return *window.menuBar()->addMenu(title);
}

} // namespace

Actions::Actions(QMainWindow& window, QWidget& picture) {
    for (const Row& row : rows) {
        auto* action = new QAction(QString::fromUtf8(row.text), &window);
        if (row.standardKey != noKey)
            action->setShortcuts(row.standardKey);
        if (action->shortcut().isEmpty()) // not every desktop has keys for everything
            action->setShortcut(QKeySequence(QString::fromLatin1(row.keys)));
        action->setCheckable(row.kind == choice);
        if (row.kind == movement) {
            action->setShortcutContext(Qt::WidgetShortcut);
            picture.addAction(action);
        }
        QMenu& menu = menuCalled(window, QString::fromLatin1(row.menu));
        menu.addAction(action);
        if (row.kind != movement)
            window.addAction(action); // keys go on working while the menu bar is hidden
        if (row.endsGroup)
            menu.addSeparator();
        actions_[row.act] = action;
    }
}

QString Actions::keyTable() const {
    QString table = QStringLiteral("<table cellpadding=2>");
    for (const Row& row : rows) {
        const QAction& action = *actions_.at(row.act);
        if (!action.shortcut().isEmpty())
            table += QStringLiteral("<tr><td>%1</td><td>&nbsp;%2</td></tr>")
                         .arg(QString(action.text()).remove(QLatin1Char('&')).toHtmlEscaped(),
                              action.shortcut().toString(QKeySequence::NativeText).toHtmlEscaped());
    }
    return table + QStringLiteral("</table>");
}

} // namespace apps
