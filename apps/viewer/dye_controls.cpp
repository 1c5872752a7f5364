#include "apps/viewer/dye_controls.h"

#include "apps/common/text.h"

#include <QCompleter>
#include <QPainter>
#include <QSignalBlocker>
#include <QStringListModel>

namespace lumetra {

DyeField::DyeField(const DyeList& dyes, QWidget* parent) : QLineEdit(parent) {
    setPlaceholderText(tr("Dye, or #rrggbb"));
    setAccessibleName(tr("Dye"));
    auto* completer = new QCompleter(this);
    completer->setModel(new QStringListModel(completer));
    completer->setCaseSensitivity(Qt::CaseInsensitive);
    completer->setFilterMode(Qt::MatchContains);
    completer->setMaxVisibleItems(12);
    setCompleter(completer);
    updateNames(dyes);
}

void DyeField::updateNames(const DyeList& dyes) {
    QStringList names;
    for (const Dye& dye : dyes.all())
        names << toQt(dye.name);
    if (auto* model = qobject_cast<QStringListModel*>(completer()->model()))
        model->setStringList(names);
}

DyeSlider::DyeSlider(const DyeList& dyes, QWidget* parent) : QSlider(Qt::Horizontal, parent) {
    setAccessibleName(tr("Dyes in the order of their colours"));
    updateDyes(dyes);
    connect(this, &QSlider::valueChanged, this, [this] {
        setToolTip(toQt(dye().name));
        emit dyeChosen(dye());
    });
}

void DyeSlider::updateDyes(const DyeList& dyes) {
    const QSignalBlocker blocker(this);
    dyes_ = dyes.inSliderOrder();
    setRange(0, static_cast<int>(dyes_.size()) - 1);
    update();
}

void DyeSlider::showDye(const std::string& name) {
    const QSignalBlocker blocker(this); // a dye may stand in it twice
    for (int i = 0; i <= maximum() && dye().name != name; ++i)
        if (dyes_[static_cast<size_t>(i)].name == name)
            setValue(i);
    update();
}

void DyeSlider::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF groove = QRectF(rect()).adjusted(6, 7, -6, -7);
    QLinearGradient colours(groove.topLeft(), groove.topRight());
    const double last = std::max(maximum(), 1);
    for (std::size_t i = 0; i < dyes_.size(); ++i)
        colours.setColorAt(static_cast<double>(i) / last, toQt(dyes_[i].colour));
    painter.setPen(Qt::NoPen);
    painter.setBrush(colours);
    painter.drawRoundedRect(groove, 4, 4);
    const double x = groove.left() + groove.width() * value() / last;
    const QColor ring =
        hasFocus() ? palette().color(QPalette::Highlight) : palette().color(QPalette::Text);
    painter.setPen(QPen(ring, 2));
    painter.setBrush(dyes_.empty() ? QColor() : toQt(dye().colour));
    painter.drawRoundedRect(QRectF(x - 5, 2, 10, height() - 4), 4, 4);
}

} // namespace lumetra
