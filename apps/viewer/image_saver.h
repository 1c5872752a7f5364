// Images and settings on their way to files.
#pragma once

#include "apps/viewer/display_settings.h"
#include "apps/viewer/worker.h"

#include <QStringList>

namespace lumetra {

/// What is to be saved: an image of it can be made later.
struct Snapshot {
    std::vector<cv::Mat> planes;     ///< One for each channel; nobody else may write to them.
    DisplaySettings settings;        ///< All channels have levels.
    QStringList inputs;              ///< Files that must not be replaced.
    std::optional<double> pixelSize; ///< In µm.
};

/// Renders and writes in another thread. A signal gives the outcome.
class ImageSaver : public QObject {
    Q_OBJECT
public:
    ImageSaver();

    void saveImage(const QString& file, const Snapshot& snapshot);

    /// @param inputs  Files that must not be replaced.
    void saveSettings(const QString& file, const QStringList& inputs,
                      const std::vector<Channel>& channels);

    bool isBusy() const { return worker_.isBusy(); }

signals:
    void statusMessage(const QString& text);
    void errorOccurred(const QString& reason);

private:
    void save(const QString& file, const QStringList& inputs, const std::function<void()>& write);

    Worker worker_;
};

} // namespace lumetra
