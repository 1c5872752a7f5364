#include "platform/platform.h"

#include <QFile>
#include <QRegularExpression>

#include <cerrno>
#include <clocale>
#include <csignal>
#include <cstring>

#include <langinfo.h>
#include <sys/stat.h>
#include <unistd.h>
#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace lumetra {
namespace {

void useUtf8() {
    std::setlocale(LC_CTYPE, "");
    if (std::strcmp(nl_langinfo(CODESET), "UTF-8") != 0) {
        qputenv("LC_ALL", "C.UTF-8");
        std::setlocale(LC_CTYPE, "C.UTF-8");
    }
}

/// The C library would give memory of planes back and take it anew, cleared page by page, for every
/// image.
void keepMemory() {
#ifdef __GLIBC__
    mallopt(M_MMAP_THRESHOLD, 32 << 20);
    mallopt(M_TRIM_THRESHOLD, 256 << 20);
#endif
}

} // namespace

void prepareCommand() {
    keepMemory();
    useUtf8();
}

void prepareWindows() {}

std::vector<std::string> commandLine(int argc, char** argv) { return {argv, argv + argc}; }

void onStopRequest(void (*remember)(int signal)) {
    struct sigaction action = {};
    action.sa_handler = remember;
    action.sa_flags = static_cast<int>(SA_RESETHAND) | SA_RESTART;
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

bool isTerminal(std::FILE* stream) { return isatty(fileno(stream)) == 1; }

void writeBinary(std::FILE* /*stream*/) {}

std::filesystem::path toPath(const QString& file) { return QFile::encodeName(file).toStdString(); }

std::error_code replaceFile(const std::filesystem::path& from, const std::filesystem::path& to) {
    std::error_code error;
    std::filesystem::rename(from, to, error);
    return error;
}

std::optional<QString> nameOf(const std::filesystem::path& path) {
    const std::string bytes = path.filename().string();
    QString name = QString::fromStdString(bytes);
    if (name.toStdString() != bytes)
        return std::nullopt;
    return name;
}

std::optional<QString> identityOf(const QString& file) {
    struct stat status = {};
    if (stat(QFile::encodeName(file).constData(), &status) != 0)
        return std::nullopt;
    return QStringLiteral("%1:%2").arg(status.st_dev).arg(status.st_ino);
}

QString comparableName(const QString& file) { return file; }

QStringList fullDiskReasons() { return {qt_error_string(ENOSPC), qt_error_string(EDQUOT)}; }

QString quotedForShell(const QString& word) {
    static const QRegularExpression plain(QStringLiteral("^[A-Za-z0-9_@%+=:,./-]+$"));
    if (plain.match(word).hasMatch() && !word.endsWith(QLatin1Char('\n')))
        return word;
    QString inside = word;
    inside.replace(QLatin1Char('\''), QLatin1String("'\\''"));
    return QLatin1Char('\'') + inside + QLatin1Char('\'');
}

} // namespace lumetra
