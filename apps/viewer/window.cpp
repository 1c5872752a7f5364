#include "apps/viewer/window.h"

#include "apps/common/error.h"
#include "apps/viewer/canvas.h"
#include "apps/viewer/channel_actions.h"
#include "apps/viewer/channel_panel.h"
#include "apps/viewer/custom_dyes_dialog.h"
#include "apps/viewer/lut_bar.h"
#include "apps/viewer/lut_box.h"
#include "apps/viewer/message_bar.h"
#include "apps/viewer/page_bar.h"
#include "apps/viewer/status_line.h"

#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QDir>
#include <QDockWidget>
#include <QDoubleSpinBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QInputDialog>
#include <QMessageBox>
#include <QMimeData>
#include <QSettings>
#include <QStandardPaths>
#include <QToolBar>
#include <QUrl>

#include <algorithm>
#include <cmath>

namespace lumetra {
namespace {

constexpr std::pair<ActionId, const char*> keptChoices[] = {
    {ActionId::legend, "legend"},
    {ActionId::gray, "graySingle"},
    {ActionId::keepSettings, "keepSettings"}};

/// The file in which the user's custom dyes are kept from run to run. It need not exist; the folder
/// is made.
QString customDyesFile() {
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation);
    QDir().mkpath(folder);
    return folder + QStringLiteral("/dyes.ini");
}

} // namespace

double roundLength(double micrometres) {
    constexpr double share = 0.2;
    const double wanted = micrometres * share;
    const double power = std::pow(10, std::floor(std::log10(wanted)));
    for (const double round : {5.0, 2.0})
        if (wanted >= round * power)
            return round * power;
    return power;
}

Window::Window() {
    setAcceptDrops(true);
    resize(1360, 900);
    makeCentre();
    actions_ = std::make_unique<Actions>(*this, *canvas_);
    makeDock();
    makeToolBar();
    statusLine_ = new StatusLine(this);
    setStatusBar(statusLine_);
    connectViewer();
    connectFileActions();
    connectFrameActions();
    connectViewActions();
    connectChannelActions(*actions_, viewer_.model(), *panel_);
    restoreState();
    restoreCustomDyes();
    showSource();
}

Window::~Window() {
    hide(); // fields that lose the focus may still change the model
}

void Window::makeCentre() {
    auto* centre = new QWidget(this);
    messageBar_ = new MessageBar(centre);
    pageBar_ = new PageBar(centre);
    canvas_ = new Canvas(centre);
    lutBar_ = new LutBar(centre);
    lutBar_->hide();
    auto* row = new QHBoxLayout;
    row->setSpacing(0);
    row->addWidget(canvas_, 1);
    row->addWidget(lutBar_);
    auto* column = new QVBoxLayout(centre);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(messageBar_);
    column->addLayout(row, 1);
    column->addWidget(pageBar_);
    setCentralWidget(centre);
}

void Window::makeDock() {
    panel_ = new ChannelPanel(viewer_.model(), this);
    auto* dock = new QDockWidget(tr("Channels"), this);
    dock->setObjectName(QStringLiteral("channels"));
    dock->setWidget(panel_);
    addDockWidget(Qt::RightDockWidgetArea, dock);
    resizeDocks({dock}, {380}, Qt::Horizontal);
    QAction& action = (*actions_)[ActionId::channelPanel];
    action.setChecked(true);
    connect(&action, &QAction::triggered, dock, &QDockWidget::setVisible);
    connect(dock->toggleViewAction(), &QAction::toggled, &action, &QAction::setChecked);
}

void Window::makeToolBar() {
    auto* bar = addToolBar(tr("Tools"));
    bar->setObjectName(QStringLiteral("tools"));
    bar->setMovable(false);
    bar->setToolButtonStyle(Qt::ToolButtonTextOnly);
    Actions& act = *actions_;
    act[ActionId::open].setIconText(tr("Open"));
    act[ActionId::saveImage].setIconText(tr("Save"));
    act[ActionId::fit].setIconText(tr("Fit"));
    rate_ = new QDoubleSpinBox(bar);
    rate_->setRange(0.1, 100);
    rate_->setDecimals(1);
    rate_->setSuffix(tr(" frames/s"));
    rate_->setKeyboardTracking(false);
    rate_->setAccessibleName(tr("Frames per second"));
    lutBox_ = new LutBox(bar);
    bar->addActions({&act[ActionId::open], &act[ActionId::saveImage]});
    bar->addSeparator();
    bar->addActions({&act[ActionId::live], &act[ActionId::snap]});
    bar->addWidget(rate_);
    bar->addSeparator();
    bar->addActions({&act[ActionId::fit], &act[ActionId::actualSize], &act[ActionId::legend],
                     &act[ActionId::scaleBar], &act[ActionId::pseudo]});
    bar->addWidget(lutBox_);
}

