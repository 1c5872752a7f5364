#include "render/projection.h"

#include "render/render_error.h"

#include "planes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>

namespace lumetra {
namespace {

constexpr ProjectionMethod methods[] = {ProjectionMethod::max, ProjectionMethod::mean,
                                        ProjectionMethod::sum};

/// One pixel after another.
cv::Mat plainProjection(ProjectionMethod method, const std::vector<cv::Mat>& planes) {
    const bool is8Bit = planes[0].depth() == CV_8U;
    cv::Mat result(planes[0].size(),
                   is8Bit && method != ProjectionMethod::sum ? CV_8UC1 : CV_16UC1);
    const auto count = static_cast<std::int64_t>(planes.size());
    for (int y = 0; y < result.rows; ++y)
        for (int x = 0; x < result.cols; ++x) {
            std::int64_t sum = 0, largest = 0;
            for (const cv::Mat& plane : planes) {
                const std::int64_t value = is8Bit ? plane.at<uchar>(y, x) : plane.at<ushort>(y, x);
                sum += value;
                largest = std::max(largest, value);
            }
            const std::int64_t value = method == ProjectionMethod::max ? largest
                                       : method == ProjectionMethod::mean
                                           ? (2 * sum + count) / (2 * count)
                                           : std::min<std::int64_t>(sum, 65535);
            if (result.depth() == CV_8U)
                result.at<uchar>(y, x) = static_cast<uchar>(value);
            else
                result.at<ushort>(y, x) = static_cast<ushort>(value);
        }
    return result;
}

TEST(Projection, OfFloatsIsNeitherRoundedNorClamped) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    for (const int type : {CV_32FC1, CV_64FC1}) {
        std::vector<cv::Mat> planes;
        for (const auto& values : {cv::Vec3f(-5, nan, 1e6F), cv::Vec3f(-7.5F, 2, 1e6F)})
            cv::Mat(cv::Matx13f(values[0], values[1], values[2]))
                .convertTo(planes.emplace_back(), type);
        const auto projected = [&](ProjectionMethod method) {
            Projection projection(method);
            for (const cv::Mat& plane : planes)
                projection.add(plane);
            cv::Mat result;
            projection.result().convertTo(result, CV_64F);
            return result;
        };
        const cv::Mat largest = projected(ProjectionMethod::max);
        EXPECT_EQ(largest.at<double>(0), -5);
        EXPECT_EQ(largest.at<double>(1), 2);
        EXPECT_EQ(projected(ProjectionMethod::mean).at<double>(0), -6.25);
        EXPECT_EQ(projected(ProjectionMethod::sum).at<double>(2), 2e6);
    }
}

TEST(Projection, EqualsThePlainLoop) {
    for (const int type : {CV_8UC1, CV_16UC1})
        for (const cv::Size size : {cv::Size(1, 1), cv::Size(37, 5), cv::Size(3, 100)})
            for (const int count : {1, 2, 3, 8, 300}) {
                std::vector<cv::Mat> planes;
                for (int i = 0; i < count; ++i) {
                    const cv::Size wider(size.width + i % 3, size.height); // steps beside widths
                    planes.push_back(
                        noisePlane(wider, type, i)({i % 3, 0, size.width, size.height}));
                }
                for (const ProjectionMethod method : methods) {
                    Projection projection(method);
                    for (const cv::Mat& plane : planes)
                        projection.add(plane);
                    EXPECT_EQ(projection.planes(), count);
                    EXPECT_TRUE(areEqual(projection.result(), plainProjection(method, planes)))
                        << projectionText(method) << ", " << count << " of type " << type << ", "
                        << size;
                }
            }
}

TEST(Projection, MeansAreExactAtTheEndsOfTheirRange) {
    const cv::Mat white(1, 3, CV_16UC1, cv::Scalar(65535));
    Projection projection(ProjectionMethod::mean);
    for (int i = 0; i < 65536; ++i)
        projection.add(white);
    EXPECT_TRUE(areEqual(projection.result(), white));
    EXPECT_THROW(projection.add(white), RenderError);
    EXPECT_TRUE(areEqual(projection.result(), white));
}

TEST(Projection, RefusesWhatDoesNotFit) {
    for (const ProjectionMethod method : methods) {
        EXPECT_EQ(parseProjection(projectionText(method)), method);
        Projection projection(method);
        EXPECT_THROW(static_cast<void>(projection.result()), RenderError);
        const cv::Mat plane = noisePlane({4, 3}, CV_8UC1, 1);
        projection.add(plane);
        EXPECT_THROW(projection.add(noisePlane({3, 4}, CV_8UC1, 1)), RenderError);
        EXPECT_THROW(projection.add(noisePlane({4, 3}, CV_16UC1, 1)), RenderError);
        EXPECT_THROW(projection.add(cv::Mat::zeros(3, 4, CV_8UC3)), cv::Exception);
        EXPECT_TRUE(areEqual(projection.result(), plainProjection(method, {plane})));
    }
    for (const char* text : {"", "Max", "maximum", "min", "max "})
        EXPECT_THROW(parseProjection(text), RenderError) << text;
}

} // namespace
} // namespace lumetra
