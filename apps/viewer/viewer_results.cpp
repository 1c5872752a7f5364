// What becomes of pictures and settings.

#include "apps/common/failure.h"
#include "apps/common/settings.h"
#include "apps/common/writing.h"
#include "apps/viewer/viewer.h"

namespace apps {

/// Tells why not, if a file must not be replaced.
bool Viewer::mayReplace(const QString& file) {
    QStringList inputs;
    if (stack_)
        for (const ChannelFile& input : stack_->files())
            inputs << input.file;
    try {
        checkOutput(file, inputs, true);
        return true;
    } catch (const Failure& failure) {
        emit problem(failure.text());
        return false;
    }
}

void Viewer::saveSettings(const QString& file) {
    if (!mayReplace(file))
        return;
    const QByteArray json = settingsJson({model_.channels(), std::nullopt});
    inBackground([this, file, json]() -> std::function<void()> {
        writeBytes(file, json.constData(), static_cast<std::size_t>(json.size()));
        return [this, file] { emit said(QStringLiteral("Saved %1").arg(apps::shown(file))); };
    });
}

void Viewer::save(const QString& file) {
    try {
        static_cast<void>(formatOf(file));
    } catch (const Failure& failure) {
        emit problem(failure.text());
        return;
    }
    if (!mayReplace(file))
        return;
    inBackground([this, file, view = view(), planes = loop_.planes()]() -> std::function<void()> {
        Renderer renderer;
        cv::Mat picture;
        makePicture(renderer, planes, view, picture);
        writePicture(file, picture);
        return [this, file] { emit said(QStringLiteral("Saved %1").arg(apps::shown(file))); };
    });
}

QImage Viewer::picture() const {
    const cv::Mat& screen = shown_.screen;
    if (screen.empty())
        return {};
    return QImage(screen.data, screen.cols, screen.rows, static_cast<int>(screen.step),
                  QImage::Format_RGB32)
        .copy();
}

QString Viewer::command() const {
    if (!stack_)
        throw Failure(hasSource() ? QStringLiteral("a command needs files, and the camera's frames "
                                                   "are in none")
                                  : QStringLiteral("there are no channels"));
    return commandFor(stack_->filesAt(std::max(shown_.page, 1)), view(),
                      options_.table.value_or(TableChoice{}), QStringLiteral("picture.png"));
}

} // namespace apps
