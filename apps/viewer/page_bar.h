// Which page of the files is shown.
#pragma once

#include <QWidget>

class QLabel;
class QSlider;

namespace lumetra {

/// A slider over the pages of files, below the image. Hidden where there is one page.
class PageBar : public QWidget {
    Q_OBJECT
public:
    explicit PageBar(QWidget* parent = nullptr);

    void setPages(int pages);

    /// Shows a page, counted from 1, without choosing it.
    void showPage(int page);

signals:
    void pageChosen(int page);

private:
    QSlider* slider_;
    QLabel* text_;
};

} // namespace lumetra
