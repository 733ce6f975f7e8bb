#pragma once

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace fs = std::filesystem;

using Environment = std::map<std::string, std::string>;

struct Run {
  std::chrono::steady_clock::time_point start;  ///< before the process was there
  double milliseconds = 0;
  long peakKilobytes = 0;
};

/// Runs the command with its output thrown away and with variables of its own ("" takes one away), and waits for it. A
/// command that fails ends the benchmark. What this process itself ever used is passed on to the command's peak: use
/// little.
Run run(const std::vector<std::string>& command, const Environment& environment = {});

double median(std::vector<double> values);

/// Random content.
void writeFile(const fs::path& path, std::size_t size, std::mt19937_64& random);

/// Bundles of 60 files and 14 MB each: one program of 8 MB and many resources.
void makeBundles(const fs::path& folder, int count);
/// Of 4 KB each.
void makeLooseFiles(const fs::path& folder, int count);

/// The installer with another payload, which is moved into it; an empty path for none. Yields the program.
fs::path makeInstaller(const fs::path& bundle, const fs::path& folder, const fs::path& payload);

/// A volume with one Photoshop, whose plug-ins go to "/Plug-Ins/Corvane".
void makeVolume(const fs::path& volume);
