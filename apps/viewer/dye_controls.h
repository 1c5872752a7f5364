// Ways to choose a dye.
#pragma once

#include "render/dyes.h"

#include <QLineEdit>
#include <QSlider>

namespace lumetra {

/// A field for a name or a `#rrggbb` colour, which completes names from any part, in any case.
class DyeField : public QLineEdit {
    Q_OBJECT
public:
    explicit DyeField(const DyeList& dyes, QWidget* parent = nullptr);

    /// After dyes were added or removed.
    void updateNames(const DyeList& dyes);
};

/// The dyes of the slider in the order of their colours, which it shows.
class DyeSlider : public QSlider {
    Q_OBJECT
public:
    explicit DyeSlider(const DyeList& dyes, QWidget* parent = nullptr);

    void updateDyes(const DyeList& dyes);

    /// Moves to a dye, if it is there, without a signal.
    void showDye(const std::string& name);

    const Dye& dye() const { return dyes_.at(static_cast<size_t>(value())); }

    QSize sizeHint() const override { return {200, 26}; }
    QSize minimumSizeHint() const override { return {80, 26}; }

signals:
    void dyeChosen(const lumetra::Dye& dye);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    std::vector<Dye> dyes_;
};

} // namespace lumetra
