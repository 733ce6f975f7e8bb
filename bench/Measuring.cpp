// SPDX-License-Identifier: Apache-2.0

#include "Measuring.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iostream>

Run run(const std::vector<std::string>& command, const Environment& environment) {
  std::vector<char*> arguments;
  for (const std::string& argument : command) arguments.push_back(const_cast<char*>(argument.c_str()));
  arguments.push_back(nullptr);
  const auto start = std::chrono::steady_clock::now();
  const pid_t child = ::fork();
  if (child == 0) {
    for (const auto& [name, value] : environment) {
      if (value.empty()) {
        ::unsetenv(name.c_str());
      } else {
        ::setenv(name.c_str(), value.c_str(), 1);
      }
    }
    const int nowhere = ::open("/dev/null", O_RDWR);
    ::dup2(nowhere, STDOUT_FILENO);
    ::dup2(nowhere, STDERR_FILENO);
    ::execvp(arguments[0], arguments.data());
    std::_Exit(127);
  }
  int status = 0;
  rusage usage{};
  ::wait4(child, &status, 0, &usage);
  const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
  if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
    std::cerr << "failed with " << status << ": " << command[0] << '\n';
    std::exit(1);
  }
  return {start, time.count(), usage.ru_maxrss};
}

double median(std::vector<double> values) {
  std::ranges::sort(values);
  return values[values.size() / 2];
}

void writeFile(const fs::path& path, std::size_t size, std::mt19937_64& random) {
  std::array<std::uint64_t, 4096> words{};
  std::ofstream file(path, std::ios::binary);
  while (size > 0) {
    for (auto& word : words) word = random();
    const std::size_t block = std::min(size, sizeof words);
    file.write(reinterpret_cast<const char*>(words.data()), static_cast<std::streamsize>(block));
    size -= block;
  }
}

void makeBundles(const fs::path& folder, int count) {
  std::mt19937_64 random(1);
  for (int bundle = 0; bundle < count; ++bundle) {
    const fs::path contents = folder / ("Filter " + std::to_string(bundle) + ".plugin") / "Contents";
    const std::vector<fs::path> places = {contents / "Resources", contents / "Resources/en.lproj",
                                          contents / "Resources/Presets"};
    fs::create_directories(contents / "MacOS");
    for (const fs::path& place : places) fs::create_directories(place);
    constexpr std::size_t program = std::size_t{8} << 20U;
    writeFile(contents / "MacOS/Filter", program, random);
    for (std::size_t i = 0; i < 59; ++i) {
      constexpr std::size_t average = (551'000'000 / 40 - program) / 59;
      const std::size_t size = average / 5 + random() % (average * 8 / 5);
      writeFile(places[i % places.size()] / ("resource " + std::to_string(i)), size, random);
    }
  }
}

void makeLooseFiles(const fs::path& folder, int count) {
  std::mt19937_64 random(2);
  fs::create_directories(folder);
  for (int i = 0; i < count; ++i) writeFile(folder / ("preset " + std::to_string(i)), 4096, random);
}

void makeSmallBundles(const fs::path& folder, int count, int files) {
  std::mt19937_64 random(3);
  for (int bundle = 0; bundle < count; ++bundle) {
    const fs::path contents = folder / ("Small " + std::to_string(bundle) + ".plugin") / "Contents";
    for (int i = 0; i < files; ++i) {
      const fs::path place = contents / "Resources" / std::to_string(i / 500);
      if (i % 500 == 0) fs::create_directories(place);
      writeFile(place / std::to_string(i), 1024 + random() % 2048, random);
    }
  }
}

fs::path makeInstaller(const fs::path& bundle, const fs::path& folder, const fs::path& payload) {
  fs::copy(bundle, folder, fs::copy_options::recursive | fs::copy_options::copy_symlinks);
  const fs::path files = folder / "Contents/Resources/files";
  fs::remove_all(files);
  fs::create_directories(files / "HD");
  if (!payload.empty()) {
    fs::create_directories(files / "PHOTOSHOP_PLUGINS");
    fs::rename(payload, files / "PHOTOSHOP_PLUGINS/Corvane");
  }
  return folder / "Contents/MacOS/Installer";
}

void makeVolume(const fs::path& volume, const std::string& user) {
  fs::create_directories(volume / "Applications/Adobe Photoshop CS6/Adobe Photoshop CS6.app");
  fs::create_directories(volume / "Library/Application Support");
  fs::create_directories((volume / installedItems).parent_path());
  const fs::path preferences = volume / "Users" / user / "Library/Preferences";
  fs::create_directories(preferences);
  constexpr char paths[] = "/Applications/Adobe Photoshop CS6\0/Applications/Adobe Photoshop CS6/Plug-Ins";
  std::ofstream(preferences / "Adobe Photoshop CS6 Paths", std::ios::binary).write(paths, sizeof paths);
}
