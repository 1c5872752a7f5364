#include "apps/viewer/render_loop.h"

#include "apps/common/failure.h"

#include <QRect>

#include <algorithm>
#include <limits>

namespace apps {
namespace {

/// The pixel of a plane below the first pixel of the picture, for a channel with this offset.
QPoint firstPixel(const std::vector<Channel>& channels, QPoint offset) {
    const auto distance = [&](auto part) {
        std::int64_t least = part(offset);
        for (const Channel& channel : channels)
            least = std::min<std::int64_t>(least, part(channel.offset));
        constexpr std::int64_t most = std::numeric_limits<int>::max();
        return static_cast<int>(std::min(part(offset) - least, most));
    };
    return {distance([](QPoint p) { return p.x(); }), distance([](QPoint p) { return p.y(); })};
}

void drawView(Renderer& renderer, const std::vector<cv::Mat>& planes, const View& view,
              cv::Mat& picture, PixelForm form) {
    if (planes.size() != view.channels.size())
        throw Failure(QStringLiteral("the camera gives %1 channels in place of %2")
                          .arg(planes.size())
                          .arg(view.channels.size()));
    if (!view.pseudo)
        return renderer.render(planes, view.channels, picture, form);
    const Channel& channel = view.channels.at(view.pseudo->channel);
    renderer.renderPseudo(planes.at(view.pseudo->channel), channel.levels, channel.gamma,
                          view.pseudo->slotColours, picture, form);
}

void annotateView(const View& view, cv::Mat& picture) {
    annotate(picture, view.pseudo ? std::vector<Channel>{} : view.channels, view.annotation);
}

template<class Sample>
void markFrom(int limit, const cv::Mat& plane, cv::Mat& picture) {
    const cv::Vec4b mark(0, 0, 255, 255);
    const int columns = picture.cols;
    for (int y = 0; y < picture.rows; ++y) {
        const auto* in = plane.ptr<Sample>(y);
        auto* out = picture.ptr<cv::Vec4b>(y);
        for (int x = 0; x < columns; ++x)
            if (in[x] >= limit)
                out[x] = mark;
    }
}

/// Marks what lies at the end of the converter's range, where it may have been brighter still.
void markSaturated(const std::vector<cv::Mat>& planes, const View& view,
                   const std::vector<Measure>& measures, cv::Mat& picture) {
    for (std::size_t i = 0; i < planes.size(); ++i) {
        if (!(view.pseudo ? view.pseudo->channel == i : view.channels[i].visible))
            continue;
        const QPoint first =
            view.pseudo ? QPoint() : firstPixel(view.channels, view.channels[i].offset);
        const cv::Mat part = planes[i]({first.x(), first.y(), picture.cols, picture.rows});
        const int limit = largestOf(converterBits(measures[i].range.high));
        if (part.depth() == CV_8U)
            markFrom<unsigned char>(limit, part, picture);
        else
            markFrom<std::uint16_t>(limit, part, picture);
    }
}

} // namespace

void makePicture(Renderer& renderer, const std::vector<cv::Mat>& planes, const View& view,
                 cv::Mat& picture) {
    drawView(renderer, planes, view, picture, PixelForm::file);
    annotateView(view, picture);
}

RenderLoop::RenderLoop() : thread_([this] { run(); }) {}

RenderLoop::~RenderLoop() {
    {
        const std::lock_guard lock(mutex_);
        quitting_ = true;
    }
    work_.notify_all();
    thread_.join();
}

void RenderLoop::offer(Frame& frame) {
    if (frames_.put(frame))
        ++dropped_;
    const std::lock_guard lock(mutex_);
    hasFrame_ = true;
    work_.notify_all();
}

void RenderLoop::setView(const View& view) {
    const std::lock_guard lock(mutex_);
    view_ = view;
    hasView_ = true;
    work_.notify_all();
}

void RenderLoop::clear() {
    Frame unseen;
    frames_.take(unseen);
    const std::lock_guard lock(mutex_);
    isCleared_ = true;
    hasFrame_ = false;
}

std::vector<int> RenderLoop::samplesAt(QPoint pixel, const std::vector<Channel>& channels) const {
    const std::lock_guard lock(frameMutex_);
    std::vector<int> samples;
    if (frame_.planes.size() != channels.size())
        return samples;
    for (std::size_t i = 0; i < channels.size(); ++i) {
        const cv::Mat& plane = frame_.planes[i];
        const QPoint first = firstPixel(channels, channels[i].offset);
        const QRect covered(0, 0, plane.cols, plane.rows);
        if (!covered.contains(first) || !covered.contains(first + pixel))
            return {};
        const QPoint at = first + pixel;
        samples.push_back(plane.depth() == CV_8U ? plane.at<unsigned char>(at.y(), at.x())
                                                 : plane.at<std::uint16_t>(at.y(), at.x()));
    }
    return samples;
}

std::vector<cv::Mat> RenderLoop::planes() const {
    const std::lock_guard lock(frameMutex_);
    std::vector<cv::Mat> copies;
    for (const cv::Mat& plane : frame_.planes)
        copies.push_back(plane.clone());
    return copies;
}

bool RenderLoop::waitForWork(View& view, bool& isNewFrame) {
    std::unique_lock lock(mutex_);
    work_.wait(lock, [&] { return quitting_ || hasFrame_ || hasView_; });
    if (quitting_)
        return false;
    if (std::exchange(hasView_, false) || hasFrame_)
        view = view_;
    const bool isCleared = std::exchange(isCleared_, false);
    hasFrame_ = false;
    lock.unlock();

    const std::lock_guard frameLock(frameMutex_);
    if (isCleared)
        frame_ = {};
    isNewFrame = frames_.take(frame_);
    return true;
}

void RenderLoop::measure(View& view, bool isNewFrame) {
    const auto& planes = frame_.planes;
    const std::int64_t start = threadNanoseconds();
    if (isNewFrame || measures_.size() != planes.size() || (measuredLive_ && !view.isLive)) {
        measures_.resize(planes.size());
        for (std::size_t i = 0; i < planes.size(); ++i)
            measurer_.measure(planes[i], view.isLive, measures_[i]);
        measuredLive_ = view.isLive;
        measuring_ = threadNanoseconds() - start;
    }
    shown_.levels.resize(view.channels.size());
    for (std::size_t i = 0; i < std::min(planes.size(), view.channels.size()); ++i) {
        auto& levels = view.channels[i].levels;
        if (!levels)
            levels = measures_[i].automatic;
        shown_.levels[i] = *levels;
    }
}

void RenderLoop::draw(const View& view) {
    drawView(renderer_, frame_.planes, view, shown_.screen, PixelForm::screen);
    if (view.marksSaturated)
        markSaturated(frame_.planes, view, measures_, shown_.screen);
    try {
        annotateView(view, shown_.screen);
    } catch (...) {
        shown_.problem = currentReason();
    }
}

void RenderLoop::publish(const View& view) {
    shown_.measures = measures_;
    shown_.measuring = measuring_;
    shown_.frame = frame_.number;
    shown_.page = frame_.page;
    shown_.revision = view.revision;
    shown_.stages = renderer_.times();
    shown_.processorTime = threadNanoseconds();
    const std::uint64_t published = shown_.frame;
    if (!pictures_.put(shown_))
        emit ready();
    else if (shown_.frame != published) // what came back was never seen
        ++dropped_;
}

void RenderLoop::run() {
    View view;
    bool isNewFrame = false;
    while (waitForWork(view, isNewFrame)) {
        if (frame_.planes.empty())
            continue;
        shown_.problem.clear();
        try {
            measure(view, isNewFrame);
            draw(view);
        } catch (...) {
            shown_.problem = currentReason();
            shown_.screen.release();
        }
        publish(view);
    }
}

} // namespace apps