void Window::connectViewer() {
    connect(&viewer_, &Viewer::imageChanged, this, &Window::showImage);
    connect(&viewer_, &Viewer::sourceChanged, this, &Window::showSource);
    connect(&viewer_, &Viewer::errorOccurred, this, &Window::showError);
    connect(&viewer_, &Viewer::statusMessage, this, [this](const QString& text) {
        messageBar_->hide();
        statusLine_->showMessage(text, 4000);
    });
    connect(&monitor_, &FrameMonitor::measured, statusLine_, &StatusLine::showFrameRate);
    connect(&monitor_, &FrameMonitor::stalled, this, [this](double seconds) {
        showError(tr("No frame from the camera for %1 s").arg(seconds, 0, 'f', 0));
    });
    connect(&monitor_, &FrameMonitor::resumed, messageBar_, &QWidget::hide);
    connect(canvas_, &Canvas::hovered, this, &Window::showIntensities);
    connect(canvas_, &Canvas::scaleChanged, this,
            [this] { statusLine_->showZoom(canvas_->scale()); });
    connect(&viewer_.model(), &ChannelModel::dataChanged, this, &Window::showChannels);
    connect(pageBar_, &PageBar::pageChosen, &viewer_, &Viewer::setPage);
}

/// Lets an action that is triggered do something.
template<class Do>
void Window::on(ActionId id, const Do& action) {
    connect(&(*actions_)[id], &QAction::triggered, this, action);
}

void Window::connectFileActions() {
    on(ActionId::open, [this] { askAndOpen(false); });
    on(ActionId::add, [this] { askAndOpen(true); });
    on(ActionId::saveImage, &Window::askAndSaveImage);
    on(ActionId::saveSettings, &Window::askAndSaveSettings);
    on(ActionId::copyImage, [this] { QApplication::clipboard()->setImage(viewer_.image()); });
    on(ActionId::copyCommand, &Window::copyCommand);
    on(ActionId::customDyes, &Window::editCustomDyes);
    on(ActionId::closeAll, [this] { viewer_.close(); });
    on(ActionId::quit, &Window::close);
    on(ActionId::shortcuts, &Window::showShortcuts);
    on(ActionId::about, &Window::showAbout);
    connect(&(*actions_)[ActionId::keepSettings], &QAction::toggled, &viewer_,
            &Viewer::keepSettings);
}

void Window::connectFrameActions() {
    for (int channels = 2; channels <= 4; ++channels)
        on(ActionId::camera2 + (channels - 2),
           [this, channels] { viewer_.simulateCamera(channels); });
    on(ActionId::cameraFromImages, [this] { viewer_.simulateCameraFromImages(); });
    on(ActionId::live, [this](bool isOn) { isOn ? viewer_.start() : viewer_.stop(); });
    on(ActionId::snap, [this] {
        viewer_.stop();
        viewer_.snap();
    });
    const auto turn = [this](int by) { viewer_.setPage(viewer_.rendered().page + by); };
    on(ActionId::previousPage, [turn] { turn(-1); });
    on(ActionId::nextPage, [turn] { turn(1); });
    connect(rate_, QOverload<double>::of(&QDoubleSpinBox::valueChanged), &viewer_,
            &Viewer::setRate);
}

void Window::connectViewActions() {
    constexpr double step = 1.25;
    on(ActionId::fit, [this] { canvas_->fit(); });
    on(ActionId::actualSize, [this] { canvas_->actualSize(); });
    on(ActionId::zoomIn, [this] { canvas_->zoom(step); });
    on(ActionId::zoomOut, [this] { canvas_->zoom(1 / step); });
    on(ActionId::pixelSize, &Window::askPixelSize);
    on(ActionId::scaleBar, [this](bool isOn) {
        if (isOn && pixelSize_ <= 0)
            askPixelSize();
    });
    on(ActionId::fullScreen, [this](bool isOn) { isOn ? showFullScreen() : showNormal(); });
    for (const ActionId choice : {ActionId::gray, ActionId::saturated, ActionId::legend,
                                  ActionId::scaleBar, ActionId::pseudo, ActionId::inverted})
        connect(&(*actions_)[choice], &QAction::toggled, this, &Window::updateOptions);
    connect(lutBox_, &LutBox::errorOccurred, this, &Window::showError);
    connect(lutBox_, &LutBox::lutChosen, this, [this] {
        (*actions_)[ActionId::pseudo].setChecked(true);
        updateOptions();
    });
    connect(panel_, &ChannelPanel::currentRowChanged, this, &Window::updateOptions);
}

