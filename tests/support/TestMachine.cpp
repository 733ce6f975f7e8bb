// SPDX-License-Identifier: Apache-2.0

#include "support/TestMachine.h"

#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <set>
#include <sstream>
#include <stdexcept>

TemporaryFolder::TemporaryFolder() {
  std::string pattern = fs::temp_directory_path() / "installer-test-XXXXXX";
  if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary folder");
  path_ = fs::canonical(pattern);
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;  // what a test has made unremovable on purpose stays for the system to clean up
  fs::remove_all(path_, ignored);
}

bool isIsolated() { return std::getenv("INSTALLER_ISOLATED") != nullptr; }

void writeFile(const fs::path& path, std::string_view content) {
  fs::create_directories(path.parent_path());
  std::ofstream file(path, std::ios::binary);
  file << content;
  if (!file.flush()) throw std::runtime_error("cannot write " + path.string());
}

std::string readFile(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) return "(no such file)";
  return {std::istreambuf_iterator(file), {}};
}

void setOwner(const fs::path& path, unsigned owner, unsigned group) {
  if (::lchown(path.c_str(), owner, group) != 0) throw std::runtime_error("cannot give away " + path.string());
}

std::string modeOf(const fs::path& path) {
  std::ostringstream text;
  text << std::oct << static_cast<unsigned>(fs::symlink_status(path).permissions());
  return text.str();
}

std::string namesIn(const fs::path& folder) {
  std::set<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder)) names.insert(entry.path().filename());
  std::string text;
  for (const std::string& name : names) text += (text.empty() ? "" : " ") + name;
  return text;
}

std::string bytesOf(std::initializer_list<std::uint32_t> numbers, bool isBigEndian) {
  std::string bytes;
  for (const std::uint32_t number : numbers) {
    for (unsigned i = 0; i < 4; ++i) bytes += static_cast<char>(number >> (8 * (isBigEndian ? 3 - i : i)));
  }
  return bytes;
}

std::string propertyListOf(const Texts& texts) {
  std::string list = "<plist version=\"1.0\"><dict>";
  for (const auto& [key, value] : texts) list += "<key>" + key + "</key><string>" + value + "</string>";
  return list + "</dict></plist>";
}

void makeBundle(const fs::path& path, const Texts& info) {
  writeFile(path / "Contents/Info.plist", propertyListOf(info));
}

void configure(const fs::path& bundle, const std::string& key, const std::string& value) {
  const fs::path table = bundle / "Contents/Resources/en.lproj/installer.strings";
  std::string text = readFile(table);
  const std::size_t line = text.find("\"" + key + "\" = \"");
  if (line == std::string::npos) throw std::logic_error(key + " is not in " + table.string());
  text.replace(line, text.find(";\n", line) - line, "\"" + key + "\" = \"" + value + "\"");
  writeFile(table, text);
}

bool TestMachine::layOut() {
  for (const fs::path& folder :
       {onVolume("/Applications"), onVolume("/Library/Application Support"), inLibrary("Preferences"),
        inLibrary("Application Support/Adobe"), inBundle("Helpers")}) {
    fs::create_directories(folder);
  }
  TestPlatform::addHelpers(inBundle("Helpers"));
  writeFile(inBundle("Resources/en.lproj/installer.strings"),
            "company_name = Corvane; product_name = \"Dunmore 3\"; app_plist = \"com.corvane.dunmore3\";");
  writeFile(inBundle("Resources/en.lproj/Localizable.strings"), R"(
      installing_file = "Installing "; done = "Done"; auth_error = "No rights"; custom_path = "Folder";
      install_error_title = "Title"; install_error_format_string = "<%1$@|%2$@>"; install_error_proceed = "Go on";
      host_running_title = "Quit it"; thank_you = "Thanks"; install_error_stop = "Stop"; copy_files_title = "Installing %@"; select_host_instructions = "%@ and %@";
      browse_path_title = Title; browse_path_msg = Message; browse_path_prompt = Prompt;
      browse_problem_missing = Missing; browse_problem_file = File; browse_problem_package = Package;)");
  return true;
}

void TestMachine::addPhotoshop(const std::string& name) {
  const std::string folder = "/Applications/" + name;
  fs::create_directories(onVolume(folder + "/" + name + ".app"));
  fs::create_directories(onVolume(folder + "/Plug-Ins"));
  writeFile(inLibrary("Preferences/" + name + " Paths"), folder + '\0' + folder + "/Plug-Ins" + '\0');
}
