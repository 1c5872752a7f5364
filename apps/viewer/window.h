// The window: the image, the panels around it, and what the actions do.
#pragma once

#include "apps/common/custom_dyes.h"
#include "apps/viewer/actions.h"
#include "apps/viewer/frame_monitor.h"
#include "apps/viewer/viewer.h"

#include <QLine>
#include <QMainWindow>
#include <QTimer>

#include <functional>

class QDoubleSpinBox;

namespace lumetra {

class Canvas;
class ChannelPanel;
class LutBar;
class LutBox;
class MessageBar;
class ProfileView;
class RecentMenu;
class StackBar;
class StatusLine;

class Window : public QMainWindow {
    Q_OBJECT
public:
    Window();
    ~Window() override;

    Viewer& viewer() { return viewer_; }
    Actions& actions() { return actions_; }

    /// Replaces the user's custom dyes, and keeps them.
    void setCustomDyes(const CustomDyes& dyes);

protected:
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void makeCentre();
    void makeDocks();
    void addDock(const QString& title, const QString& name, QWidget* content,
                 Qt::DockWidgetArea area, ActionId id);
    void makeToolBar();
    void setIcons();
    void on(ActionId id, const std::function<void()>& action);
    void connectViewer();
    void connectFileActions();
    void connectFrameActions();
    void connectViewActions();
    void restoreState();
    void saveState();
    void restoreCustomDyes();

    void askAndOpen(bool adds);
    void askAndSaveImage();
    void askPixelSize();
    void askForBatchCommand();
    QString suggestedFile(const QString& ending) const;

    void showImage();
    void showSource();
    void showIntensities(QPoint pixel);
    void showProfile(QLine line);
    void showChannels();
    void hideError();
    void updateOptions();
    std::optional<ScaleBar> scaleBar() const;

    Viewer viewer_;
    FrameMonitor monitor_{viewer_};
    Canvas* canvas_;
    Actions actions_;
    ChannelPanel* panel_ = nullptr;
    LutBar* lutBar_ = nullptr;
    LutBox* lutBox_ = nullptr;
    MessageBar* messageBar_ = nullptr;
    ProfileView* profile_ = nullptr;
    RecentMenu* recent_ = nullptr;
    StackBar* stackBar_ = nullptr;
    StatusLine* statusLine_ = nullptr;
    QDoubleSpinBox* rate_ = nullptr;
    QTimer saving_; ///< Of preferences, when they have rested for a moment.
    QPoint pointed_{-1, -1};
    QLine line_;
    int imageWidth_ = 0;
    QString renderProblem_;
    CustomDyes customDyes_;
};

/// A round length, 1, 2 or 5 times a power of ten, of about a fifth of an image.
/// @param micrometres  The width of the image.
double roundLength(double micrometres);

} // namespace lumetra
