#include <algorithm>
#include <chrono>
#include <utility>

#include "foundation/Format.h"
#include "foundation/Path.h"
#include "foundation/Text.h"
#include "hosts/LightRoomHostModel.h"
#include "hosts/PhotoshopHostModel.h"
#include "hosts/UnknownHostModel.h"
#include "install/BundleVersion.h"
#include "install/InstallFilesController.h"
#include "payload/InstallerTexts.h"

namespace {

constexpr std::uint32_t installedMode = 0775;

bool holdsLightRoom(const HostList& hosts) {
  return std::ranges::any_of(hosts, [](const std::shared_ptr<HostModel>& host) {
    return dynamic_cast<const LightRoomHostModel*>(host.get()) != nullptr;
  });
}

bool isLightRoomPlugIn(const std::string& path) { return pathExtension(path) == "lrplugin"; }

}  // namespace

// What goes where.

std::string InstallFilesController::hostIndependentPayload() const {
  return joinPath({platform_.bundles.mainBundle().resourcePath(), "files", "HD"});
}

std::vector<PlannedCopy> InstallFilesController::hostIndependentPackages() const {
  const std::string root = hostIndependentPayload();
  const bool isLightRoomSelected = mainController_ != nullptr && holdsLightRoom(mainController_->selectedHosts());
  std::vector<PlannedCopy> packages;
  platform_.files.walk(root, [&](const WalkedItem& item) {
    if (!item.isPackage || (isLightRoomPlugIn(item.path) && !isLightRoomSelected)) return;
    packages.push_back({item.path, replacingOccurrences(item.path, root, "")});
  });
  return packages;
}

std::vector<InstallFilesController::ProductFolder> InstallFilesController::productFolders() const {
  const std::string root = hostIndependentPayload();
  const std::string company = companyName(platform_);
  std::vector<ProductFolder> folders;
  // Without the name, every maker's folder would be taken for a product of ours and its content be replaced.
  if (company.empty()) return folders;
  for (const WalkedItem& product :
       platform_.files.visibleEntries(joinPath({root, "Library", "Application Support", company}))) {
    if (product.isPackage || product.type != ItemType::folder) continue;
    ProductFolder folder{.sources = {}, .target = replacingOccurrences(product.path, root, "")};
    for (WalkedItem& item : platform_.files.visibleEntries(product.path)) {
      if (!item.isPackage) folder.sources.push_back(std::move(item.path));
    }
    if (!folder.sources.empty()) folders.push_back(std::move(folder));
  }
  return folders;
}

std::vector<PlannedCopy> InstallFilesController::payloadOf(const HostModel& host) const {
  const std::string payload = joinPath(platform_.bundles.mainBundle().resourcePath(), "files");
  if (const auto* photoshop = dynamic_cast<const PhotoshopHostModel*>(&host)) {
    return {{joinPath(payload, "PHOTOSHOP"), photoshop->appPath()},
            {joinPath(payload, "PHOTOSHOP_PLUGINS"), photoshop->plugInPath()}};
  }
  if (dynamic_cast<const LightRoomHostModel*>(&host) != nullptr) {
    return {
        {joinPath(payload, "LIGHTROOM"), joinPath({platform_.folders.userApplicationSupport(), "Adobe", "Lightroom"})}};
  }
  if (const auto* folder = dynamic_cast<const UnknownHostModel*>(&host)) {
    const bool isWanted = folder->shouldInstallPlugIns() && !folder->plugInPath().empty();
    if (isWanted) return {{joinPath(payload, "PHOTOSHOP_PLUGINS"), folder->plugInPath()}};
  }
  return {};
}

InstallFilesController::HostFiles InstallFilesController::hostFilesFrom(const std::string& from,
                                                                        const std::string& to) const {
  HostFiles files;
  platform_.files.walk(from, [&](const WalkedItem& item) {
    // Plain folders come into being with what is in them.
    if (!item.isPackage && item.type != ItemType::regularFile) return;
    files.copies.push_back({item.path, joinPath({replacingOccurrences(item.path, from, to)})});
    files.arePackages.push_back(item.isPackage);
  });
  return files;
}

