#include "apps/viewer/message_bar.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QStyle>
#include <QToolButton>

namespace lumetra {
namespace {

/// What libraries without Qt's translations say often, for the tool that collects texts.
[[maybe_unused]] constexpr const char* reasons[] = {
    QT_TRANSLATE_NOOP("Reasons", "there is no such file"),
    QT_TRANSLATE_NOOP("Reasons", "is not a file"),
    QT_TRANSLATE_NOOP("Reasons", "is empty"),
    QT_TRANSLATE_NOOP("Reasons", "is not a TIFF, PNG, JPEG, BMP, PGM or PPM file"),
    QT_TRANSLATE_NOOP("Reasons", "is damaged"),
    QT_TRANSLATE_NOOP("Reasons", "is damaged or cut short"),
    QT_TRANSLATE_NOOP("Reasons", "has colours, and a channel must be gray"),
    QT_TRANSLATE_NOOP("Reasons", "there is not enough memory"),
    QT_TRANSLATE_NOOP("Reasons", "is also an input"),
    QT_TRANSLATE_NOOP("Reasons", "cannot be written"),
    QT_TRANSLATE_NOOP("Reasons", "images are written as .png, .tif, .tiff, .jpg or .jpeg"),
    QT_TRANSLATE_NOOP("Reasons",
                      "the offsets are so far apart that the shifted images do not overlap")};

/// "FILE: reason" in the user's language, as far as it is known there.
QString translated(const QString& message) {
    const QString colon = QStringLiteral(": ");
    QStringList parts = message.split(colon);
    for (QString& part : parts)
        part = QCoreApplication::translate("Reasons", part.toUtf8().constData());
    return parts.join(colon);
}

} // namespace

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
    text_->setText(translated(text));
    show();
}

QString MessageBar::message() const { return isHidden() ? QString() : text_->text(); }

} // namespace lumetra
