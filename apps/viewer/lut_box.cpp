#include "apps/viewer/lut_box.h"

#include "apps/common/error.h"
#include "apps/common/lut_file.h"
#include "apps/viewer/lut_bar.h"

#include <QFileDialog>
#include <QFileInfo>

namespace lumetra {

LutBox::LutBox(QWidget* parent) : QComboBox(parent) {
    setIconSize({72, 14});
    setAccessibleName(tr("LUT"));
    addItem(tr("From a file…"));
    for (const QString& name : lutNames())
        add(name);
    setLut(lut_);
    connect(this, QOverload<int>::of(&QComboBox::activated), this, &LutBox::choose);
}

void LutBox::add(const QString& nameOrFile) {
    const QImage preview = lutPreview(namedLut(nameOrFile), iconSize());
    const int last = count() - 1; // asks for a file
    insertItem(last, QPixmap::fromImage(preview), QFileInfo(nameOrFile).fileName(), nameOrFile);
}

void LutBox::setLut(const QString& nameOrFile) {
    try {
        if (findData(nameOrFile) < 0)
            add(nameOrFile);
        lut_ = nameOrFile;
    } catch (const std::runtime_error&) {
        emit errorOccurred(currentExceptionText());
    }
    setCurrentIndex(findData(lut_));
}

void LutBox::choose(int index) {
    QString chosen = itemData(index).toString();
    if (chosen.isEmpty())
        chosen = QFileDialog::getOpenFileName(this, tr("Open LUT"), {},
                                              tr("ImageJ LUTs (*.lut);;All files (*)"));
    setLut(chosen.isEmpty() ? lut_ : chosen);
    if (!chosen.isEmpty())
        emit lutChosen();
}

} // namespace lumetra
