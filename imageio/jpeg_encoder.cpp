#include "imageio/jpeg_encoder.h"

#include "imageio/atomic_file.h"
#include "imageio/jpeg_guard.h"

#include <algorithm>

#include <jerror.h>

namespace lumetra {
namespace {

/// Where libjpeg's bytes go.
struct Destination : jpeg_destination_mgr {
    explicit Destination(QIODevice& to) : jpeg_destination_mgr(), device(to) {
        init_destination = [](j_compress_ptr codec) { of(codec).rewind(); };
        empty_output_buffer = [](j_compress_ptr codec) -> boolean {
            of(codec).write(codec, of(codec).buffer.size());
            return TRUE;
        };
        term_destination = [](j_compress_ptr codec) {
            of(codec).write(codec, of(codec).buffer.size() - of(codec).free_in_buffer);
        };
    }

    static Destination& of(j_compress_ptr codec) { return *static_cast<Destination*>(codec->dest); }
    void rewind() {
        next_output_byte = buffer.data();
        free_in_buffer = buffer.size();
    }
    void write(j_compress_ptr codec, std::size_t count) {
        if (!writeAll(device, reinterpret_cast<const char*>(buffer.data()),
                      static_cast<qint64>(count))) {
            codec->err->msg_code = JERR_FILE_WRITE;
            codec->err->error_exit(reinterpret_cast<j_common_ptr>(codec));
        }
        rewind();
    }

    QIODevice& device;
    std::array<JOCTET, 16384> buffer{};
};

class JpegEncoder {
public:
    explicit JpegEncoder(QIODevice& device) : destination_(device) {
        codec_.err = &errors_;
        guarded(errors_, failed, [this] { jpeg_create_compress(&codec_); });
        codec_.dest = &destination_;
    }
    ~JpegEncoder() { jpeg_destroy_compress(&codec_); }
    JpegEncoder(const JpegEncoder&) = delete;
    JpegEncoder& operator=(const JpegEncoder&) = delete;

    void write(const cv::Mat& image) {
        guarded(errors_, failed, [&] {
            constexpr int quality = 95;
            codec_.image_width = static_cast<JDIMENSION>(image.cols);
            codec_.image_height = static_cast<JDIMENSION>(image.rows);
            codec_.input_components = image.channels();
            codec_.in_color_space = image.channels() == 3 ? JCS_EXT_BGR : JCS_GRAYSCALE;
            jpeg_set_defaults(&codec_);
            jpeg_set_quality(&codec_, quality, TRUE);
            jpeg_start_compress(&codec_, TRUE);
            for (int y = 0; y < image.rows; ++y) {
                auto* row = const_cast<JSAMPLE*>(image.ptr(y)); // libjpeg only reads it
                jpeg_write_scanlines(&codec_, &row, 1);
            }
            jpeg_finish_compress(&codec_);
        });
    }

private:
    static constexpr auto failed = "cannot be written";

    JpegErrors errors_;
    Destination destination_;
    jpeg_compress_struct codec_{};
};

} // namespace

void encodeJpeg(const cv::Mat& image, QIODevice& device) {
    if (image.depth() != CV_8U)
        throw Reason("JPEG holds 8-bit images only");
    if (std::max(image.rows, image.cols) > JPEG_MAX_DIMENSION)
        throw Reason("JPEG holds " + std::to_string(JPEG_MAX_DIMENSION) +
                     " pixels in each direction at most");
    JpegEncoder(device).write(image);
}

} // namespace lumetra
