// The channels, and everything about the selected one.
#pragma once

#include "apps/viewer/actions.h"

#include <QWidget>

#include <functional>
#include <vector>

class QCheckBox;
class QDoubleSpinBox;
class QLabel;
class QLayout;
class QModelIndex;
class QSpinBox;
class QTableView;

namespace lumetra {

class ChannelModel;
class DyeBox;
class LevelEditor;

/// A table of all channels above the dye and the levels of the current one.
class ChannelPanel : public QWidget {
    Q_OBJECT
public:
    ChannelPanel(ChannelModel& model, const Actions& actions, QWidget* parent = nullptr);

    /// The row that is edited; -1 if there are none.
    int currentRow() const;
    void setCurrentRow(int row);

    /// What auto-contrast saturates at each end, in percent of the pixels.
    double saturatedPercent() const;
    void setSaturatedPercent(double percent);

    LevelEditor& levelEditor() { return *levels_; }

    /// Leaves the wheel to the scroll area around it, unless a field is being edited.
    bool eventFilter(QObject* field, QEvent* event) override;

signals:
    void currentRowChanged(int row);
    void saturatedPercentChanged(double percent);

private:
    void makeTable(const Actions& actions);
    QSpinBox* makeNumberBox(const QString& name, int least, int most,
                            const std::function<void(int)>& change);
    QLayout* makeForm();
    QLayout* makeLimitsRow();
    QLayout* makeContrastRows(const Actions& actions);
    void connectTable();
    void connectActions(const Actions& actions);
    void showChannels();
    void showCurrent();

    ChannelModel& model_;
    QTableView* table_ = nullptr;
    QWidget* details_ = nullptr;
    DyeBox* dyeBox_ = nullptr;
    LevelEditor* levels_ = nullptr;
    QSpinBox *left_ = nullptr, *up_ = nullptr, *black_ = nullptr, *white_ = nullptr;
    QCheckBox* gammaOn_ = nullptr;
    QDoubleSpinBox *gamma_ = nullptr, *percent_ = nullptr;
    QLabel* note_ = nullptr;
    bool isDoubleClick_ = false;
    std::vector<bool> visibleBefore_; ///< The click that shows one channel alone.
    int row_ = 0;                     ///< The current one, also while the table is made anew.
};

} // namespace lumetra
