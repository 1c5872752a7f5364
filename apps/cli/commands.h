// The commands, each in a file of its own.
#pragma once

namespace lumetra {

struct BatchOptions;
struct DyeOptions;
struct DyesOptions;
struct GalleryOptions;
struct InfoOptions;
struct LevelsOptions;
struct ListOptions;
struct MergeOptions;
struct PseudoOptions;

/// What the program can end with.
enum ExitStatus { done = 0, failed = 1, badUsage = 2, nothingMatched = 3 };

/// Each does a command's work and returns its exit status.
/// @throws Error, UsageError, Interrupted.
int runDyes(const DyesOptions& options);
int runInfo(const InfoOptions& options);
int runDye(const DyeOptions& options);
int runPseudo(const PseudoOptions& options);
int runMerge(const MergeOptions& options);
int runLevels(const LevelsOptions& options);
int runList(const ListOptions& options);
int runBatch(const BatchOptions& options);
int runGallery(const GalleryOptions& options);

} // namespace lumetra
