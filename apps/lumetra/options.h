// The words of the command line that several commands take.
#pragma once

#include "apps/common/annotation.h"
#include "apps/common/channel.h"
#include "apps/common/level_policy.h"
#include "apps/common/settings.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace apps {

/// Which pages of files of many are meant.
struct Pages {
    int number = 0; ///< Counted from 1; 0 where none was named, which asks for a file of one page.
    bool all = false; ///< One picture of each.
};

/// What a picture is to be, as the user wrote it.
class PictureOptions {
public:
    void addLevels(CLI::App& command);
    void addPages(CLI::App& command);
    void addSettings(CLI::App& command);
    void addHidden(CLI::App& command);
    void addLegend(CLI::App& command);
    void addScaleBar(CLI::App& command);
    void addCustomDyes(CLI::App& command);
    void addWriting(CLI::App& command);

    /// The dyes, the user's own included.
    DyeList dyes() const;

    Pages pages() const;
    Annotation annotation() const;
    std::optional<Settings> settings(const DyeList& dyes) const;

    /// How the levels of each channel are found: the user's word for all or for each, otherwise the
    /// channel's own levels, otherwise `clip:0.1`. Also sets gamma and visibility.
    /// @param fromSettings  Whether the channels have their own.
    std::vector<LevelPolicy> applyTo(std::vector<Channel>& channels, bool fromSettings) const;

    /// The options, but for levels, gamma, hidden channels and output, as they can be written
    /// again.
    QStringList words() const;

    QString outputFile() const;

    /// The files that are read besides pictures; empty names among them.
    QStringList filesRead() const;
    bool overwrites() const { return overwrite_; }
    bool isQuiet() const { return quiet_; }
    bool hasSettings() const { return !settings_.empty(); }
    bool hasLevels() const { return !levels_.empty(); }

private:
    std::vector<std::string> levels_;
    std::vector<double> gammas_;
    std::vector<int> hidden_;
    std::string settings_, custom_, output_;
    int page_ = 0;
    double scaleBar_ = 0, pixelSize_ = 0;
    bool allPages_ = false, legend_ = false, overwrite_ = false, quiet_ = false;
};

/// An argument as Qt has it.
inline QString text(const std::string& argument) { return QString::fromUtf8(argument.c_str()); }
QStringList texts(const std::vector<std::string>& arguments);

} // namespace apps