void Window::restoreState() {
    const QSettings kept;
    restoreGeometry(kept.value(QStringLiteral("geometry")).toByteArray());
    QMainWindow::restoreState(kept.value(QStringLiteral("layout")).toByteArray());
    pixelSize_ = kept.value(QStringLiteral("pixelSize"), 0).toDouble();
    rate_->setValue(kept.value(QStringLiteral("rate"), viewer_.rate()).toDouble());
    lutBox_->setLut(kept.value(QStringLiteral("lut"), lutBox_->lut()).toString());
    (*actions_)[ActionId::keepSettings].setChecked(true);
    for (const auto& [id, key] : keptChoices) {
        QAction& choice = (*actions_)[id];
        choice.setChecked(kept.value(QLatin1String(key), choice.isChecked()).toBool());
    }
}

void Window::saveState() {
    QSettings kept;
    kept.setValue(QStringLiteral("geometry"), saveGeometry());
    kept.setValue(QStringLiteral("layout"), QMainWindow::saveState());
    kept.setValue(QStringLiteral("pixelSize"), pixelSize_);
    kept.setValue(QStringLiteral("rate"), rate_->value());
    kept.setValue(QStringLiteral("lut"), lutBox_->lut());
    for (const auto& [id, key] : keptChoices)
        kept.setValue(QLatin1String(key), (*actions_)[id].isChecked());
}

void Window::restoreCustomDyes() {
    if (!QFileInfo::exists(customDyesFile()))
        return;
    try {
        customDyes_ = readCustomDyes(customDyesFile());
        viewer_.model().setCustomDyes(asDyes(customDyes_));
    } catch (const std::runtime_error&) {
        showError(currentExceptionText());
    }
}

void Window::setCustomDyes(const CustomDyes& dyes) {
    customDyes_ = dyes;
    viewer_.model().setCustomDyes(asDyes(dyes));
    try {
        if (dyes.isEmpty())
            QFile::remove(customDyesFile());
        else
            writeCustomDyes(dyes, customDyesFile());
    } catch (const std::runtime_error&) {
        showError(currentExceptionText());
    }
}

void Window::editCustomDyes() {
    CustomDyesDialog dialog(customDyes_, this);
    connect(&dialog, &CustomDyesDialog::changed, this, [&] { setCustomDyes(dialog.dyes()); });
    dialog.exec();
}

void Window::askAndOpen(bool adds) {
    const QStringList files = QFileDialog::getOpenFileNames(
        this, adds ? tr("Add Channels") : tr("Open"), {},
        tr("Images and settings (*.tif *.tiff *.png *.jpg *.jpeg *.bmp *.pgm *.json)"
           ";;All files (*)"));
    viewer_.open(files, adds);
}

void Window::askAndSaveImage() {
    const QString file =
        QFileDialog::getSaveFileName(this, tr("Save Image"), QStringLiteral("image.png"),
                                     tr("PNG (*.png);;TIFF (*.tif *.tiff);;JPEG (*.jpg *.jpeg)"));
    if (!file.isEmpty())
        viewer_.saveImage(file);
}

void Window::askAndSaveSettings() {
    const QString file =
        QFileDialog::getSaveFileName(this, tr("Save Channel Settings"),
                                     QStringLiteral("channels.json"), tr("Settings (*.json)"));
    if (!file.isEmpty())
        viewer_.saveSettings(file);
}

void Window::askPixelSize() {
    bool isGiven = false;
    const double size =
        QInputDialog::getDouble(this, tr("Pixel Size"), tr("Pixel size in the specimen (µm):"),
                                pixelSize_ > 0 ? pixelSize_ : 0.1, 1e-6, 1e6, 6, &isGiven);
    if (isGiven)
        pixelSize_ = size;
    if (pixelSize_ <= 0)
        (*actions_)[ActionId::scaleBar].setChecked(false);
    updateOptions();
}

void Window::copyCommand() {
    try {
        QApplication::clipboard()->setText(viewer_.command());
        statusLine_->showMessage(tr("Command copied to the clipboard"), 4000);
    } catch (const std::runtime_error&) {
        showError(currentExceptionText());
    }
}

