// What the colours of a picture in pseudo-colour stand for.
#pragma once

#include "apps/common/channel.h"

#include <QVector>
#include <QWidget>

namespace apps {

/// The colours of a table from top (the white level) to bottom (the black level), with numbers.
class ColourBar : public QWidget {
    Q_OBJECT
public:
    explicit ColourBar(QWidget* parent = nullptr);

    void setTable(const QVector<QColor>& colours);
    void setRange(LevelRange range, double gamma);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QVector<QColor> colours_;
    LevelRange range_;
    double gamma_ = 1;
};

/// A small picture of a table, from its first colour on the left to its last.
QImage tablePreview(const QVector<QColor>& colours, QSize size);

} // namespace apps
