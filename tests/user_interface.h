// What the library shows to the user and tells the developer, made visible to tests.
#pragma once

#include <QApplication>
#include <QMessageBox>
#include <QTimer>

/// An application that lives as long as a test needs one: a `QCoreApplication` or a class over it.
template<class Kind>
class Running {
    int argc = 1;
    char name[5] = "test";
    char* argv[2] = {name, nullptr};
    Kind application{argc, argv};
};

/// Notes title and text of every message box that appears and closes it, as a user would.
class BoxReader {
public:
    BoxReader() {
        QObject::connect(&timer, &QTimer::timeout, [this] {
            QWidget* const widget = QApplication::activeModalWidget();
            if (widget == nullptr)
                return;
            if (const auto* box = qobject_cast<QMessageBox*>(widget))
                boxes += box->windowTitle() + ": " + box->text() +
                         (box->parentWidget() != nullptr ? " (with a parent)" : "");
            widget->close();
        });
        timer.start(1);
    }

    QStringList boxes;

private:
    QTimer timer;
};

/// Takes the debug lines that are written through Qt's message handler while it lives.
class DebugLog {
public:
    DebugLog() : outer(current), previous(qInstallMessageHandler(take)) { current = this; }
    DebugLog(const DebugLog&) = delete;
    DebugLog& operator=(const DebugLog&) = delete;
    ~DebugLog() {
        qInstallMessageHandler(previous);
        current = outer;
    }

    QStringList lines; ///< Category and text of each.

private:
    static void take(QtMsgType type, const QMessageLogContext& context, const QString& text) {
        const bool hasContext = context.file != nullptr || context.function != nullptr;
        if (type == QtDebugMsg)
            current->lines += context.category + (": " + text) +
                              (hasContext || context.line != 0 ? " (with its source)" : "");
    }

    static inline DebugLog* current = nullptr;
    DebugLog* outer;
    QtMessageHandler previous;
};
