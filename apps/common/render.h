// From planes and settings to one picture.
#pragma once

#include "apps/common/channel.h"
#include "apps/common/display_table.h"

#include <QColor>
#include <QList>
#include <QPoint>
#include <QVector>

#include <opencv2/core/mat.hpp>

#include <cstdint>
#include <deque>
#include <optional>
#include <vector>

namespace apps {

/// Nanoseconds of its thread that the stages of one picture took.
struct StageTimes {
    std::int64_t eightBits = 0; ///< Samples through levels and gamma.
    std::int64_t dye = 0;
    std::int64_t composite = 0;
    std::int64_t screen = 0; ///< Conversion for the screen.
};

/// What pixels are made for.
enum class PixelForm {
    file,  ///< Blue, green and red of 8 bits, or of 16 where samples keep them.
    screen ///< CV_8UC4, as QImage::Format_RGB32 has it.
};

/// The clock of the stages. It stands still while other threads and programs have the processor.
std::int64_t threadNanoseconds();

/// Makes pictures, and keeps the memory that it needs from one to the next.
///
/// Planes are gray: CV_8UC1 or CV_16UC1. They are worked on in strips of rows that stay in the
/// processor's cache. An object belongs to one thread at a time.
class Renderer {
public:
    /// All visible channels in one picture.
    ///
    /// A plane with levels is brought to 8 bits through them and its gamma; one without keeps its
    /// samples and its depth. Then it is tinted and added to the others, all in the depth of the
    /// deepest. Hidden channels count for the part of the planes that the picture shows, so that it
    /// does not change its size when one is hidden. If none is visible, it is black.
    ///
    /// @param planes    One for each channel, all of one size; only read.
    /// @param picture   Receives pixels in the form that is wanted. Its storage is used again if it
    ///                  fits.
    /// @throws Failure if there is no plane, sizes differ, the offsets leave no common pixel, or a
    ///         visible plane of 16 bits has no levels for the screen.
    void render(const std::vector<cv::Mat>& planes, const std::vector<Channel>& channels,
                cv::Mat& picture, PixelForm form = PixelForm::file);

    /// One plane through a table of colours.
    ///
    /// @param levels   What the first and the last colour stand for; without them, the smallest and
    ///                 the largest sample.
    /// @param gamma    As for channels.
    /// @param slotColours  255 colours, as `pseudoSlots` makes them.
    /// @param picture  Receives 8 bits in the form that is wanted. Its storage is used again if it
    ///                 fits.
    void renderPseudo(const cv::Mat& plane, std::optional<LevelRange> levels, double gamma,
                      const QVector<QColor>& slotColours, cv::Mat& picture,
                      PixelForm form = PixelForm::file);

    /// How long the last call of `render` or `renderPseudo` took, which colours all at once.
    const StageTimes& times() const { return times_; }

private:
    /// The memory of one channel. Strips have one height, and the last of them another.
    struct Lane {
        DisplayTable table;
        cv::Mat eightBits, tinted, lastTinted;
    };
    struct Canvas;
    class StageClock;

    void prepare(const std::vector<cv::Mat>& planes, const std::vector<Channel>& channels);
    cv::Mat& tint(const cv::Mat& part, const Channel& channel, Lane& lane, bool isLast);
    void renderStrip(const Canvas& canvas, int firstRow, cv::Mat part, bool isLast);
    void finish(const cv::Mat& strip, cv::Mat part, StageClock& clock);
    void setRangeTable(int bits, LevelRange levels, double gamma);

    std::vector<std::size_t> visible_;
    std::deque<Lane> lanes_;
    QList<cv::Mat*> images_;
    QList<QPoint> noOffsets_;
    StageTimes times_;

    std::vector<std::uint16_t> rangeTable_;
    LevelRange tableLevels_;
    double tableGamma_ = 0;
    cv::Mat deep_, coloured_, lastColoured_, pixels_;
};

} // namespace apps
