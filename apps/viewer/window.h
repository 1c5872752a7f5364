// The window: the picture, the panels around it, and what the actions do.
#pragma once

#include "apps/viewer/actions.h"
#include "apps/viewer/statistics.h"
#include "apps/viewer/viewer.h"

#include <QElapsedTimer>
#include <QMainWindow>
#include <QTimer>

class QComboBox;
class QDoubleSpinBox;
class QFrame;
class QLabel;
class QSlider;

namespace apps {

class Canvas;
class ChannelPanel;
class ColourBar;
class CourseView;

class Window : public QMainWindow {
    Q_OBJECT
public:
    Window();
    ~Window() override;

    Viewer& viewer() { return viewer_; }
    Actions& actions() { return *actions_; }
    Canvas& canvas() { return *canvas_; }
    ChannelPanel& panel() { return *panel_; }
    const Statistics& statistics() const { return statistics_; }

    /// Nanoseconds of the thread that the last picture took to be painted.
    std::int64_t paintingTime() const { return paintingTime_; }

    /// Starts a simulated camera.
    /// @param channels  2 to 4; 0 films the files that are open.
    void startCamera(int channels, int side = 2048);

    /// The problem that the window speaks of; empty if there is none.
    QString problem() const;

    /// Chooses a table of colours by its name, or a file, which can be chosen from then on.
    void useTable(const QString& nameOrFile);

    /// Asks for the size of a pixel.
    void askPixelSize();

    /// Replaces the user's own dyes, and keeps them.
    void setOwnDyes(const QMap<QString, QColor>& dyes);

protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void makeCentre();
    void makeDocks();
    void makeToolBar();
    void makeStatusBar();
    QWidget* makeMessageBar();
    QWidget* makePageBar();
    void connectViewer();
    void connectFileActions();
    void connectFrameActions();
    void connectViewActions();
    void connectChannelActions();

    void askAndOpen(bool adds);
    void askAndSave();
    void askAndSaveSettings();
    void copyCommand();
    void editOwnDyes();
    void chooseTable(int index);
    void addTable(const QString& nameOrFile);

    void showPicture();
    void showSource();
    void showSamples(QPoint pixel);
    void showProblem(const QString& reason);
    void showStatus();
    void updateOptions();
    void updateScaleBar(ViewOptions& options) const;
    void tick();
    void watchForStall();
    void restore();
    void keep();

    Viewer viewer_;
    Statistics statistics_;
    Canvas* canvas_ = nullptr;
    ChannelPanel* panel_ = nullptr;
    ColourBar* colourBar_ = nullptr;
    CourseView* course_ = nullptr;
    std::unique_ptr<Actions> actions_;
    QFrame* messageBar_ = nullptr;
    QLabel *message_ = nullptr, *samples_ = nullptr, *zoom_ = nullptr, *pace_ = nullptr,
           *gamma_ = nullptr, *pageText_ = nullptr;
    QWidget* pageBar_ = nullptr;
    QSlider* page_ = nullptr;
    QComboBox* table_ = nullptr;
    QDoubleSpinBox* rate_ = nullptr;
    QTimer second_;
    QElapsedTimer sinceTick_, sinceFrame_;
    std::uint64_t framesAtTick_ = 0, droppedBefore_ = 0;
    QPoint pointed_{-1, -1};
    int shownWidth_ = 0;
    std::int64_t paintingTime_ = 0;
    QString renderProblem_, chosenTable_;
    QMap<QString, QColor> ownDyes_;
    double pixelSize_ = 0; ///< Micrometres; 0 until it is known.
    bool isStalled_ = false;
};

/// A round length, 1, 2 or 5 times a power of ten, of about a fifth of a picture.
/// @param micrometres  The width of the picture.
double roundLength(double micrometres);

} // namespace apps
