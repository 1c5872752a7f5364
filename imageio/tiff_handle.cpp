#include "imageio/tiff_handle.h"

#include "imageio/atomic_file.h"

#include <algorithm>
#include <cstdio>
#include <limits>

namespace lumetra {
namespace {

QFile& fileOf(thandle_t handle) { return *static_cast<QFile*>(handle); }

tmsize_t readFile(thandle_t handle, void* bytes, tmsize_t count) {
    return static_cast<tmsize_t>(fileOf(handle).read(static_cast<char*>(bytes), count));
}

tmsize_t writeFile(thandle_t handle, void* bytes, tmsize_t count) {
    return writeAll(fileOf(handle), static_cast<const char*>(bytes), count) ? count : -1;
}

toff_t seekFile(thandle_t handle, toff_t offset, int from) {
    QFile& file = fileOf(handle);
    auto position = static_cast<qint64>(offset);
    if (from == SEEK_CUR)
        position += file.pos();
    else if (from == SEEK_END)
        position += file.size();
    return position >= 0 && file.seek(position) ? static_cast<toff_t>(position)
                                                : static_cast<toff_t>(-1);
}

int leaveOpen(thandle_t /*handle*/) { return 0; }

toff_t sizeOfFile(thandle_t handle) { return static_cast<toff_t>(fileOf(handle).size()); }

constexpr const char* handleName = "image"; // for messages, which nobody sees

} // namespace

#if TIFFLIB_VERSION >= 20221213 // 4.5, the first that can be told to keep quiet handle by handle

TiffHandle openTiff(QFile& file, const char* mode, std::uint64_t mostMemory) {
    struct Free {
        void operator()(TIFFOpenOptions* options) const { TIFFOpenOptionsFree(options); }
    };
    const std::unique_ptr<TIFFOpenOptions, Free> options(TIFFOpenOptionsAlloc());
    if (!options)
        return nullptr;
    const auto keepQuiet = [](TIFF*, void*, const char*, const char*, va_list) { return 1; };
    TIFFOpenOptionsSetErrorHandlerExtR(options.get(), keepQuiet, nullptr);
    TIFFOpenOptionsSetWarningHandlerExtR(options.get(), keepQuiet, nullptr);
    constexpr std::uint64_t largest = std::numeric_limits<tmsize_t>::max();
    TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(),
                                        static_cast<tmsize_t>(std::min(mostMemory, largest)));
    return TiffHandle(TIFFClientOpenExt(handleName, mode, &file, readFile, writeFile, seekFile,
                                        leaveOpen, sizeOfFile, nullptr, nullptr, options.get()));
}

#else

TiffHandle openTiff(QFile& file, const char* mode, std::uint64_t /*mostMemory*/) {
    TIFFSetErrorHandler(nullptr);
    TIFFSetWarningHandler(nullptr);
    return TiffHandle(TIFFClientOpen(handleName, mode, &file, readFile, writeFile, seekFile,
                                     leaveOpen, sizeOfFile, nullptr, nullptr));
}

#endif

} // namespace lumetra
