// What the window shows of its viewer.

#include "apps/common/colour_table.h"
#include "apps/common/failure.h"
#include "apps/viewer/canvas.h"
#include "apps/viewer/channel_panel.h"
#include "apps/viewer/colour_bar.h"
#include "apps/viewer/course_view.h"
#include "apps/viewer/window.h"

#include <QComboBox>
#include <QDragEnterEvent>
#include <QFrame>
#include <QLabel>
#include <QMimeData>
#include <QSignalBlocker>
#include <QSlider>
#include <QStatusBar>
#include <QUrl>

#include <algorithm>

namespace apps {

void Window::connectViewer() {
    connect(&viewer_, &Viewer::pictureChanged, this, &Window::showPicture);
    connect(&viewer_, &Viewer::sourceChanged, this, &Window::showSource);
    connect(&viewer_, &Viewer::problem, this, &Window::showProblem);
    connect(&viewer_, &Viewer::said, this, [this](const QString& words) {
        messageBar_->hide();
        statusBar()->showMessage(words, 4000);
    });
    connect(canvas_, &Canvas::hovered, this, &Window::showSamples);
    connect(canvas_, &Canvas::scaleChanged, this, &Window::showStatus);
    connect(&viewer_.model(), &ChannelModel::dataChanged, this, &Window::showStatus);
}

void Window::showPicture() {
    const Shown& shown = viewer_.shown();
    sinceFrame_.start();
    if (shown.screen.cols != shownWidth_) { // another scale bar is a round one now
        shownWidth_ = shown.screen.cols;
        updateOptions();
    }
    const std::int64_t start = threadNanoseconds();
    canvas_->setPicture(shown.screen, !viewer_.isRunning());
    paintingTime_ = threadNanoseconds() - start;
    statistics_.add(shown, paintingTime_);
    if (shown.problem != renderProblem_) {
        renderProblem_ = shown.problem;
        renderProblem_.isEmpty() ? messageBar_->hide() : showProblem(renderProblem_);
    }
    if (pageBar_->isVisible()) {
        const QSignalBlocker blocker(page_);
        page_->setValue(shown.page);
        pageText_->setText(QStringLiteral("%1 / %2").arg(shown.page).arg(viewer_.pages()));
    }
    if (!viewer_.isRunning() || pointed_.x() < 0)
        return;
    showSamples(pointed_);
}

void Window::showSource() {
    const QString title = viewer_.title();
    setWindowTitle(title.isEmpty() ? QStringLiteral("Lumetra Viewer")
                                   : title + QStringLiteral(" — Lumetra Viewer"));
    const bool hasSource = viewer_.hasSource();
    const bool isStack = hasSource && !viewer_.isCamera() && viewer_.pages() > 1;
    Actions& act = *actions_;
    for (const Act needsSource : {Act::saveAs, Act::saveSettings, Act::copyPicture,
                                  Act::copyCommand, Act::closeAll, Act::cameraFiles})
        act[needsSource].setEnabled(hasSource);
    act[Act::run].setEnabled(viewer_.isCamera() || isStack);
    act[Act::single].setEnabled(viewer_.isCamera() || isStack);
    act[Act::run].setChecked(viewer_.isRunning());
    act[Act::previousPage].setEnabled(isStack);
    act[Act::nextPage].setEnabled(isStack);
    pageBar_->setVisible(isStack);
    {
        const QSignalBlocker blocker(page_);
        page_->setRange(1, viewer_.pages());
    }
    if (viewer_.framesOfSource() < framesAtTick_ || !hasSource) {
        statistics_.clear();
        framesAtTick_ = 0;
        droppedBefore_ = viewer_.dropped();
    }
    sinceFrame_.start();
    isStalled_ = false;
    updateOptions();
}

void Window::showProblem(const QString& reason) {
    message_->setText(reason);
    messageBar_->show();
}

QString Window::problem() const { return messageBar_->isHidden() ? QString() : message_->text(); }

void Window::showSamples(QPoint pixel) {
    pointed_ = pixel;
    const auto samples = pixel.x() < 0 ? std::vector<int>() : viewer_.samplesAt(pixel);
    QString text;
    if (!samples.empty())
        text = QStringLiteral("%1, %2").arg(pixel.x()).arg(pixel.y());
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const Channel& channel = viewer_.model().channels()[i];
        text += QStringLiteral("   %1 %2")
                    .arg(channel.dye.isEmpty() ? channel.colour.name() : apps::shown(channel.dye))
                    .arg(samples[i]);
    }
    samples_->setText(text);
}

