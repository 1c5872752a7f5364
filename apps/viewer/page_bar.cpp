#include "apps/viewer/page_bar.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <QSlider>

namespace lumetra {

PageBar::PageBar(QWidget* parent)
    : QWidget(parent), slider_(new QSlider(Qt::Horizontal, this)), text_(new QLabel(this)) {
    slider_->setAccessibleName(tr("Page"));
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(8, 2, 8, 2);
    row->addWidget(new QLabel(tr("Page"), this));
    row->addWidget(slider_, 1);
    row->addWidget(text_);
    connect(slider_, &QSlider::valueChanged, this, &PageBar::pageChosen);
}

void PageBar::setPages(int pages) {
    const QSignalBlocker blocker(slider_);
    slider_->setRange(1, pages);
    setVisible(pages > 1);
}

void PageBar::showPage(int page) {
    const QSignalBlocker blocker(slider_);
    slider_->setValue(page);
    text_->setText(tr("%1 / %2").arg(page).arg(slider_->maximum()));
}

} // namespace lumetra
