// Which pixel values the colours of a LUT stand for.
#pragma once

#include "apps/common/channel_spec.h"

#include <QVector>
#include <QWidget>

namespace lumetra {

/// The colours of a LUT from top (the white level) to bottom (the black level), with numbers.
class LutBar : public QWidget {
    Q_OBJECT
public:
    explicit LutBar(QWidget* parent = nullptr);

    void setLut(const Colormap& colours, ContrastLimits range, double gamma);

    /// The pixel value that has the colour at a share of the bar's height, 0 to 1.
    double valueAt(double share) const;

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Colormap colours_{};
    ContrastLimits range_;
    double gamma_ = 1;
};

/// A small image of a LUT, from its first colour on the left to its last.
QImage lutPreview(const Colormap& colours, QSize size);

} // namespace lumetra
