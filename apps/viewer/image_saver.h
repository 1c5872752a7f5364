// Images and settings on their way to files.
#pragma once

#include "apps/viewer/display_settings.h"
#include "apps/viewer/worker.h"

#include <QStringList>

namespace lumetra {

/// Renders and writes in another thread. A signal gives the outcome.
class ImageSaver : public QObject {
    Q_OBJECT
public:
    ImageSaver();

    /// @param inputs    Files that must not be replaced.
    /// @param planes    Read in the other thread, so nobody else may write to them.
    /// @param settings  All channels have levels.
    void saveImage(const QString& file, const QStringList& inputs,
                   const std::vector<cv::Mat>& planes, const DisplaySettings& settings);
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
