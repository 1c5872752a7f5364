#include "platform/platform.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <memory>
#include <thread>

#include <fcntl.h>
#include <io.h>

#ifndef NOMINMAX
#define NOMINMAX
#endif
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
// After the header that it needs.
#include <shellapi.h>

namespace lumetra {
namespace {

UINT codePageBefore = 0;

/// Lets the console take UTF-8 and escape sequences as long as the program runs.
void prepareConsole() {
    codePageBefore = GetConsoleOutputCP();
    if (codePageBefore == 0) // none is there
        return;
    SetConsoleOutputCP(CP_UTF8);
    std::atexit([] { SetConsoleOutputCP(codePageBefore); });
    const HANDLE console = GetStdHandle(STD_ERROR_HANDLE);
    DWORD mode = 0;
    if (GetConsoleMode(console, &mode) != 0)
        SetConsoleMode(console, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
}

/// The files that a word with wildcards stands for; the word itself if it has none, or there are no
/// such files. Braces are of patterns, which find their files themselves.
QStringList expanded(const QString& word) {
    static const QRegularExpression wildcard(QStringLiteral("[*?]"));
    const QFileInfo name(QDir::fromNativeSeparators(word));
    if (!name.fileName().contains(wildcard) || word.contains(QLatin1Char('{')))
        return {word};
    QStringList files;
    for (const QString& file : name.dir().entryList({name.fileName()}, QDir::Files, QDir::Name))
        files << (name.filePath() == name.fileName() ? file : name.dir().filePath(file));
    return files.isEmpty() ? QStringList{word} : files;
}

void (*rememberStop)(int) = nullptr;

/// Runs in a thread of its own. The console, the session or the machine goes away when it returns,
/// and the system waits a few seconds for it.
BOOL WINAPI handleConsoleEvent(DWORD event) {
    const auto remember = std::exchange(rememberStop, nullptr);
    if (remember == nullptr)
        return FALSE; // which ends the program
    const bool isKey = event == CTRL_C_EVENT || event == CTRL_BREAK_EVENT;
    remember(isKey ? SIGINT : SIGTERM);
    if (!isKey)
        Sleep(INFINITE);
    return TRUE;
}

} // namespace

void prepareCommand() {
    prepareConsole();
    writeBinary(stdout);
    writeBinary(stderr);
}

void prepareWindows() {
    if (AttachConsole(ATTACH_PARENT_PROCESS) == 0)
        return;
    prepareConsole();
    for (const auto& [handle, stream] :
         {std::pair(STD_OUTPUT_HANDLE, stdout), std::pair(STD_ERROR_HANDLE, stderr)})
        if (GetFileType(GetStdHandle(handle)) == FILE_TYPE_CHAR)
            static_cast<void>(std::freopen("CONOUT$", "w", stream));
}

std::vector<std::string> commandLine(int argc, char** argv) {
    int count = 0;
    const std::unique_ptr<wchar_t*, decltype(&LocalFree)> words(
        CommandLineToArgvW(GetCommandLineW(), &count), LocalFree);
    if (!words)
        return {argv, argv + argc};
    std::vector<std::string> result;
    for (int i = 0; i < count; ++i) {
        const QString word = QString::fromWCharArray(words.get()[i]);
        for (const QString& each : i == 0 ? QStringList{word} : expanded(word))
            result.push_back(each.toStdString());
    }
    return result;
}

void onStopRequest(void (*remember)(int signal)) {
    rememberStop = remember;
    SetConsoleCtrlHandler(handleConsoleEvent, TRUE);
}

bool isTerminal(std::FILE* stream) {
    DWORD mode = 0; // of a console alone: any device would pass for a terminal with `_isatty`
    return GetConsoleMode(reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream))), &mode) != 0;
}

void writeBinary(std::FILE* stream) { _setmode(_fileno(stream), _O_BINARY); }

std::filesystem::path toPath(const QString& file) {
    constexpr int longest = MAX_PATH - 12;
    const QString path = QFileInfo(file).absoluteFilePath();
    if (path.size() < longest || path.startsWith(QLatin1String("//")))
        return file.toStdWString();
    return (QStringLiteral("\\\\?\\") + QDir::toNativeSeparators(path)).toStdWString();
}

std::error_code replaceFile(const std::filesystem::path& from, const std::filesystem::path& to) {
    constexpr std::chrono::milliseconds patience(2000), period(5);
    const auto end = std::chrono::steady_clock::now() + patience;
    for (std::error_code error;; std::this_thread::sleep_for(period)) {
        std::filesystem::rename(from, to, error);
        // Another program that replaces it, or a virus scanner, has it open for a moment.
        if (error != std::errc::permission_denied || std::chrono::steady_clock::now() > end)
            return error;
    }
}

std::optional<QString> nameOf(const std::filesystem::path& path) {
    QString name = QString::fromStdWString(path.filename().wstring());
    if (QString::fromUtf8(name.toUtf8()) != name) // half a character
        return std::nullopt;
    return name;
}

std::optional<QString> identityOf(const QString& file) {
    const HANDLE handle =
        CreateFileW(toPath(file).c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr); // folders, too
    if (handle == INVALID_HANDLE_VALUE)
        return std::nullopt;
    BY_HANDLE_FILE_INFORMATION about = {};
    const bool isKnown = GetFileInformationByHandle(handle, &about) != 0;
    CloseHandle(handle);
    if (!isKnown)
        return std::nullopt;
    return QStringLiteral("%1:%2:%3")
        .arg(about.dwVolumeSerialNumber)
        .arg(about.nFileIndexHigh)
        .arg(about.nFileIndexLow);
}

QString comparableName(const QString& file) { return file.toCaseFolded(); }

QStringList fullDiskReasons() {
    constexpr int diskQuotaExceeded = 1295; // for which not every header has a name
    return {qt_error_string(ERROR_DISK_FULL), qt_error_string(ERROR_HANDLE_DISK_FULL),
            qt_error_string(diskQuotaExceeded)};
}

QString quotedForShell(const QString& word) {
    static const QRegularExpression plain(QStringLiteral("\\A[A-Za-z0-9_+=:./\\\\-]+\\z")),
        backslashes(QStringLiteral("(\\\\*)(\"|\\z)"));
    if (plain.match(word).hasMatch())
        return word;
    // A program reads backslashes before a quotation mark as half as many.
    QString inside = word;
    inside.replace(backslashes, QStringLiteral("\\1\\1\\2"));
    inside.replace(QLatin1Char('"'), QLatin1String("\\\""));
    return QLatin1Char('"') + inside + QLatin1Char('"');
}

} // namespace lumetra
