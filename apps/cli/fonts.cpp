#include "apps/cli/fonts.h"

#include "apps/common/annotation.h"

namespace lumetra {

std::unique_ptr<QGuiApplication> fontsFor(const Annotation& annotation) {
    static int count = 1;
    static char name[] = "lumetra";
    static char* arguments[] = {name, nullptr};
    if (annotation.isEmpty())
        return nullptr;
    drawWithoutDisplay();
    return std::make_unique<QGuiApplication>(count, arguments);
}

} // namespace lumetra