// The passes over it.

void InstallFilesController::installFiles() {
  installHostIndependentPackages();
  installProductFolders();
}

void InstallFilesController::installHostIndependentPackages() {
  const std::vector<PlannedCopy> packages = hostIndependentPackages();
  const auto plan = platform_.files.planCopies(packages);
  for (const auto& [package, target] : packages) {
    installSourceFiles({package}, deletingLastPathComponent(target), /*isBundle=*/true, /*alwaysInstall=*/true);
    if (!isLightRoomPlugIn(package)) registerInstalledApplication(target);
  }
}

void InstallFilesController::installProductFolders() {
  if (companyName(platform_).empty()) {
    platform_.log.write("The strings table has no company_name: product folders are not installed");
  }
  for (const ProductFolder& folder : productFolders()) {
    installSourceFiles(folder.sources, folder.target, /*isBundle=*/false, /*alwaysInstall=*/true);
  }
}

void InstallFilesController::installFiles(const HostModel& host) {
  for (const auto& [from, to] : payloadOf(host)) {
    if (!authDenied_) copyHostFilesFrom(from, to);
  }
}

void InstallFilesController::copyHostFilesFrom(const std::string& from, const std::string& to) {
  const HostFiles files = hostFilesFrom(from, to);
  const auto plan = platform_.files.planCopies(files.copies);
  for (std::size_t i = 0; i < files.copies.size() && !authDenied_; ++i) {
    installSourceFiles({files.copies[i].source}, deletingLastPathComponent(files.copies[i].target),
                       files.arePackages[i], /*alwaysInstall=*/true);
  }
}

// One item after the other.

void InstallFilesController::installSourceFiles(const std::vector<std::string>& sources, const std::string& toPath,
                                                bool isBundle, bool alwaysInstall) {
  ensureDirExists(toPath);
  if (authDenied_) return;

  // Kept from one file to the next on purpose: where an installed file is newer and stays, files that are missing
  // beside it stay missing, until one is replaced again.
  bool copyNewFiles = true;
  for (const std::string& source : sources) {
    const std::string progress = localized("installing_file") + lastPathComponent(source);
    platform_.log.write(progress);
    setUIText(progress);

    const std::string target = joinPath(toPath, lastPathComponent(source));
    const bool isReplacing = platform_.files.isTaken(target);
    if (isReplacing) {
      copyNewFiles = mayReplace(source, target, isBundle, alwaysInstall);
      if (copyNewFiles) platform_.log.write("removing existing file...");
    }
    if (copyNewFiles && !installItem(source, target, isReplacing)) return;
    progress_.finish(source);
    showProgress();
  }
}

bool InstallFilesController::installItem(const std::string& source, const std::string& target, bool isReplacing) {
  const Outcome outcome = putInPlace(source, target, isReplacing);
  if (outcome == Outcome::failed) reportFailedFile(target);
  if (outcome != Outcome::installed) return outcome != Outcome::denied;
  if (!runTool("/usr/sbin/chown", {"-R", ownerText(), target})) return false;
  if (!runTool("/bin/chmod", {"-R", "0775", target})) return false;
  installedPaths_.push_back(target);
  return true;
}

bool InstallFilesController::mayReplace(const std::string& source, const std::string& target, bool isBundle,
                                        bool alwaysInstall) const {
  if (alwaysInstall) return true;
  return isBundle ? isFileOkToInstallByBundleVersion(source, target)
                  : isFileOkToInstallByModificationTime(source, target);
}