void Window::showStatus() {
    zoom_->setText(QStringLiteral("%1 %").arg(100 * canvas_->scale(), 0, 'f', 0));
    QStringList bent;
    for (const Channel& channel : viewer_.model().channels())
        if (channel.gamma != 1)
            bent << QStringLiteral("%1 %2").arg(apps::shown(channel.dye)).arg(channel.gamma);
    gamma_->setText(bent.isEmpty() ? QString()
                                   : QStringLiteral("Gamma: ") + bent.join(QStringLiteral(", ")));
    const int row = panel_->currentRow();
    if (viewer_.options().table && row >= 0) {
        const Channel& channel = viewer_.model().channel(row);
        colourBar_->setRange(channel.levels.value_or(LevelRange{}), channel.gamma);
    }
}

void Window::updateScaleBar(ViewOptions& options) const {
    const cv::Mat& screen = viewer_.shown().screen;
    if ((*actions_)[Act::scaleBar].isChecked() && pixelSize_ > 0 && !screen.empty())
        options.annotation.scaleBar = ScaleBar{roundLength(screen.cols * pixelSize_), pixelSize_};
}

void Window::updateOptions() {
    Actions& act = *actions_;
    ViewOptions options;
    options.graySingle = act[Act::gray].isChecked();
    options.marksSaturated = act[Act::saturated].isChecked();
    options.annotation.legend = act[Act::legend].isChecked();
    updateScaleBar(options);
    if (act[Act::pseudo].isChecked())
        options.table = TableChoice{chosenTable_, act[Act::reversed].isChecked()};
    options.pseudoChannel = std::max(panel_->currentRow(), 0);
    viewer_.setOptions(options);
    colourBar_->setVisible(options.table.has_value() && viewer_.hasSource());
    if (viewer_.options().table)
        colourBar_->setTable(viewer_.slotColours());
    showStatus();
}

void Window::tick() {
    const double seconds = std::max(double(sinceTick_.restart()) / 1000, 0.001);
    framesAtTick_ = viewer_.framesOfSource();
    statistics_.tick(seconds, framesAtTick_, viewer_.dropped() - droppedBefore_);
    course_->setBudget(1000 / viewer_.rate());
    const Pace& pace = statistics_.course().back();
    QString text;
    if (viewer_.isRunning() || pace.onScreen > 0) {
        text = QStringLiteral("camera %1/s · screen %2/s · dropped %3")
                   .arg(pace.fromCamera, 0, 'f', 1)
                   .arg(pace.onScreen, 0, 'f', 1)
                   .arg(pace.dropped);
        for (std::size_t stage = 0; stage < Pace::stages; ++stage)
            text += QStringLiteral(" · %1 %2")
                        .arg(QString::fromLatin1(Pace::names[stage]))
                        .arg(pace.milliseconds[stage], 0, 'f', 1);
        text += QStringLiteral(" ms");
    }
    pace_->setText(text);
    watchForStall();
}

void Window::watchForStall() {
    const double patience = std::max(2.0, 3 / viewer_.rate());
    const double silence = double(sinceFrame_.elapsed()) / 1000;
    const bool isStalled = viewer_.isRunning() && silence > patience;
    if (isStalled)
        showProblem(
            QStringLiteral("The camera has sent no frame for %1 seconds").arg(silence, 0, 'f', 0));
    else if (isStalled_)
        messageBar_->hide();
    isStalled_ = isStalled;
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

} // namespace apps
