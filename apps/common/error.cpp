#include "apps/common/error.h"

#include <opencv2/core.hpp>

#include <new>

namespace lumetra {

QString escaped(const QString& text) {
    QString line;
    for (const QChar letter : text) {
        if (letter == QLatin1Char('\n'))
            line += QLatin1String("\\n");
        else if (letter.category() == QChar::Other_Control)
            line += QStringLiteral("\\x%1").arg(letter.unicode(), 2, 16, QLatin1Char('0'));
        else
            line += letter;
    }
    return line;
}

QString plural(std::size_t count, const QString& noun) {
    return QStringLiteral("%1 %2%3").arg(count).arg(noun,
                                                    count == 1 ? QString() : QStringLiteral("s"));
}

QString currentExceptionText() {
    QString noMemory = QStringLiteral("there is not enough memory");
    try {
        throw;
    } catch (const cv::Exception& error) {
        return error.code == cv::Error::StsNoMem ? noMemory
                                                 : QString::fromStdString(error.err).simplified();
    } catch (const std::bad_alloc&) {
        return noMemory;
    } catch (const std::exception& error) {
        return QString::fromUtf8(error.what());
    }
}

} // namespace lumetra