InstallFilesController::Outcome InstallFilesController::putInPlace(const std::string& source, const std::string& target,
                                                                   bool isReplacing) {
  FileSystem& files = platform_.files;
  // The old item goes and the new one comes in one step, so that nothing that fails in between loses both.
  Status copied = isReplacing ? files.replaceItem(source, target) : files.copyItem(source, target);
  if (!copied && isReplacing && copied.error().is(std::errc::permission_denied)) {
    if (!runTool("/bin/rm", {"-fR", target})) return Outcome::denied;
    if (!files.isTaken(target)) copied = files.copyItem(source, target);
  }
  if (!copied) {
    platform_.log.write(copied.error().description());
    if (files.isTaken(target)) return Outcome::failed;  // the old item, still whole
    if (!runTool("/bin/cp", {"-R", source, target})) return Outcome::denied;
  }
  return appearsInTime(source, target) ? Outcome::installed : Outcome::failed;
}

bool InstallFilesController::appearsInTime(const std::string& source, const std::string& target) {
  if (platform_.files.isTaken(target)) return true;
  constexpr int mostChecks = 32;
  for (int checked = 0; checked < mostChecks; ++checked) {
    if (platform_.files.isTaken(target)) {
      platform_.log.write(formatted("Took a delay to verify file %@", lastPathComponent(source)));
      return true;
    }
    platform_.clock.sleepFor(std::chrono::microseconds(125));
  }
  return false;
}

void InstallFilesController::ensureDirExists(const std::string& path) {
  if (platform_.files.exists(path)) return;
  const std::string parent = deletingLastPathComponent(path);
  if (!platform_.files.exists(parent) && !createFolderForUser(parent)) return;
  static_cast<void>(createFolderForUser(path));  // who needs the folder sees authDenied_, or that it is not there
}

bool InstallFilesController::createFolderForUser(const std::string& path) {
  if (platform_.files.createDirectory(path, installedMode)) {
    setAttributesRecursive(path, {.owner = platform_.user.shortName(), .group = "admin", .permissions = installedMode});
    return giveToUser(path);
  }
  return runToolWithoutOutput("/bin/mkdir", {"-m775", "-p", path}) &&
         runToolWithoutOutput("/usr/sbin/chown", {"-R", ownerText(), path});
}

bool InstallFilesController::giveToUser(const std::string& path) {
  if (platform_.files.setAttributes(path, {.owner = platform_.user.shortName(), .group = "admin"})) return true;
  // Who is not of the group cannot give anything to it.
  return runToolWithoutOutput("/usr/sbin/chown", {"-R", ownerText(), path});
}

void InstallFilesController::setAttributesRecursive(const std::string& path, const OwnershipAndMode& attributes) {
  const auto before = platform_.files.attributesOfItem(path);
  ignore(platform_.files.setAttributes(path, attributes));  // what is not ours to change stays as it is
  if (!before || before->type != ItemType::folder) return;
  for (const std::string& name : platform_.files.contentsOfDirectory(path).valueOr({})) {
    setAttributesRecursive(joinPath(path, name), attributes);
  }
}

// Which of two is the newer.

bool InstallFilesController::isFileOkToInstallByBundleVersion(const std::string& source,
                                                              const std::string& alreadyThere) const {
  if (!platform_.files.exists(alreadyThere)) return true;
  const auto installed = platform_.bundles.bundleAtPath(alreadyThere);
  if (installed == nullptr) return true;
  const auto offered = platform_.bundles.bundleAtPath(source);
  if (offered == nullptr) return false;
  const auto offeredVersion = versionFromBundle(*offered);
  if (!offeredVersion) return false;
  const auto installedVersion = versionFromBundle(*installed);
  return !installedVersion || *offeredVersion >= *installedVersion;
}

bool InstallFilesController::isFileOkToInstallByModificationTime(const std::string& source,
                                                                 const std::string& alreadyThere) const {
  if (!platform_.files.exists(alreadyThere)) return true;
  const auto installed = platform_.files.attributesOfItem(alreadyThere);
  if (!installed) return true;
  if (installed->type == ItemType::folder) {
    const auto names = platform_.files.contentsOfDirectory(alreadyThere);
    if (names && names->empty()) return true;
  }
  const auto offered = platform_.files.attributesOfItem(source);
  return !offered || offered->modificationNanoseconds >= installed->modificationNanoseconds;
}