void Window::showShortcuts() {
    QMessageBox box(QMessageBox::NoIcon, tr("Keyboard Shortcuts"), actions_->shortcutTable(),
                    QMessageBox::Close, this);
    box.exec();
}

void Window::showAbout() {
    QMessageBox::about(this, tr("About Lumetra Viewer"),
                       tr("<b>Lumetra Viewer %1</b><p>Viewer for multi-channel fluorescence "
                          "images, live and from files.")
                           .arg(QStringLiteral(LUMETRA_VERSION)));
}

void Window::showImage() {
    const RenderedFrame& rendered = viewer_.rendered();
    if (rendered.screen.cols != imageWidth_) { // another scale bar is a round one now
        imageWidth_ = rendered.screen.cols;
        updateOptions();
    }
    canvas_->setImage(rendered.screen, !viewer_.isRunning());
    if (rendered.problem != renderProblem_) {
        renderProblem_ = rendered.problem;
        renderProblem_.isEmpty() ? messageBar_->hide() : showError(renderProblem_);
    }
    pageBar_->showPage(rendered.page);
    if (viewer_.isRunning() && pointed_.x() >= 0)
        showIntensities(pointed_);
}

void Window::showSource() {
    const QString title = viewer_.title();
    setWindowTitle(title.isEmpty() ? tr("Lumetra Viewer") : tr("%1 — Lumetra Viewer").arg(title));
    const bool isCamera = viewer_.isCamera(), isPaged = viewer_.pages() > 1;
    Actions& act = *actions_;
    for (const ActionId id :
         {ActionId::saveImage, ActionId::saveSettings, ActionId::copyImage, ActionId::copyCommand,
          ActionId::closeAll, ActionId::cameraFromImages})
        act[id].setEnabled(viewer_.hasSource());
    act[ActionId::live].setText(isPaged ? tr("P&lay Pages") : tr("&Live"));
    act[ActionId::live].setEnabled(isCamera || isPaged);
    act[ActionId::live].setChecked(viewer_.isRunning());
    act[ActionId::snap].setEnabled(isCamera);
    act[ActionId::previousPage].setEnabled(isPaged);
    act[ActionId::nextPage].setEnabled(isPaged);
    pageBar_->setPages(viewer_.pages());
    updateOptions();
}

void Window::showError(const QString& reason) { messageBar_->showMessage(reason); }

void Window::showIntensities(QPoint pixel) {
    pointed_ = pixel;
    statusLine_->showIntensities(pixel,
                                 pixel.x() < 0 ? std::vector<int>() : viewer_.intensitiesAt(pixel),
                                 viewer_.model().channels());
}

void Window::showChannels() {
    statusLine_->showGammas(viewer_.model().channels());
    const int row = panel_->currentRow();
    if (viewer_.options().lut && row >= 0) {
        const Channel& channel = viewer_.model().channel(row);
        lutBar_->setRange(channel.levels.value_or(ContrastLimits{}), channel.gamma);
    }
}

std::optional<ScaleBar> Window::scaleBar() const {
    const int width = viewer_.rendered().screen.cols;
    if (!(*actions_)[ActionId::scaleBar].isChecked() || pixelSize_ <= 0 || width == 0)
        return std::nullopt;
    return ScaleBar{roundLength(width * pixelSize_), pixelSize_};
}

void Window::updateOptions() {
    Actions& act = *actions_;
    ViewOptions options;
    options.graySingle = act[ActionId::gray].isChecked();
    options.marksSaturated = act[ActionId::saturated].isChecked();
    options.annotation = {act[ActionId::legend].isChecked(), scaleBar()};
    if (act[ActionId::pseudo].isChecked())
        options.lut = LutChoice{lutBox_->lut(), act[ActionId::inverted].isChecked()};
    options.pseudoChannel = std::max(panel_->currentRow(), 0);
    viewer_.setOptions(options);
    lutBar_->setVisible(options.lut.has_value() && viewer_.hasSource());
    lutBar_->setLut(viewer_.lut());
    showChannels();
}

void Window::closeEvent(QCloseEvent* event) {
    saveState();
    viewer_.close();
    event->accept();
}

void Window::dragEnterEvent(QDragEnterEvent* event) {
    if (event->mimeData()->hasUrls())
        event->acceptProposedAction();
}

void Window::dropEvent(QDropEvent* event) {
    QStringList files;
    for (const QUrl& url : event->mimeData()->urls())
        if (url.isLocalFile())
            files << url.toLocalFile();
    viewer_.open(files, true);
    event->acceptProposedAction();
}

} // namespace lumetra
