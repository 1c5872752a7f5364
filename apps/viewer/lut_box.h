// The LUTs to choose from.
#pragma once

#include "apps/common/command_line.h"

#include <QComboBox>

namespace lumetra {

/// Lists the named LUTs with their colours, then those from files.
class LutBox : public QComboBox {
    Q_OBJECT
public:
    explicit LutBox(QWidget* parent = nullptr);

    /// The LUT that is chosen, by its name or file.
    const QString& lut() const { return lut_; }

    /// Chooses a LUT by its name, or a file, which can be chosen from then on. One that cannot be
    /// read changes nothing.
    void setLut(const QString& nameOrFile);

signals:
    /// The user chose a LUT.
    void lutChosen();
    void errorOccurred(const QString& reason);

private:
    void add(const QString& nameOrFile);
    void choose(int index);

    QString lut_ = LutChoice{}.lut;
};

} // namespace lumetra
