#include "apps/cli/fonts.h"

#include "apps/cli/render_spec.h"

namespace lumetra {

std::unique_ptr<QGuiApplication> fontsFor(const RenderSpec& rendering) {
    static int count = 1;
    static char name[] = "lumetra";
    static char* arguments[] = {name, nullptr};
    if (rendering.annotation.isEmpty() && !rendering.panels)
        return nullptr;
    drawWithoutDisplay();
    return std::make_unique<QGuiApplication>(count, arguments);
}

} // namespace lumetra
