#include "apps/lumetra/commands.h"

#include "apps/common/annotation.h"
#include "apps/common/writing.h"

namespace apps {

std::unique_ptr<QGuiApplication> fontsFor(bool hasText) {
    static int count = 1;
    static char name[] = "lumetra";
    static char* arguments[] = {name, nullptr};
    if (!hasText)
        return nullptr;
    drawWithoutDisplay();
    return std::make_unique<QGuiApplication>(count, arguments);
}

void print(const QString& text) {
    const QByteArray bytes = text.toUtf8();
    writeBytes(QStringLiteral("-"), bytes.constData(), static_cast<std::size_t>(bytes.size()));
}

} // namespace apps
