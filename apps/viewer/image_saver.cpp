#include "apps/viewer/image_saver.h"

#include "apps/common/error.h"
#include "apps/common/settings.h"
#include "imageio/image_writer.h"
#include "imageio/output_conflicts.h"
#include "imageio/output_format.h"

namespace lumetra {

ImageSaver::ImageSaver() { connect(&worker_, &Worker::failed, this, &ImageSaver::errorOccurred); }

void ImageSaver::save(const QString& file, const QStringList& inputs,
                      const std::function<void()>& write) {
    worker_.run([this, file, inputs, write]() -> Worker::Outcome {
        checkOutput(file, inputs, Existing::replace);
        write();
        return [this, file] { emit statusMessage(tr("Saved %1").arg(file)); };
    });
}

void ImageSaver::saveImage(const QString& file, const Snapshot& snapshot) {
    save(file, snapshot.inputs, [file, snapshot] {
        static_cast<void>(outputFormat(file)); // refuses unknown ones before there is work
        Renderer renderer;
        cv::Mat image;
        renderForFile(renderer, snapshot.planes, snapshot.settings, image);
        writeImage(file, image, Existing::replace, snapshot.pixelSize);
    });
}

void ImageSaver::saveSettings(const QString& file, const QStringList& inputs,
                              const std::vector<Channel>& channels) {
    const QByteArray json = settingsJson({channels, std::nullopt});
    save(file, inputs, [file, json] { writeBytes(file, json, Existing::replace); });
}

} // namespace lumetra
