// The LUTs to choose from.
#pragma once

#include "apps/common/command_line.h"
#include "apps/common/error.h"
#include "apps/common/lut_file.h"
#include "apps/viewer/lut_bar.h"

#include <QComboBox>
#include <QFileDialog>
#include <QFileInfo>

namespace lumetra {

/// Lists the named LUTs with their colours, then those from files.
class LutBox : public QComboBox {
    Q_OBJECT
public:
    explicit LutBox(QWidget* parent = nullptr) : QComboBox(parent) {
        setIconSize({72, 14});
        setAccessibleName(tr("LUT"));
        addItem(tr("From a file…"));
        for (const QString& name : lutNames())
            add(name);
        setLut(lut_);
        connect(this, QOverload<int>::of(&QComboBox::activated), this, &LutBox::choose);
    }

    /// The LUT that is chosen, by its name or file.
    const QString& lut() const { return lut_; }

    /// Chooses a LUT by its name, or a file, which can be chosen from then on. One that cannot be
    /// read changes nothing.
    void setLut(const QString& nameOrFile) {
        try {
            if (findData(nameOrFile) < 0)
                add(nameOrFile);
            lut_ = nameOrFile;
        } catch (const std::runtime_error&) {
            emit errorOccurred(currentExceptionText());
        }
        setCurrentIndex(findData(lut_));
    }

signals:
    /// The user chose a LUT.
    void lutChosen();
    void errorOccurred(const QString& reason);

private:
    void add(const QString& nameOrFile) {
        const QImage preview = lutPreview(namedLut(nameOrFile), iconSize());
        const int last = count() - 1; // asks for a file
        insertItem(last, QPixmap::fromImage(preview), QFileInfo(nameOrFile).fileName(), nameOrFile);
    }

    void choose(int index) {
        QString chosen = itemData(index).toString();
        if (chosen.isEmpty())
            chosen = QFileDialog::getOpenFileName(this, tr("Open LUT"), {},
                                                  tr("ImageJ LUTs (*.lut);;All files (*)"));
        setLut(chosen.isEmpty() ? lut_ : chosen);
        if (!chosen.isEmpty())
            emit lutChosen();
    }

    QString lut_ = LutChoice{}.lut;
};

} // namespace lumetra
