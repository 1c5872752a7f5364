#include "render/projection.h"

#include "render/render_error.h"

#include <opencv2/core.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

namespace lumetra {
namespace {

struct Name {
    const char* text;
    ProjectionMethod method;
};
constexpr std::array<Name, 3> names{{{"max", ProjectionMethod::max},
                                     {"mean", ProjectionMethod::mean},
                                     {"sum", ProjectionMethod::sum}}};

/// The most planes whose sum, and half their number to round, fits 32 bits.
int mostPlanesOfMean(int depth) { return depth == CV_8U ? 1 << 24 : 1 << 16; }

bool isFloatingPoint(int type) { return CV_MAT_DEPTH(type) >= CV_32F; }

int accumulatorType(ProjectionMethod method, int planeType) {
    if (method == ProjectionMethod::max)
        return planeType;
    if (isFloatingPoint(planeType))
        return CV_64FC1;
    return method == ProjectionMethod::mean ? CV_32SC1 : CV_16UC1;
}

template<class Value>
void takeLarger(const Value* values, Value* largest, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        largest[i] = std::max(values[i], largest[i]);
}

/// What is not a number is as low as can be.
template<class Value>
void takeLargerNumber(const Value* values, Value* largest, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        largest[i] = largest[i] >= values[i] || std::isnan(values[i]) ? largest[i] : values[i];
}

template<class Value, class Sum>
void addExactly(const Value* values, Sum* sums, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        sums[i] += values[i];
}

/// Sums of positive values may be clamped one by one: what is clamped once stays so.
template<class Value>
void addClamped(const Value* values, std::uint16_t* sums, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        const auto room = static_cast<std::uint16_t>(65535 - sums[i]);
        sums[i] = static_cast<std::uint16_t>(sums[i] + std::min<std::uint16_t>(values[i], room));
    }
}

template<class Value>
void addIntegers(ProjectionMethod method, const cv::Mat& plane, cv::Mat& accumulator) {
    const auto columns = static_cast<std::size_t>(plane.cols);
    for (int y = 0; y < plane.rows; ++y) {
        const auto* const values = plane.ptr<Value>(y);
        switch (method) {
        case ProjectionMethod::max:
            takeLarger(values, accumulator.ptr<Value>(y), columns);
            break;
        case ProjectionMethod::mean:
            addExactly(values, accumulator.ptr<std::uint32_t>(y), columns);
            break;
        case ProjectionMethod::sum:
            addClamped(values, accumulator.ptr<std::uint16_t>(y), columns);
            break;
        }
    }
}

template<class Value>
void addFloats(ProjectionMethod method, const cv::Mat& plane, cv::Mat& accumulator) {
    const auto columns = static_cast<std::size_t>(plane.cols);
    for (int y = 0; y < plane.rows; ++y) {
        if (method == ProjectionMethod::max)
            takeLargerNumber(plane.ptr<Value>(y), accumulator.ptr<Value>(y), columns);
        else
            addExactly(plane.ptr<Value>(y), accumulator.ptr<double>(y), columns);
    }
}

void addPlane(ProjectionMethod method, const cv::Mat& plane, cv::Mat& accumulator) {
    switch (plane.depth()) {
    case CV_8U:
        return addIntegers<unsigned char>(method, plane, accumulator);
    case CV_16U:
        return addIntegers<std::uint16_t>(method, plane, accumulator);
    case CV_32F:
        return addFloats<float>(method, plane, accumulator);
    default:
        return addFloats<double>(method, plane, accumulator);
    }
}

/// The quotients are exact: below 65,536 and, where they are no whole numbers, further from one
/// than a double rounds.
template<class Value>
void divide(const std::uint32_t* sums, int planes, Value* means, std::size_t count) {
    const auto half = static_cast<std::uint32_t>(planes / 2);
    const double divisor = planes;
    for (std::size_t i = 0; i < count; ++i)
        means[i] = static_cast<Value>(static_cast<std::int32_t>((sums[i] + half) / divisor));
}

cv::Mat quotients(const cv::Mat& sums, double divisor) {
    cv::Mat quotients(sums.size(), CV_64FC1);
    for (int y = 0; y < sums.rows; ++y)
        std::transform(sums.ptr<double>(y), sums.ptr<double>(y) + sums.cols,
                       quotients.ptr<double>(y), [&](double sum) { return sum / divisor; });
    return quotients;
}

template<class Value>
cv::Mat meanOf(const cv::Mat& sums, int planes, int type) {
    cv::Mat mean(sums.size(), type);
    for (int y = 0; y < sums.rows; ++y)
        divide(sums.ptr<std::uint32_t>(y), planes, mean.ptr<Value>(y),
               static_cast<std::size_t>(sums.cols));
    return mean;
}

} // namespace

std::string projectionText(ProjectionMethod method) {
    return std::find_if(names.begin(), names.end(),
                        [&](const Name& name) { return name.method == method; })
        ->text;
}

ProjectionMethod parseProjection(std::string_view text) {
    for (const Name& name : names)
        if (text == name.text)
            return name.method;
    throw RenderError("\"" + std::string(text) + "\": a projection is max, mean or sum");
}

void Projection::add(const cv::Mat& plane) {
    CV_Assert(plane.dims <= 2 && (plane.type() == CV_8UC1 || plane.type() == CV_16UC1 ||
                                  plane.type() == CV_32FC1 || plane.type() == CV_64FC1));
    if (planes_ == 0) {
        type_ = plane.type();
        if (method_ == ProjectionMethod::max) {
            plane.copyTo(accumulator_);
        } else {
            accumulator_.create(plane.size(), accumulatorType(method_, type_));
            accumulator_.setTo(0);
        }
    }
    if (plane.size() != accumulator_.size())
        throw RenderError("the planes have different sizes");
    if (plane.type() != type_)
        throw RenderError("the planes have different bit depths");
    if (method_ == ProjectionMethod::mean && !isFloatingPoint(type_) &&
        planes_ == mostPlanesOfMean(plane.depth()))
        throw RenderError("there are too many planes for a mean");
    if (planes_ > 0 || method_ != ProjectionMethod::max)
        addPlane(method_, plane, accumulator_);
    ++planes_;
}

cv::Mat Projection::result() const {
    if (planes_ == 0)
        throw RenderError("there are no planes to project");
    if (method_ != ProjectionMethod::mean)
        return accumulator_.clone();
    if (isFloatingPoint(type_))
        return quotients(accumulator_, planes_);
    return type_ == CV_8UC1 ? meanOf<unsigned char>(accumulator_, planes_, type_)
                            : meanOf<std::uint16_t>(accumulator_, planes_, type_);
}

} // namespace lumetra
