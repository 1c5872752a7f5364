#include "imageio/jpeg_reader.h"

#include "imageio/jpeg_guard.h"
#include "imageio/orientation.h"

#include <QByteArray>

#include <cstring>
#include <vector>

#include <jerror.h>

namespace lumetra {
namespace {

constexpr auto damaged = "is damaged or cut short";

/// In place of what is missing or broken the decoder would put gray.
void refuseDamage(j_common_ptr codec, int level) {
    const int code = codec->err->msg_code;
    if (level < 0 &&
        (code == JWRN_JPEG_EOF || code == JWRN_HIT_MARKER || code == JWRN_HUFF_BAD_CODE))
        codec->err->error_exit(codec);
}

/// A small file of very many scans, each of which goes over the whole image, would take hours.
void refuseManyScans(j_common_ptr codec) {
    constexpr int mostScans = 500;
    if (reinterpret_cast<j_decompress_ptr>(codec)->input_scan_number > mostScans) {
        codec->err->msg_code = JERR_BAD_PROGRESSION;
        codec->err->error_exit(codec);
    }
}

/// One pass of libjpeg through a file that is in memory.
class JpegDecoder {
public:
    explicit JpegDecoder(const QByteArray& bytes) {
        codec_.err = &errors_;
        errors_.emit_message = refuseDamage;
        progress_.progress_monitor = refuseManyScans;
        guarded(errors_, damaged, [&] {
            jpeg_create_decompress(&codec_);
            codec_.progress = &progress_;
            jpeg_mem_src(&codec_, reinterpret_cast<const unsigned char*>(bytes.constData()),
                         static_cast<unsigned long>(bytes.size()));
        });
    }
    ~JpegDecoder() { jpeg_destroy_decompress(&codec_); }
    JpegDecoder(const JpegDecoder&) = delete;
    JpegDecoder& operator=(const JpegDecoder&) = delete;

    void readHeader() {
        guarded(errors_, damaged, [this] {
            jpeg_save_markers(&codec_, JPEG_APP0 + 1, 0xFFFF);
            jpeg_read_header(&codec_, TRUE);
            orientation_ = markedOrientation(); // libjpeg forgets its markers at the end
        });
    }

    bool isCmyk() const { return codec_.num_components == 4; }
    int type() const { return codec_.num_components == 1 ? CV_8UC1 : CV_8UC3; }
    JDIMENSION width() const { return codec_.image_width; }
    JDIMENSION height() const { return codec_.image_height; }

    /// @param inks  Room for a row of CMYK.
    void readPixels(cv::Mat& image, std::vector<unsigned char>& inks) {
        guarded(errors_, damaged, [&] {
            codec_.out_color_space = isCmyk()               ? JCS_CMYK
                                     : image.channels() > 1 ? JCS_EXT_BGR
                                                            : JCS_GRAYSCALE;
            jpeg_start_decompress(&codec_);
            for (int y = 0; y < image.rows; ++y) {
                unsigned char* row = isCmyk() ? inks.data() : image.ptr(y);
                jpeg_read_scanlines(&codec_, &row, 1);
                if (isCmyk())
                    mixInks(row, image.ptr(y), image.cols);
            }
            jpeg_finish_decompress(&codec_);
        });
    }

    int orientation() const { return orientation_; }

private:
    int markedOrientation() const {
        constexpr char mark[] = "Exif\0"; // and the zero that ends it
        for (auto* marker = codec_.marker_list; marker; marker = marker->next)
            if (marker->data_length > sizeof mark &&
                std::memcmp(marker->data, mark, sizeof mark) == 0)
                return exifOrientation(marker->data + sizeof mark,
                                       marker->data_length - sizeof mark);
        return 1;
    }

    /// From inks as they are usually stored, 255 for none, to light.
    static void mixInks(const unsigned char* inks, unsigned char* bgr, int pixels) {
        for (int x = 0; x < pixels; ++x, inks += 4, bgr += 3) {
            const int key = inks[3];
            for (int c = 0; c < 3; ++c)
                bgr[2 - c] = static_cast<unsigned char>(key - ((255 - inks[c]) * key >> 8));
        }
    }

    JpegErrors errors_;
    jpeg_progress_mgr progress_{};
    jpeg_decompress_struct codec_{};
    int orientation_ = 1;
};

} // namespace

bool JpegReader::recognises(const QByteArray& start) { return start.startsWith("\xFF\xD8\xFF"); }

cv::Mat JpegReader::read(int /*index*/) {
    file().seek(0);
    const QByteArray bytes = file().readAll();
    JpegDecoder decoder(bytes);
    decoder.readHeader();
    cv::Mat image = newImage(decoder.width(), decoder.height(), decoder.type());
    std::vector<unsigned char> inks(decoder.isCmyk() ? std::size_t{decoder.width()} * 4 : 0);
    decoder.readPixels(image, inks);
    return oriented(image, decoder.orientation());
}

} // namespace lumetra
