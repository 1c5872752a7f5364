#include "apps/common/failure.h"

#include <opencv2/core.hpp>

#include <new>

namespace apps {

QString shown(const QString& words) {
    QString line;
    for (const QChar letter : words) {
        if (letter == QLatin1Char('\n'))
            line += QLatin1String("\\n");
        else if (letter.category() == QChar::Other_Control)
            line += QStringLiteral("\\x%1").arg(letter.unicode(), 2, 16, QLatin1Char('0'));
        else
            line += letter;
    }
    return line;
}

QString counted(std::size_t count, const QString& noun) {
    return QStringLiteral("%1 %2%3").arg(count).arg(noun,
                                                    count == 1 ? QString() : QStringLiteral("s"));
}

QString currentReason() {
    try {
        throw;
    } catch (const Failure& failure) {
        return failure.text();
    } catch (const cv::Exception& error) {
        return error.code == cv::Error::StsNoMem
                   ? QStringLiteral("there is not enough memory")
                   : shown(QString::fromStdString(error.err)).simplified();
    } catch (const std::bad_alloc&) {
        return QStringLiteral("there is not enough memory");
    } catch (const std::exception& error) {
        return shown(QString::fromUtf8(error.what())).simplified();
    }
}

} // namespace apps
