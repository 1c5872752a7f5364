// The channels, and everything about the selected one.
#pragma once

#include <QWidget>

class QCheckBox;
class QDoubleSpinBox;
class QLabel;
class QLayout;
class QSpinBox;
class QTableView;

namespace lumetra {

class ChannelModel;
class DyeField;
class DyeSlider;
class LevelEditor;

/// A table of all channels above the dye and the levels of the current one.
class ChannelPanel : public QWidget {
    Q_OBJECT
public:
    explicit ChannelPanel(ChannelModel& model, QWidget* parent = nullptr);

    /// The row that is edited; -1 if there are none.
    int currentRow() const;
    void setCurrentRow(int row);

    void focusChannels();
    void focusLevels();

signals:
    void currentRowChanged(int row);

private:
    QWidget* makeTable();
    QWidget* makeDyeBox();
    QLayout* makeOffsetRow();
    QWidget* makeLevelBox();
    void connectEditors();
    void showChannels();
    void showCurrent();

    ChannelModel& model_;
    QTableView* table_ = nullptr;
    QWidget* details_ = nullptr;
    DyeField* dyeField_ = nullptr;
    DyeSlider* dyeSlider_ = nullptr;
    LevelEditor* levels_ = nullptr;
    QSpinBox *left_ = nullptr, *up_ = nullptr, *black_ = nullptr, *white_ = nullptr;
    QCheckBox *gammaOn_ = nullptr, *continuous_ = nullptr;
    QDoubleSpinBox* gamma_ = nullptr;
    QLabel* note_ = nullptr;
};

} // namespace lumetra
