#include "apps/cli/print.h"

#include "apps/cli/channel_levels.h"
#include "apps/cli/options.h"
#include "apps/common/annotation.h"
#include "apps/common/error.h"
#include "apps/common/messages.h"
#include "imageio/atomic_file.h"
#include "imageio/file_error.h"
#include "imageio/output_format.h"

namespace lumetra {

void checkImageOutput(const QString& output, const QString& compression) {
    if (outputFormat(output) != OutputFormat::tiff && !compression.isEmpty())
        throw UsageError(QStringLiteral("--compression is for TIFF files (.tif or .tiff), and the "
                                        "output is ") +
                         output);
    if (isStandardOutput(output) && writesToTerminal())
        throw UsageError(QStringLiteral("-o - would write PNG onto the terminal: redirect it to a "
                                        "file or a pipe, or name a file"));
}

void print(const QString& text) { print(text.toUtf8()); }

void print(const QByteArray& text) { writeBytes(QStringLiteral("-"), text, Existing::keep); }

QString currentErrorText() {
    try {
        throw;
    } catch (const FileExistsError&) {
        return currentExceptionText() + QStringLiteral("; --overwrite replaces it");
    } catch (...) {
        return currentExceptionText();
    }
}

void reportLevels(const OutputOptions& output, const std::vector<Channel>& channels) {
    QStringList texts;
    for (std::size_t i = 0; i < channels.size(); ++i)
        if (const QString limits = levelsText(channels[i]); !limits.isEmpty())
            texts << QStringLiteral("%1 %2 %3")
                         .arg(QString::number(i + 1), channelLabel(channels[i]), limits);
    if (!output.quiet && !texts.isEmpty())
        printError(QStringLiteral("levels: ") + texts.join(QStringLiteral(", ")));
}

void reportImage(const OutputOptions& output, const QString& size) {
    if (!output.quiet && output.file != QLatin1String("-"))
        printError(QStringLiteral("%1: %2").arg(output.file, size));
}

} // namespace lumetra
