// The gallery that a batch makes as it goes.
#pragma once

#include "apps/cli/data_set.h"
#include "apps/cli/options.h"
#include "apps/cli/thumbnails.h"

#include <QTemporaryFile>

namespace lumetra {

/// The thumbnails of images while these are in memory, and in the end their page. A shard leaves
/// the page to `lumetra gallery`, since it does not know the images of others.
class BatchGallery {
public:
    /// Makes folders.
    /// @param options  With a gallery, and a pattern of outputs or a list of fields.
    /// @throws Error if the page could not be written; FileExistsError.
    explicit BatchGallery(const BatchOptions& options);

    /// The log that the page is made from: that of the run, or one of its own.
    QString log() const { return log_; }

    /// Makes the thumbnail of an image that was just written. What goes wrong, `finish` tells.
    void add(const QString& image, const cv::Mat& thumbnail) const;

    /// Makes the thumbnails that are missing, and the page.
    /// @return The exit status.
    int finish(const FieldSet& fields) const;

private:
    const BatchOptions& options_;
    OutputOptions page_;
    QString folder_; ///< Of all images.
    Thumbnails thumbnails_;
    QTemporaryFile ownLog_;
    QString log_;
};

} // namespace lumetra
