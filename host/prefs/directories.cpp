#include "host/prefs/directories.h"

#include <cstdlib>
#include <mutex>
#include <optional>
#include <stdexcept>

namespace {

// mutex guards preferencesDirectory and installationRoot; unset means the default.
std::mutex mutex;
std::optional<std::string> preferencesDirectory;
std::optional<std::string> installationRoot;

std::string defaultPreferencesDirectory() {
  const char* config = std::getenv("XDG_CONFIG_HOME");
  if (config != nullptr && *config != '\0') return std::string(config) + "/blockara";
  const char* home = std::getenv("HOME");
  if (home != nullptr && *home != '\0') return std::string(home) + "/.config/blockara";
  return "./blockara";
}

}  // namespace

std::string svGetPreferencesDirectory(int /*kind*/) {
  std::lock_guard<std::mutex> lock(mutex);
  return preferencesDirectory ? *preferencesDirectory : defaultPreferencesDirectory();
}

void svSetPreferencesDirectory(const std::string& directory) {
  if (directory.empty()) throw std::invalid_argument("the preferences directory cannot be empty");
  std::lock_guard<std::mutex> lock(mutex);
  preferencesDirectory = directory;
}

std::string svNumeriaRoot() {
  std::lock_guard<std::mutex> lock(mutex);
  return installationRoot ? *installationRoot : std::string(BKETC_RESOURCE_DIR);
}

void svSetNumeriaRoot(const std::string& root) {
  if (root.empty()) throw std::invalid_argument("the installation root cannot be empty");
  std::lock_guard<std::mutex> lock(mutex);
  installationRoot = root;
}
