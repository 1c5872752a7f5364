// A way to choose a dye.
#pragma once

#include "render/dyes.h"

#include <QComboBox>

namespace lumetra {

/// All dyes with their colours, to browse or to find by any part of the name; what is written is a
/// dye by any of its names, or a colour `#rrggbb`.
class DyeBox : public QComboBox {
    Q_OBJECT
public:
    explicit DyeBox(QWidget* parent = nullptr);

    /// After dyes were added or removed.
    void setDyes(const DyeList& dyes);

    /// Shows what was chosen elsewhere, unless the user is writing.
    void showDye(const QString& name);

signals:
    /// The user chose or wrote this.
    void dyeChosen(const QString& nameOrColour);

private:
    void choose();

    QString shown_;
};

} // namespace lumetra
