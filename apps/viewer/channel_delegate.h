// How the cells of the channel table are drawn and edited.
#pragma once

#include <QStyledItemDelegate>

namespace apps {

class ChannelModel;

/// Swatches that are clicked to see one channel alone, names of dyes that complete themselves.
class ChannelDelegate : public QStyledItemDelegate {
    Q_OBJECT
public:
    explicit ChannelDelegate(ChannelModel& model, QObject* parent = nullptr);

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override;
    void setEditorData(QWidget* editor, const QModelIndex& index) const override;
    bool editorEvent(QEvent* event, QAbstractItemModel* model, const QStyleOptionViewItem& option,
                     const QModelIndex& index) override;

private:
    ChannelModel& model_;
};

} // namespace apps
