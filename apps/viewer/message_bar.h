// A message above the image.
#pragma once

#include <QFrame>

class QLabel;

namespace lumetra {

/// Tells the user what went wrong, until it is closed or mended. Hidden without a message.
class MessageBar : public QFrame {
    Q_OBJECT
public:
    explicit MessageBar(QWidget* parent = nullptr);

    void showMessage(const QString& text);

    /// What is shown; empty if nothing is.
    QString message() const;

private:
    QLabel* text_;
};

} // namespace lumetra
