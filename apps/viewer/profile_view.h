// The pixel values of all channels along a line.
#pragma once

#include "apps/common/channel_spec.h"

#include <QLine>
#include <QPoint>
#include <QWidget>

#include <vector>

namespace lumetra {

/// Draws a curve for each visible channel, in its colour.
class ProfileView : public QWidget {
    Q_OBJECT
public:
    explicit ProfileView(QWidget* parent = nullptr);

    /// @param values  Of each pixel of the line, those of all channels.
    void setValues(const std::vector<std::vector<int>>& values,
                   const std::vector<Channel>& channels);

    QSize sizeHint() const override { return {400, 140}; }
    QSize minimumSizeHint() const override { return {160, 80}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    std::vector<std::vector<int>> values_;
    std::vector<Channel> channels_;
};

/// The pixels of a line from its first to its last, one for each step along its longer side.
std::vector<QPoint> pixelsOf(QLine line);

/// Pixel values as a table for spreadsheets: a row for each pixel with values, a column for each
/// channel, tabs between them.
QString intensityTable(const std::vector<QPoint>& pixels,
                       const std::vector<std::vector<int>>& values,
                       const std::vector<Channel>& channels);

} // namespace lumetra
