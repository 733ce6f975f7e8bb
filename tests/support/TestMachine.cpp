#include "support/TestMachine.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <set>
#include <sstream>

TemporaryFolder::TemporaryFolder() : TemporaryFolder(fs::temp_directory_path()) {}

TemporaryFolder::TemporaryFolder(const fs::path& parent) {
  std::string pattern = (parent / "installer-test-XXXXXX").string();
  if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary folder in " + parent.string());
  path_ = fs::canonical(pattern);
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;  // what a test has made unremovable on purpose stays for the system to clean up
  fs::remove_all(path_, ignored);
}

void writeFile(const fs::path& path, std::string_view content) {
  fs::create_directories(path.parent_path());
  std::ofstream file(path, std::ios::binary);
  file << content;
  if (!file.flush()) throw std::runtime_error("cannot write " + path.string());
}

std::string readFile(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) return "(no such file)";
  std::ostringstream content;
  content << file.rdbuf();
  return content.str();
}

std::string modeOf(const fs::path& path) {
  struct stat status {};
  if (::lstat(path.c_str(), &status) != 0) return "(none)";
  std::ostringstream text;
  text << std::oct << (status.st_mode & 07777U);
  return text.str();
}

std::string namesIn(const fs::path& folder) {
  std::set<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder)) names.insert(entry.path().filename());
  std::string text;
  for (const std::string& name : names) text += (text.empty() ? "" : " ") + name;
  return text;
}

void makeBundle(const fs::path& path, const std::map<std::string, std::string>& info) {
  std::string list = "<plist version=\"1.0\"><dict>";
  for (const auto& [key, value] : info) list += "<key>" + key + "</key><string>" + value + "</string>";
  writeFile(path / "Contents/Info.plist", list + "</dict></plist>");
  writeFile(path / "Contents/Resources/content.txt", "content of " + path.filename().string());
}

TestMachine::TestMachine()
    : system_(volume_, bundle_, account_),
      platform{.files = files,
               .bundles = system_.platform().bundles,
               .folders = system_.platform().folders,
               .preferences = system_.platform().preferences,
               .authorizations = authorizations,
               .tasks = system_.platform().tasks,
               .runLoop = system_.platform().runLoop,
               .notifications = system_.platform().notifications,
               .launchServices = system_.platform().launchServices,
               .toolkit = toolkit,
               .processor = system_.platform().processor,
               .identifiers = system_.platform().identifiers,
               .log = log,
               .user = system_.platform().user,
               .clock = clock} {}

bool TestMachine::layOut() {
  fs::create_directories(onVolume("/Applications"));
  fs::create_directories(onVolume("/Library/Application Support"));
  fs::create_directories(onVolume(home_ + "/Library/Preferences"));
  fs::create_directories(onVolume(home_ + "/Library/Application Support/Adobe"));
  fs::create_directories(inBundle("Helpers"));
  for (const char* const name : {"cp", "xattr"}) {
    fs::create_symlink(fs::path(HELPERS_FOLDER) / name, inBundle("Helpers") / name);
  }
  writeFile(inBundle("Resources/en.lproj/installer.strings"),
            "company_name = Corvane; product_name = \"Dunmore 3\"; app_plist = \"com.corvane.dunmore3\";");
  writeFile(inBundle("Resources/en.lproj/Localizable.strings"),
            "installing_file = \"Installing \"; done = \"Done\"; auth_error = \"No rights\"; custom_path = "
            "\"Folder\";"
            "install_error_title = \"Title\"; install_error_format_string = \"<%1$@|%2$@>\";"
            "install_error_proceed = \"Go on\"; install_error_stop = \"Stop\"; copy_files_title = "
            "\"Installing %@\";"
            "select_host_instructions = \"%@ and %@\";");
  return true;
}

void TestMachine::addPhotoshop(const std::string& name) {
  const std::string folder = "/Applications/" + name;
  fs::create_directories(onVolume(folder + "/" + name + ".app"));
  fs::create_directories(onVolume(folder + "/Plug-Ins"));
  writeFile(onVolume(home_ + "/Library/Preferences/" + name + " Paths"), folder + '\0' + folder + "/Plug-Ins" + '\0');
}

void TestMachine::addLightroom() {
  fs::create_directories(onVolume(home_ + "/Library/Application Support/Adobe/Lightroom/External Editor Presets"));
}
