#include "apps/viewer/stack_bar.h"

#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <QSlider>

namespace lumetra {

StackBar::StackBar(QWidget* parent) : QWidget(parent), projection_(new QComboBox(this)) {
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(8, 2, 8, 2);
    grid->setColumnStretch(1, 1);
    slices_ = addAxis(tr("Z-slice"));
    grid->addWidget(projection_, 0, 3);
    frames_ = addAxis(tr("Time point"));
    projection_->setAccessibleName(tr("Projection"));
    projection_->setToolTip(tr("Projection of all z-slices"));
    projection_->addItems({tr("One z-slice"), tr("Maximum projection"), tr("Mean projection")});
    connect(projection_, QOverload<int>::of(&QComboBox::activated), this, &StackBar::choose);
}

StackBar::AxisControls StackBar::addAxis(const QString& name) {
    auto* grid = qobject_cast<QGridLayout*>(layout());
    const int row = grid->count() > 0 ? 1 : 0;
    const AxisControls axis{new QLabel(name, this), new QSlider(Qt::Horizontal, this),
                            new QLabel(this)};
    axis.slider->setAccessibleName(name);
    grid->addWidget(axis.name, row, 0);
    grid->addWidget(axis.slider, row, 1);
    grid->addWidget(axis.number, row, 2);
    connect(axis.slider, &QSlider::valueChanged, this, &StackBar::choose);
    return axis;
}

void StackBar::setLength(const AxisControls& axis, int length) {
    const QSignalBlocker blocker(axis.slider);
    axis.slider->setRange(1, length);
    axis.name->setVisible(length > 1);
    axis.slider->setVisible(length > 1);
    axis.number->setVisible(length > 1);
}

void StackBar::setAxes(const Axes& axes, bool hasPages) {
    slices_.name->setText(hasPages ? tr("Page") : tr("Z-slice"));
    projection_->setItemText(0, hasPages ? tr("One page") : tr("One z-slice"));
    setLength(slices_, axes.slices);
    setLength(frames_, axes.frames);
    projection_->setVisible(axes.slices > 1);
    setVisible(axes.slices > 1 || axes.frames > 1);
}

void StackBar::showNumber(const AxisControls& axis, int number) {
    const QSignalBlocker blocker(axis.slider);
    if (!axis.slider->isSliderDown()) // which is ahead of the image
        axis.slider->setValue(number);
    axis.number->setText(tr("%1 / %2").arg(number).arg(axis.slider->maximum()));
}

void StackBar::showPosition(const StackPosition& position) {
    showNumber(slices_, position.slice);
    showNumber(frames_, position.frame);
    projection_->setCurrentIndex(!position.projection                            ? 0
                                 : *position.projection == ProjectionMethod::max ? 1
                                                                                 : 2);
    slices_.slider->setEnabled(!position.projection);
}

void StackBar::choose() {
    const std::optional<ProjectionMethod> methods[] = {std::nullopt, ProjectionMethod::max,
                                                       ProjectionMethod::mean};
    emit positionChosen(
        {slices_.slider->value(), frames_.slider->value(), methods[projection_->currentIndex()]});
}

} // namespace lumetra
