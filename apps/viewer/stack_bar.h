// Which planes of the files are shown.
#pragma once

#include "apps/viewer/frame_source.h"
#include "imageio/file_metadata.h"

#include <QWidget>

class QComboBox;
class QLabel;
class QSlider;

namespace lumetra {

/// A slider over the z-slices, with their projections, and one over the time points, below the
/// image. Hidden where there is one plane.
class StackBar : public QWidget {
    Q_OBJECT
public:
    explicit StackBar(QWidget* parent = nullptr);

    /// @param hasPages  The z-slices are called pages, since nobody says what they are.
    void setAxes(const Axes& axes, bool hasPages);

    /// Shows a position without choosing it.
    void showPosition(const StackPosition& position);

signals:
    void positionChosen(const lumetra::StackPosition& position);

private:
    struct AxisControls {
        QLabel* name = nullptr;
        QSlider* slider = nullptr;
        QLabel* number = nullptr;
    };

    AxisControls addAxis(const QString& name);
    static void setLength(const AxisControls& axis, int length);
    static void showNumber(const AxisControls& axis, int number);
    void choose();

    AxisControls slices_, frames_;
    QComboBox* projection_;
};

} // namespace lumetra
