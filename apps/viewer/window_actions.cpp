// What the actions of the window do.

#include "apps/common/colour_table.h"
#include "apps/common/failure.h"
#include "apps/viewer/canvas.h"
#include "apps/viewer/channel_panel.h"
#include "apps/viewer/colour_bar.h"
#include "apps/viewer/custom_dyes_dialog.h"
#include "apps/viewer/simulated_camera.h"
#include "apps/viewer/window.h"

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QInputDialog>
#include <QLabel>
#include <QMessageBox>
#include <QStatusBar>

#include <cmath>

namespace apps {
namespace {

const QString pictureFilter =
    QStringLiteral("Pictures and settings (*.tif *.tiff *.png *.jpg *.jpeg *.bmp *.pgm *.json)"
                   ";;All files (*)");

/// The action so many places behind another.
Act from(Act first, int places) { return static_cast<Act>(static_cast<int>(first) + places); }

/// Dyes that tell a simulated camera's channels apart.
std::vector<Channel> cameraChannels(int count, const DyeList& dyes) {
    std::vector<Channel> channels;
    channels.reserve(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i)
        channels.push_back(guessedChannel({}, i, dyes));
    return channels;
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

void Window::connectFileActions() {
    Actions& act = *actions_;
    connect(&act[Act::open], &QAction::triggered, this, [this] { askAndOpen(false); });
    connect(&act[Act::add], &QAction::triggered, this, [this] { askAndOpen(true); });
    connect(&act[Act::keepSettings], &QAction::toggled, &viewer_, &Viewer::keepSettings);
    connect(&act[Act::saveAs], &QAction::triggered, this, &Window::askAndSave);
    connect(&act[Act::saveSettings], &QAction::triggered, this, &Window::askAndSaveSettings);
    connect(&act[Act::copyPicture], &QAction::triggered, this,
            [this] { QApplication::clipboard()->setImage(viewer_.picture()); });
    connect(&act[Act::copyCommand], &QAction::triggered, this, &Window::copyCommand);
    connect(&act[Act::ownDyes], &QAction::triggered, this, &Window::editOwnDyes);
    connect(&act[Act::closeAll], &QAction::triggered, &viewer_, &Viewer::close);
    connect(&act[Act::quit], &QAction::triggered, this, &QWidget::close);
    connect(&act[Act::about], &QAction::triggered, this, [this] {
        QMessageBox::about(this, QStringLiteral("Lumetra Viewer"),
                           QStringLiteral("<b>Lumetra Viewer %1</b><p>Looks at the channels of "
                                          "fluorescence microscopes, live and in files.")
                               .arg(QStringLiteral(LUMETRA_VERSION)));
    });
    connect(&act[Act::keys], &QAction::triggered, this, [this] {
        QMessageBox box(QMessageBox::NoIcon, QStringLiteral("Keys"), actions_->keyTable(),
                        QMessageBox::Close, this);
        box.exec();
    });
}

void Window::connectFrameActions() {
    Actions& act = *actions_;
    for (int channels = 2; channels <= 4; ++channels)
        connect(&act[from(Act::camera2, channels - 2)], &QAction::triggered, this,
                [this, channels] { startCamera(channels); });
    connect(&act[Act::cameraFiles], &QAction::triggered, this, [this] { startCamera(0); });
    connect(&act[Act::run], &QAction::triggered, this,
            [this](bool on) { on ? viewer_.start() : viewer_.stop(); });
    connect(&act[Act::single], &QAction::triggered, this, [this] {
        viewer_.stop();
        viewer_.single();
    });
    const auto turn = [this](int by) { viewer_.turnTo(viewer_.shown().page + by); };
    connect(&act[Act::previousPage], &QAction::triggered, this, [turn] { turn(-1); });
    connect(&act[Act::nextPage], &QAction::triggered, this, [turn] { turn(1); });
    connect(rate_, QOverload<double>::of(&QDoubleSpinBox::valueChanged), &viewer_,
            &Viewer::setRate);
}

void Window::connectViewActions() {
    Actions& act = *actions_;
    constexpr double step = 1.25;
    connect(&act[Act::fit], &QAction::triggered, canvas_, &Canvas::fit);
    connect(&act[Act::actualSize], &QAction::triggered, canvas_, &Canvas::actualSize);
    connect(&act[Act::zoomIn], &QAction::triggered, canvas_, [this] { canvas_->zoom(step); });
    connect(&act[Act::zoomOut], &QAction::triggered, canvas_, [this] { canvas_->zoom(1 / step); });
    connect(&act[Act::pixelSize], &QAction::triggered, this, &Window::askPixelSize);
    connect(&act[Act::scaleBar], &QAction::triggered, this, [this](bool on) {
        if (on && pixelSize_ <= 0)
            askPixelSize();
    });
    connect(&act[Act::fullScreen], &QAction::triggered, this,
            [this](bool on) { on ? showFullScreen() : showNormal(); });
    for (const Act choice :
         {Act::gray, Act::saturated, Act::legend, Act::scaleBar, Act::pseudo, Act::reversed})
        connect(&act[choice], &QAction::toggled, this, &Window::updateOptions);
    connect(table_, QOverload<int>::of(&QComboBox::activated), this, &Window::chooseTable);
    connect(panel_, &ChannelPanel::currentRowChanged, this, &Window::updateOptions);
}

void Window::connectChannelActions() {
    Actions& act = *actions_;
    ChannelModel& model = viewer_.model();
    const auto onCurrent = [&](Act which, auto change) {
        connect(&act[which], &QAction::triggered, this,
                [this, change] { change(viewer_.model(), panel_->currentRow()); });
    };
    for (int row = 0; row < 9; ++row)
        connect(&act[from(Act::show1, row)], &QAction::triggered, &model, [&model, row] {
            if (row < model.size())
                model.setVisible(row, !model.channel(row).visible);
        });
    onCurrent(Act::solo, [](ChannelModel& m, int row) { m.solo(row); });
    connect(&act[Act::showAll], &QAction::triggered, &model, &ChannelModel::showAll);
    connect(&act[Act::distinct], &QAction::triggered, &model, &ChannelModel::useDistinctColours);
    connect(&act[Act::goToChannels], &QAction::triggered, panel_, &ChannelPanel::focusChannels);
    connect(&act[Act::goToLevels], &QAction::triggered, panel_, &ChannelPanel::focusLevels);
    constexpr int far = 10;
    const std::pair<Act, QPoint> movements[] = {
        {Act::left, {-1, 0}},    {Act::right, {1, 0}},      {Act::up, {0, -1}},
        {Act::down, {0, 1}},     {Act::farLeft, {-far, 0}}, {Act::farRight, {far, 0}},
        {Act::farUp, {0, -far}}, {Act::farDown, {0, far}}};
    for (const auto& movement : movements)
        onCurrent(movement.first,
                  [by = movement.second](ChannelModel& m, int row) { m.nudge(row, by); });
    connect(&act[Act::unmoved], &QAction::triggered, &model, &ChannelModel::resetOffsets);
    onCurrent(Act::automatic, [](ChannelModel& m, int row) { m.useAutomaticLevels(row); });
    connect(&act[Act::allAutomatic], &QAction::triggered, &model, [&model] {
        for (int row = 0; row < model.size(); ++row)
            model.useAutomaticLevels(row);
    });
    connect(&act[Act::follow], &QAction::toggled, &model, &ChannelModel::followLevels);
    onCurrent(Act::reset, [](ChannelModel& m, int row) { m.useFullRange(row); });
    onCurrent(Act::toAll, [](ChannelModel& m, int row) { m.copyLevelsToAll(row); });
    for (int i = 0; i < 5; ++i)
        onCurrent(from(Act::full8, i),
                  [i](ChannelModel& m, int row) { m.useFullRange(row, 8 + 2 * i); });
}

void Window::startCamera(int channels, int side) {
    SimulatedCameraOptions options{channels, side, {}};
    std::vector<Channel> shown = cameraChannels(channels, viewer_.model().dyes());
    if (channels == 0) {
        options.pictures = viewer_.planes();
        shown = viewer_.model().channels();
        for (Channel& channel : shown)
            channel.levels.reset(); // the camera has samples of its own
        if (options.pictures.empty())
            return showProblem(
                QStringLiteral("There are no files open that the camera could film"));
    }
    viewer_.connectCamera(std::make_shared<SimulatedCamera>(options), shown);
    viewer_.start();
}

void Window::askAndOpen(bool adds) {
    const QStringList files = QFileDialog::getOpenFileNames(
        this, adds ? QStringLiteral("Add Channels") : QStringLiteral("Open"), {}, pictureFilter);
    viewer_.open(files, adds);
}

void Window::askAndSave() {
    const QString file = QFileDialog::getSaveFileName(
        this, QStringLiteral("Save Picture"), QStringLiteral("picture.png"),
        QStringLiteral("PNG (*.png);;TIFF (*.tif *.tiff);;JPEG (*.jpg *.jpeg)"));
    if (!file.isEmpty())
        viewer_.save(file);
}

void Window::askAndSaveSettings() {
    const QString file =
        QFileDialog::getSaveFileName(this, QStringLiteral("Save Settings"),
                                     QStringLiteral("channels.json"), QStringLiteral("(*.json)"));
    if (!file.isEmpty())
        viewer_.saveSettings(file);
}

void Window::copyCommand() {
    try {
        QApplication::clipboard()->setText(viewer_.command());
        statusBar()->showMessage(QStringLiteral("The command is on the clipboard"), 4000);
    } catch (const Failure& failure) {
        showProblem(failure.text());
    }
}

void Window::editOwnDyes() {
    CustomDyesDialog dialog(ownDyes_, this);
    connect(&dialog, &CustomDyesDialog::changed, this, [&] { setOwnDyes(dialog.dyes()); });
    dialog.exec();
}

void Window::askPixelSize() {
    bool isGiven = false;
    const double size =
        QInputDialog::getDouble(this, QStringLiteral("Pixel Size"),
                                QStringLiteral("Micrometres of the specimen for one pixel:"),
                                pixelSize_ > 0 ? pixelSize_ : 0.1, 1e-6, 1e6, 6, &isGiven);
    if (isGiven)
        pixelSize_ = size;
    if (pixelSize_ <= 0)
        (*actions_)[Act::scaleBar].setChecked(false);
    updateOptions();
}

void Window::addTable(const QString& nameOrFile) {
    constexpr QSize size(72, 14);
    const QImage preview = tablePreview(colourTable(nameOrFile), size);
    const int last = table_->count() - 1; // asks for a file
    table_->insertItem(last, QPixmap::fromImage(preview),
                       apps::shown(QFileInfo(nameOrFile).fileName()), nameOrFile);
}

void Window::useTable(const QString& nameOrFile) {
    try {
        if (table_->findData(nameOrFile) < 0)
            addTable(nameOrFile);
        chosenTable_ = nameOrFile;
    } catch (const Failure& failure) {
        showProblem(failure.text());
    }
    table_->setCurrentIndex(table_->findData(chosenTable_));
    updateOptions();
}

void Window::chooseTable(int index) {
    QString table = table_->itemData(index).toString();
    if (table.isEmpty())
        table =
            QFileDialog::getOpenFileName(this, QStringLiteral("Table of Colours"), {},
                                         QStringLiteral("ImageJ tables (*.lut);;All files (*)"));
    if (!table.isEmpty())
        (*actions_)[Act::pseudo].setChecked(true);
    useTable(table.isEmpty() ? chosenTable_ : table);
}

} // namespace apps
