// What a command line asks for: a structure of plain data for each command. Texts are as the user
// wrote them; an empty one was not given.
#pragma once

#include "apps/cli/page_selection.h"

#include <QString>
#include <QStringList>

#include <string>
#include <vector>

namespace lumetra {

/// Contrast limits and gamma: one value for all channels, or one for each in their order.
struct ContrastOptions {
    QStringList levels; ///< As `parseLevelPolicy` understands them.
    std::vector<double> gammas;
};

/// What is drawn onto images.
struct AnnotationOptions {
    bool legend = false;
    double scaleBar = 0;  ///< Length in micrometres; 0 for none.
    double pixelSize = 0; ///< Micrometres per pixel; given whenever there is a scale bar.
};

/// What becomes of rendered images, before anything is drawn onto them.
struct FramingOptions {
    QString crop;   ///< `X,Y,W,H`.
    QString resize; ///< `W`, `WxH` or `PERCENT%`.
};

/// What is written, and what is printed about it.
struct OutputOptions {
    QString file; ///< A name, for a whole data set a pattern; `-` is the standard output.
    bool overwrite = false;
    bool quiet = false;
    QString compression; ///< Of TIFF files: `none`, `lzw`, `deflate` or `zstd`.
};

/// Options of every command that renders images.
struct ImageOptions {
    OutputOptions output;
    ContrastOptions contrast;
    PageSelection pages;
    FramingOptions framing;
    AnnotationOptions annotation;
    int jobs = 1; ///< Threads for a large image.
};

/// Where channels have their colours and settings from.
struct ChannelOptions {
    QString settings;         ///< A settings file.
    QString customDyes;       ///< An INI file of custom dyes.
    std::vector<int> hidden;  ///< Numbers of channels, from 1.
    bool safePalette = false; ///< Colours that everybody can tell apart.
    QStringList blends;       ///< One for all channels, or one for each in their order.
};

/// Which files make up a data set, and how they are worked on.
struct DataSetOptions {
    QString pattern;
    QStringList channels; ///< `NAME=DYE+X+Y`.
    QString filesFrom;    ///< A list of files; `-` is the standard input.
    QString fields;       ///< A list of fields in the place of a pattern.
    QString progress;     ///< A file that programs read.
    int jobs = 1;
};

struct DyesOptions {
    QString text; ///< A substring of the names.
    QString customDyes;
    int emission = 0, excitation = 0; ///< Nanometres; 0 if not given.
    bool json = false;
};

struct InfoOptions {
    QStringList files;
    bool json = false;
};

struct DyeOptions {
    QString file; ///< `FILE[PAGE]=DYE`.
    ImageOptions image;
    ChannelOptions channel;
    bool dominant = false;
};

struct PseudoOptions {
    QString file;
    QString lut = QStringLiteral("viridis");
    bool reversed = false;
    ImageOptions image;
};

struct MergeOptions {
    QStringList files; ///< `FILE[PAGE]=DYE+X+Y`.
    ImageOptions image;
    ChannelOptions channel;
    QString log;
    std::string panels; ///< `gray` or `colour`; empty for the merged image alone.
};

struct LevelsOptions {
    DataSetOptions dataSet;
    ContrastOptions contrast;
    PageSelection pages;
    QString customDyes;
    OutputOptions output{QStringLiteral("-"), true, false, {}};
};

struct ListOptions {
    DataSetOptions dataSet;
    QString images; ///< A pattern for the outputs.
    ChannelOptions channel;
    PageSelection pages; ///< Only whether z-slices are projected.
    OutputOptions output;
};

struct BatchOptions {
    DataSetOptions dataSet;
    ImageOptions image;
    ChannelOptions channel;
    QString levelsOver = QStringLiteral("dataset"); ///< Or "field": what limits are measured over.
    QString shard;                                  ///< `K/N`.
    QString log;
    QString gallery;
    bool resume = false;
    bool dryRun = false;
};

struct GalleryOptions {
    QString folder;
    OutputOptions output;
    QStringList logs;
    QString settings;
    QString title;
    QString progress;
    int jobs = 1;
    bool list = false;
};

} // namespace lumetra
