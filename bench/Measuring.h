// SPDX-License-Identifier: Apache-2.0

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

/// So many bundles of so many files of 1 to 3 KB each.
void makeSmallBundles(const fs::path& folder, int count, int files);

/// Where the payload goes on the volume that makeVolume() makes.
inline constexpr const char* installedItems = "Applications/Adobe Photoshop CS6/Plug-Ins/Corvane";
/// A volume with one Photoshop, which the user's preferences tell of.
void makeVolume(const fs::path& volume, const std::string& user = "root");
