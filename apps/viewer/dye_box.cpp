#include "apps/viewer/dye_box.h"

#include "apps/common/text.h"

#include <QCompleter>
#include <QLineEdit>

namespace lumetra {

DyeBox::DyeBox(QWidget* parent) : QComboBox(parent) {
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

void DyeBox::setDyes(const DyeList& dyes) {
    clear();
    for (const Dye& dye : dyes.all()) {
        addItem(toQt(dye.name));
        setItemData(count() - 1, toQt(dye.colour), Qt::DecorationRole);
    }
    setEditText(shown_);
}

void DyeBox::showDye(const QString& name) {
    if (currentText() == shown_)
        setEditText(name);
    shown_ = name;
}

void DyeBox::choose() {
    if (currentText() == shown_)
        return;
    shown_ = currentText();
    emit dyeChosen(shown_);
}

} // namespace lumetra
