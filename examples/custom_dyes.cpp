// Saves a custom dye to a file and loads it again.

#include <lumetra>

#include "program.h"

namespace {

constexpr auto usage = R"(usage: custom_dyes FILE

Writes a custom dye, Heliotrope, to FILE, as 'lumetra dye --custom FILE' reads it.
)";

void keepDyes(const QString& file) {
    //! [custom dyes]
    QMap<QString, QColor> ours{{"Heliotrope", QColor(196, 116, 255)}}, loaded;
    Lumetra::SaveCustomDyeType(ours, file);
    Lumetra::LoadCustomDyeType(loaded, file);
    //! [custom dyes]
    if (loaded != ours)
        throw Error("cannot store custom dyes in " + file.toStdString());
}

} // namespace

int main(int argc, char** argv) {
    return runProgram(usage, [&] {
        if (argc != 2)
            throw UsageError{};
        keepDyes(argv[1]);
    });
}
