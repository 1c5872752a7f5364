// A way to choose a dye.
#pragma once

#include "apps/common/text.h"
#include "render/dyes.h"

#include <QComboBox>
#include <QCompleter>
#include <QLineEdit>

namespace lumetra {

/// All dyes with their colours, to browse or to find by any part of the name; what is written is a
/// dye by any of its names, or a colour `#rrggbb`.
class DyeBox : public QComboBox {
    Q_OBJECT
public:
    explicit DyeBox(QWidget* parent = nullptr) : QComboBox(parent) {
        constexpr int rows = 16;
        setEditable(true);
        setInsertPolicy(NoInsert);
        setMaxVisibleItems(rows);
        setSizeAdjustPolicy(AdjustToMinimumContentsLengthWithIcon);
        setMinimumContentsLength(12);
        setAccessibleName(tr("Dye"));
        lineEdit()->setPlaceholderText(tr("Dye, or #rrggbb"));
        completer()->setFilterMode(Qt::MatchContains);
        completer()->setCompletionMode(QCompleter::PopupCompletion);
        completer()->setMaxVisibleItems(rows);
        connect(this, QOverload<int>::of(&QComboBox::activated), this, &DyeBox::choose);
        connect(lineEdit(), &QLineEdit::editingFinished, this, &DyeBox::choose);
    }

    /// After dyes were added or removed.
    void setDyes(const DyeList& dyes) {
        clear();
        for (const Dye& dye : dyes.all()) {
            addItem(toQt(dye.name));
            setItemData(count() - 1, toQt(dye.colour), Qt::DecorationRole);
        }
        setEditText(shown_);
    }

    /// Shows what was chosen elsewhere, unless the user is writing.
    void showDye(const QString& name) {
        if (currentText() == shown_)
            setEditText(name);
        shown_ = name;
    }

signals:
    /// The user chose or wrote this.
    void dyeChosen(const QString& nameOrColour);

private:
    void choose() {
        if (currentText() == shown_)
            return;
        shown_ = currentText();
        emit dyeChosen(shown_);
    }

    QString shown_;
};

} // namespace lumetra
