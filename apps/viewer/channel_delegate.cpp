#include "apps/viewer/channel_delegate.h"

#include "apps/viewer/channel_model.h"
#include "apps/viewer/dye_controls.h"

#include <QMouseEvent>
#include <QPainter>
#include <QSpinBox>

namespace apps {

ChannelDelegate::ChannelDelegate(ChannelModel& model, QObject* parent)
    : QStyledItemDelegate(parent), model_(model) {}

void ChannelDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                            const QModelIndex& index) const {
    if (index.column() != ChannelModel::colourColumn)
        return QStyledItemDelegate::paint(painter, option, index);
    QStyleOptionViewItem empty = option; // the row's background
    initStyleOption(&empty, {});
    QStyledItemDelegate::paint(painter, empty, {});
    const int side = std::min(option.rect.width(), option.rect.height()) - 8;
    QRectF swatch(0, 0, side, side);
    swatch.moveCenter(QRectF(option.rect).center());
    const Channel& channel = model_.channel(index.row());
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(QPen(option.palette.color(QPalette::Text), 1));
    painter->setBrush(channel.visible ? channel.colour : QColor(Qt::transparent));
    painter->drawRoundedRect(swatch, 3, 3);
    painter->restore();
}

QWidget* ChannelDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem& /*option*/,
                                       const QModelIndex& index) const {
    if (index.column() == ChannelModel::dyeColumn)
        return new DyeField(model_.dyes(), parent);
    auto* editor = new QSpinBox(parent);
    editor->setFrame(false);
    editor->setRange(0, model_.measured(index.row()).bits == 8 ? 255 : 65535);
    return editor;
}

/// Once only: frames change the model all the time, and what the user is writing must stay.
void ChannelDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const {
    constexpr auto filled = "filled";
    if (editor->property(filled).toBool())
        return;
    QStyledItemDelegate::setEditorData(editor, index);
    editor->setProperty(filled, true);
}

bool ChannelDelegate::editorEvent(QEvent* event, QAbstractItemModel* model,
                                  const QStyleOptionViewItem& option, const QModelIndex& index) {
    if (index.column() == ChannelModel::colourColumn &&
        event->type() == QEvent::MouseButtonRelease) {
        model_.solo(index.row());
        return true;
    }
    return QStyledItemDelegate::editorEvent(event, model, option, index);
}

} // namespace apps
