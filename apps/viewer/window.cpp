#include "apps/viewer/window.h"

#include "apps/common/error.h"
#include "apps/viewer/canvas.h"
#include "apps/viewer/channel_panel.h"
#include "apps/viewer/custom_dyes_dialog.h"
#include "apps/viewer/level_editor.h"
#include "apps/viewer/lut_bar.h"
#include "apps/viewer/lut_box.h"
#include "apps/viewer/message_bar.h"
#include "apps/viewer/profile_view.h"
#include "apps/viewer/recent_menu.h"
#include "apps/viewer/stack_bar.h"
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
#include <QLocale>
#include <QMessageBox>
#include <QMimeData>
#include <QRegularExpression>
#include <QScreen>
#include <QScrollArea>
#include <QSettings>
#include <QStandardPaths>
#include <QStyle>
#include <QToolBar>
#include <QUrl>

#include <algorithm>
#include <cmath>
#include <tuple>

namespace lumetra {
namespace {

constexpr std::pair<ActionId, const char*> keptChoices[] = {
    {ActionId::legend, "legend"},           {ActionId::gray, "graySingle"},
    {ActionId::safeColours, "safeColours"}, {ActionId::keepSettings, "keepSettings"},
    {ActionId::dataRange, "dataRange"},     {ActionId::logarithmic, "logarithmic"}};

/// The file in which the user's custom dyes are kept from run to run. It need not exist; the folder
/// is made.
QString customDyesFile() {
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation);
    QDir().mkpath(folder);
    return folder + QStringLiteral("/dyes.ini");
}

/// Asks where to save something. A name without an extension gets that of the filter chosen.
/// @return The file, or nothing.
QString askForFile(QWidget* parent, const QString& title, const QString& suggested,
                   const QStringList& filters) {
    QFileDialog dialog(parent, title, QFileInfo(suggested).path());
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setNameFilters(filters);
    const auto useFilter = [&](const QString& filter) {
        dialog.setDefaultSuffix(filter.section(QStringLiteral("*."), 1, 1)
                                    .section(QRegularExpression(QStringLiteral("[ )]")), 0, 0));
    };
    QObject::connect(&dialog, &QFileDialog::filterSelected, useFilter);
    useFilter(filters.front());
    dialog.selectFile(QFileInfo(suggested).fileName());
    return dialog.exec() == QDialog::Accepted ? dialog.selectedFiles().value(0) : QString();
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

Window::Window() : canvas_(new Canvas(this)), actions_(*this, *canvas_) {
    setAcceptDrops(true);
    resize(QSize(1360, 900).boundedTo(screen()->availableSize() * 0.95));
    makeCentre();
    makeDocks();
    makeToolBar();
    setIcons();
    statusLine_ = new StatusLine(this);
    setStatusBar(statusLine_);
    connectViewer();
    connectFileActions();
    connectFrameActions();
    connectViewActions();
    restoreState();
    restoreCustomDyes();
    showSource();
    constexpr int rest = 300; // milliseconds
    saving_.setSingleShot(true);
    saving_.setInterval(rest);
    connect(&saving_, &QTimer::timeout, this, &Window::saveState);
}

Window::~Window() {
    hide(); // fields that lose the focus may still change the model
}

void Window::makeCentre() {
    auto* centre = new QWidget(this);
    messageBar_ = new MessageBar(centre);
    stackBar_ = new StackBar(centre);
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
    column->addWidget(stackBar_);
    setCentralWidget(centre);
}

void Window::makeDocks() {
    panel_ = new ChannelPanel(viewer_.model(), actions_, this);
    auto* scroll = new QScrollArea(this); // for small screens
    scroll->setWidget(panel_);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setMinimumWidth(panel_->minimumSizeHint().width() +
                            style()->pixelMetric(QStyle::PM_ScrollBarExtent));
    addDock(tr("Channels"), QStringLiteral("channels"), scroll, Qt::RightDockWidgetArea,
            ActionId::channelPanel);
    profile_ = new ProfileView(this);
    addDock(tr("Line Profile"), QStringLiteral("profile"), profile_, Qt::BottomDockWidgetArea,
            ActionId::profile);
    actions_[ActionId::channelPanel].setChecked(true);
}

/// Adds a dock that an action shows and hides.
void Window::addDock(const QString& title, const QString& name, QWidget* content,
                     Qt::DockWidgetArea area, ActionId id) {
    auto* dock = new QDockWidget(title, this);
    dock->setObjectName(name);
    dock->setWidget(content);
    addDockWidget(area, dock);
    QAction& action = actions_[id];
    dock->setVisible(false);
    connect(&action, &QAction::toggled, dock, &QDockWidget::setVisible);
    connect(dock->toggleViewAction(), &QAction::toggled, &action, &QAction::setChecked);
}

void Window::makeToolBar() {
    auto* bar = addToolBar(tr("Tools"));
    bar->setObjectName(QStringLiteral("tools"));
    bar->setMovable(false);
    bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    actions_[ActionId::open].setIconText(tr("Open"));
    actions_[ActionId::saveImage].setIconText(tr("Save"));
    actions_[ActionId::fit].setIconText(tr("Fit"));
    actions_[ActionId::panels].setIconText(tr("Panels"));
    rate_ = new QDoubleSpinBox(bar);
    rate_->setRange(0.1, 100);
    rate_->setDecimals(1);
    rate_->setSuffix(tr(" frames/s"));
    rate_->setKeyboardTracking(false);
    rate_->setAccessibleName(tr("Frames per second"));
    lutBox_ = new LutBox(bar);
    bar->addActions({&actions_[ActionId::open], &actions_[ActionId::saveImage]});
    bar->addSeparator();
    bar->addActions({&actions_[ActionId::live], &actions_[ActionId::snap]});
    bar->addWidget(rate_);
    bar->addSeparator();
    bar->addActions({&actions_[ActionId::fit], &actions_[ActionId::actualSize],
                     &actions_[ActionId::legend], &actions_[ActionId::scaleBar],
                     &actions_[ActionId::panels], &actions_[ActionId::pseudo]});
    bar->addWidget(lutBox_);
}

/// The icons of the desktop's theme, or, where it has none, of the style.
void Window::setIcons() {
    const std::tuple<ActionId, const char*, QStyle::StandardPixmap> icons[] = {
        {ActionId::open, "document-open", QStyle::SP_DialogOpenButton},
        {ActionId::saveImage, "document-save", QStyle::SP_DialogSaveButton},
        {ActionId::undo, "edit-undo", QStyle::SP_ArrowBack},
        {ActionId::redo, "edit-redo", QStyle::SP_ArrowForward},
        {ActionId::closeAll, "document-close", QStyle::SP_DialogCloseButton}};
    for (const auto& [id, name, standard] : icons)
        actions_[id].setIcon(
            QIcon::fromTheme(QLatin1String(name), style()->standardIcon(standard)));
}

void Window::connectViewer() {
    connect(&viewer_, &Viewer::imageChanged, this, &Window::showImage);
    connect(&viewer_, &Viewer::sourceChanged, this, &Window::showSource);
    connect(&viewer_, &Viewer::errorOccurred, messageBar_, &MessageBar::showMessage);
    connect(&viewer_, &Viewer::statusMessage, this, [this](const QString& text) {
        hideError();
        statusLine_->showMessage(text, 4000);
    });
    connect(&viewer_, &Viewer::filesOpened, this, [this] {
        hideError();
        recent_->add(viewer_.inputs());
    });
    connect(&viewer_.model(), &ChannelModel::edited, this, &Window::hideError);
    connect(&monitor_, &FrameMonitor::measured, statusLine_, &StatusLine::showFrameRate);
    connect(&monitor_, &FrameMonitor::stalled, this, [this](double seconds) {
        messageBar_->showMessage(tr("No frame from the camera for %1 s").arg(seconds, 0, 'f', 0));
    });
    connect(&monitor_, &FrameMonitor::resumed, messageBar_, &QWidget::hide);
    connect(canvas_, &Canvas::hovered, this, &Window::showIntensities);
    connect(canvas_, &Canvas::scaleChanged, this,
            [this] { statusLine_->showZoom(canvas_->scale()); });
    connect(canvas_, &Canvas::lineDrawn, this, &Window::showProfile);
    connect(&viewer_.model(), &ChannelModel::dataChanged, this, &Window::showChannels);
    connect(stackBar_, &StackBar::positionChosen, &viewer_, &Viewer::setPosition);
}

/// Lets an action that is triggered do something, or tell why it cannot.
void Window::on(ActionId id, const std::function<void()>& action) {
    connect(&actions_[id], &QAction::triggered, this, [this, action] {
        try {
            action();
        } catch (const std::runtime_error&) {
            messageBar_->showMessage(currentExceptionText());
        }
    });
}

void Window::connectFileActions() {
    recent_ = new RecentMenu(this);
    actions_[ActionId::recent].setMenu(recent_);
    connect(recent_, &RecentMenu::chosen, this,
            [this](const QStringList& files) { viewer_.open(files); });
    on(ActionId::open, [this] { askAndOpen(false); });
    on(ActionId::add, [this] { askAndOpen(true); });
    on(ActionId::saveImage, [this] { askAndSaveImage(); });
    on(ActionId::saveSettings, [this] {
        const QString file =
            askForFile(this, tr("Save Channel Settings"),
                       suggestedFile(QStringLiteral("_channels.json")), {tr("Settings (*.json)")});
        if (!file.isEmpty())
            viewer_.saveSettings(file, viewer_.model().channels());
    });
    on(ActionId::copyImage, [this] { QApplication::clipboard()->setImage(viewer_.image()); });
    on(ActionId::copyCommand, [this] {
        QApplication::clipboard()->setText(viewer_.command());
        statusLine_->showMessage(tr("Command copied to the clipboard"), 4000);
    });
    on(ActionId::copyValues, [this] { // of the line that was drawn, or the pixel pointed at last
        const std::vector<QPoint> pixels =
            line_.isNull() || !actions_[ActionId::profile].isChecked()
                ? std::vector<QPoint>{pointed_}
                : pixelsOf(line_);
        QApplication::clipboard()->setText(
            intensityTable(pixels, viewer_.intensitiesAt(pixels), viewer_.model().channels()));
        statusLine_->showMessage(tr("Pixel values copied to the clipboard"), 4000);
    });
    on(ActionId::batchCommand, [this] { askForBatchCommand(); });
    on(ActionId::customDyes, [this] {
        CustomDyesDialog dialog(customDyes_, this);
        connect(&dialog, &CustomDyesDialog::changed, this, [&] { setCustomDyes(dialog.dyes()); });
        dialog.exec();
    });
    on(ActionId::closeAll, [this] { viewer_.close(); });
    on(ActionId::quit, [this] { close(); });
    on(ActionId::about, [this] {
        QMessageBox::about(this, tr("About Lumetra Viewer"),
                           tr("<b>Lumetra Viewer %1</b><p>Viewer for multi-channel fluorescence "
                              "images, live and from files.<p>Free software under the MIT licence; "
                              "running with Qt %2.")
                               .arg(QStringLiteral(LUMETRA_VERSION), QLatin1String(qVersion())));
    });
    connect(&actions_[ActionId::keepSettings], &QAction::toggled, &viewer_, &Viewer::keepSettings);
}

void Window::connectFrameActions() {
    for (int channels = 1; channels <= 4; ++channels)
        on(ActionId::camera1 + (channels - 1),
           [this, channels] { viewer_.simulateCamera(channels); });
    on(ActionId::cameraFromImages, [this] { viewer_.simulateCameraFromImages(); });
    on(ActionId::live,
       [this] { actions_[ActionId::live].isChecked() ? viewer_.start() : viewer_.stop(); });
    on(ActionId::snap, [this] {
        viewer_.stop();
        viewer_.snap();
    });
    const auto step = [this](int slices, int frames) {
        StackPosition position = viewer_.rendered().position;
        position.slice += slices;
        position.frame += frames;
        viewer_.setPosition(position);
    };
    on(ActionId::previousSlice, [step] { step(-1, 0); });
    on(ActionId::nextSlice, [step] { step(1, 0); });
    on(ActionId::previousFrame, [step] { step(0, -1); });
    on(ActionId::nextFrame, [step] { step(0, 1); });
    connect(rate_, QOverload<double>::of(&QDoubleSpinBox::valueChanged), &viewer_,
            &Viewer::setRate);
}

void Window::connectViewActions() {
    constexpr double step = 1.25;
    on(ActionId::fit, [this] { canvas_->fit(); });
    on(ActionId::actualSize, [this] { canvas_->actualSize(); });
    on(ActionId::zoomIn, [this] { canvas_->zoom(step); });
    on(ActionId::zoomOut, [this] { canvas_->zoom(1 / step); });
    on(ActionId::pixelSize, [this] { askPixelSize(); });
    on(ActionId::scaleBar, [this] {
        if (actions_[ActionId::scaleBar].isChecked() && viewer_.hasSource() && !viewer_.pixelSize())
            askPixelSize();
    });
    on(ActionId::fullScreen,
       [this] { actions_[ActionId::fullScreen].isChecked() ? showFullScreen() : showNormal(); });
    for (const QAction* action : QWidget::actions())
        connect(action, &QAction::toggled, this, &Window::updateOptions);
    connect(&actions_[ActionId::profile], &QAction::toggled, canvas_, &Canvas::drawLines);
    connect(&actions_[ActionId::logarithmic], &QAction::toggled, &panel_->levelEditor(),
            &LevelEditor::setLogarithmic);
    connect(panel_, &ChannelPanel::saturatedPercentChanged, this, &Window::updateOptions);
    connect(lutBox_, &LutBox::errorOccurred, messageBar_, &MessageBar::showMessage);
    connect(lutBox_, &LutBox::lutChosen, this, [this] {
        actions_[ActionId::pseudo].setChecked(true);
        updateOptions();
    });
    connect(panel_, &ChannelPanel::currentRowChanged, this, &Window::updateOptions);
}

void Window::restoreState() {
    const QSettings kept;
    restoreGeometry(kept.value(QStringLiteral("geometry")).toByteArray());
    QMainWindow::restoreState(kept.value(QStringLiteral("layout")).toByteArray());
    panel_->setSaturatedPercent(
        kept.value(QStringLiteral("saturated"), viewer_.options().saturatedPercent).toDouble());
    rate_->setValue(kept.value(QStringLiteral("rate"), viewer_.rate()).toDouble());
    lutBox_->setLut(kept.value(QStringLiteral("lut"), lutBox_->lut()).toString());
    for (const ActionId id : {ActionId::keepSettings, ActionId::logarithmic})
        actions_[id].setChecked(true);
    for (const auto& [id, key] : keptChoices) {
        QAction& choice = actions_[id];
        choice.setChecked(kept.value(QLatin1String(key), choice.isChecked()).toBool());
    }
}

void Window::saveState() {
    QSettings kept;
    kept.setValue(QStringLiteral("geometry"), saveGeometry());
    kept.setValue(QStringLiteral("layout"), QMainWindow::saveState());
    kept.setValue(QStringLiteral("saturated"), panel_->saturatedPercent());
    kept.setValue(QStringLiteral("rate"), rate_->value());
    kept.setValue(QStringLiteral("lut"), lutBox_->lut());
    for (const auto& [id, key] : keptChoices)
        kept.setValue(QLatin1String(key), actions_[id].isChecked());
}

void Window::restoreCustomDyes() {
    if (!QFileInfo::exists(customDyesFile()))
        return;
    try {
        customDyes_ = readCustomDyes(customDyesFile());
        viewer_.model().setCustomDyes(asDyes(customDyes_));
    } catch (const std::runtime_error&) {
        messageBar_->showMessage(currentExceptionText());
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
        messageBar_->showMessage(currentExceptionText());
    }
}

void Window::askAndOpen(bool adds) {
    const QStringList inputs = viewer_.inputs();
    const QStringList files = QFileDialog::getOpenFileNames(
        this, adds ? tr("Add Channels") : tr("Open"),
        inputs.isEmpty() ? QString() : QFileInfo(inputs.front()).path(),
        tr("Images and settings (*.tif *.tiff *.png *.jpg *.jpeg *.bmp *.pgm *.ppm *.stk *.json)"
           ";;All files (*)"));
    viewer_.open(files, adds);
}

/// A name for what is made of the files that are shown, in their folder.
QString Window::suggestedFile(const QString& ending) const {
    const QStringList inputs = viewer_.inputs();
    const QFileInfo first(inputs.value(0, QStringLiteral("camera")));
    return first.path() + QLatin1Char('/') + first.completeBaseName() + ending;
}

void Window::askAndSaveImage() {
    const Snapshot snapshot = viewer_.snapshot(); // frames go on while the dialog is open
    const QString file =
        askForFile(this, tr("Save Image"), suggestedFile(QStringLiteral("_image.png")),
                   {tr("PNG (*.png)"), tr("TIFF (*.tif *.tiff)"), tr("JPEG (*.jpg *.jpeg)")});
    if (!file.isEmpty())
        viewer_.saveImage(file, snapshot);
}

void Window::askPixelSize() {
    const auto known = viewer_.pixelSize();
    const QLocale locale;
    bool isGiven = false;
    const QString text = QInputDialog::getText(
        this, tr("Pixel Size"), tr("Pixel size in the specimen (µm):"), QLineEdit::Normal,
        known ? locale.toString(*known, 'g', 6) : QString(), &isGiven);
    bool isNumber = false;
    double size = locale.toDouble(text, &isNumber);
    if (!isNumber)
        size = text.toDouble(&isNumber);
    constexpr double smallest = 1e-6, largest = 1e6;
    if (isGiven && isNumber && size >= smallest && size <= largest)
        viewer_.setPixelSize(size);
    else if (isGiven)
        messageBar_->showMessage(tr("\"%1\" is not a pixel size").arg(text));
    if (!viewer_.pixelSize())
        actions_[ActionId::scaleBar].setChecked(false);
}

void Window::askForBatchCommand() {
    const BatchCommand batch = viewer_.batchCommand();
    const QString settings =
        askForFile(this, tr("Save Channel Settings for the Folder"),
                   suggestedFile(QStringLiteral("_channels.json")), {tr("Settings (*.json)")});
    if (settings.isEmpty())
        return;
    viewer_.saveSettings(settings, batch.channels);
    const QString line = batch.line(settings);
    QApplication::clipboard()->setText(line);
    QInputDialog::getMultiLineText(
        this, tr("Batch Command"),
        tr("This command renders every field of the folder with the settings shown here.\n"
           "It is on the clipboard."),
        line);
}

void Window::showImage() {
    const RenderedFrame& rendered = viewer_.rendered();
    const int width = rendered.screens.empty() ? 0 : rendered.screens.back().cols;
    if (width != imageWidth_) { // another scale bar is a round one now
        imageWidth_ = width;
        updateOptions();
    }
    canvas_->setImages(rendered.screens, !viewer_.isRunning());
    if (rendered.problem != renderProblem_) {
        renderProblem_ = rendered.problem;
        renderProblem_.isEmpty() ? hideError() : messageBar_->showMessage(renderProblem_);
    }
    stackBar_->showPosition(rendered.position);
    if (viewer_.isRunning() && pointed_.x() >= 0)
        showIntensities(pointed_);
    if (actions_[ActionId::profile].isChecked())
        showProfile(line_);
}

void Window::showSource() {
    const QString title = viewer_.title();
    setWindowTitle(title.isEmpty() ? tr("Lumetra Viewer") : tr("%1 — Lumetra Viewer").arg(title));
    const Axes axes = viewer_.axes();
    const bool hasSlices = axes.slices > 1, hasFrames = axes.frames > 1;
    const std::pair<bool, std::vector<ActionId>> enabled[] = {
        {viewer_.hasSource(),
         {ActionId::saveImage, ActionId::saveSettings, ActionId::copyImage, ActionId::copyCommand,
          ActionId::copyValues, ActionId::batchCommand, ActionId::closeAll,
          ActionId::cameraFromImages, ActionId::pixelSize}},
        {viewer_.isCamera(), {ActionId::snap}},
        {viewer_.isCamera() || hasSlices || hasFrames, {ActionId::live}},
        {hasSlices, {ActionId::previousSlice, ActionId::nextSlice}},
        {hasFrames, {ActionId::previousFrame, ActionId::nextFrame}}};
    for (const auto& [isEnabled, ids] : enabled)
        for (const ActionId id : ids)
            actions_[id].setEnabled(isEnabled);
    actions_[ActionId::live].setText(hasSlices || hasFrames ? tr("P&lay") : tr("&Live"));
    actions_[ActionId::live].setChecked(viewer_.isRunning());
    stackBar_->setAxes(axes, viewer_.hasPages());
    statusLine_->showPixelSize(viewer_.hasSource() ? viewer_.pixelSize() : std::nullopt);
    if (viewer_.hasSource() && !viewer_.pixelSize() && actions_[ActionId::scaleBar].isChecked()) {
        actions_[ActionId::scaleBar].setChecked(false);
        statusLine_->showMessage(tr("No scale bar: the pixel size is not known"), 4000);
    }
    updateOptions();
}

/// What is mended need not be told any longer.
void Window::hideError() {
    if (renderProblem_.isEmpty())
        messageBar_->hide();
}

void Window::showIntensities(QPoint pixel) {
    pointed_ = pixel;
    statusLine_->showIntensities(pixel, viewer_.intensitiesAt({pixel}).front(),
                                 viewer_.model().channels());
}

void Window::showProfile(QLine line) {
    line_ = line;
    const std::vector<QPoint> pixels = pixelsOf(line);
    profile_->setValues(viewer_.intensitiesAt(pixels), viewer_.model().channels());
}

void Window::showChannels() {
    const int row = panel_->currentRow();
    const ChannelModel& model = viewer_.model();
    if (viewer_.options().lut && row >= 0)
        lutBar_->setLut(viewer_.lut(), model.levels(row), model.channel(row).gamma);
}

std::optional<ScaleBar> Window::scaleBar() const {
    const auto size = viewer_.pixelSize();
    if (!actions_[ActionId::scaleBar].isChecked() || !size || imageWidth_ == 0)
        return std::nullopt;
    return ScaleBar{roundLength(imageWidth_ * *size), *size};
}

void Window::updateOptions() {
    ViewOptions options;
    options.graySingle = actions_[ActionId::gray].isChecked();
    options.safeColours = actions_[ActionId::safeColours].isChecked();
    options.marksSaturated = actions_[ActionId::saturated].isChecked();
    options.annotation = {actions_[ActionId::legend].isChecked(), scaleBar()};
    if (actions_[ActionId::pseudo].isChecked())
        options.lut = LutChoice{lutBox_->lut(), actions_[ActionId::inverted].isChecked()};
    options.pseudoChannel = std::max(panel_->currentRow(), 0);
    if (actions_[ActionId::panels].isChecked())
        options.panels = actions_[ActionId::colourPanels].isChecked() ? PanelColours::colour
                                                                      : PanelColours::gray;
    options.saturatedPercent = panel_->saturatedPercent();
    options.showsDataRange = actions_[ActionId::dataRange].isChecked();
    viewer_.setOptions(options);
    lutBar_->setVisible(options.lut.has_value() && viewer_.hasSource());
    showChannels();
    saving_.start();
}

void Window::resizeEvent(QResizeEvent* event) {
    QMainWindow::resizeEvent(event);
    saving_.start();
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
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    const Qt::KeyboardModifiers keys = event->keyboardModifiers();
#else
    const Qt::KeyboardModifiers keys = event->modifiers();
#endif
    viewer_.open(files, keys.testFlag(Qt::ShiftModifier));
    event->acceptProposedAction();
}

} // namespace lumetra
