#include "apps/viewer/message_bar.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QStyle>
#include <QToolButton>

namespace lumetra {

MessageBar::MessageBar(QWidget* parent) : QFrame(parent), text_(new QLabel(this)) {
    setFrameShape(QFrame::StyledPanel);
    setAutoFillBackground(true);
    QPalette colours(QColor(0xfd, 0xe8, 0xc8)); // dark on bright in every palette
    colours.setColor(QPalette::WindowText, QColor(0x3a, 0x28, 0x08));
    setPalette(colours);
    text_->setWordWrap(true);
    text_->setTextFormat(Qt::PlainText);
    text_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* close = new QToolButton(this);
    close->setIcon(style()->standardIcon(QStyle::SP_TitleBarCloseButton));
    close->setAutoRaise(true);
    close->setAccessibleName(tr("Close the message"));
    connect(close, &QToolButton::clicked, this, &QWidget::hide);
    auto* row = new QHBoxLayout(this);
    row->addWidget(text_, 1);
    row->addWidget(close, 0, Qt::AlignTop);
    hide();
}

void MessageBar::showMessage(const QString& text) {
    text_->setText(text);
    show();
}

QString MessageBar::message() const { return isHidden() ? QString() : text_->text(); }

} // namespace lumetra
