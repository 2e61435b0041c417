#include "uni/medium.h"

#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <array>
#include <climits>
#include <cstdlib>
#include <string>

#include "uni/fileio.h"

namespace uni {
namespace {

// Whether one of the devices is the other, or a partition of it.
bool overlap(dev_t one, dev_t other) {
  if (one == other) return true;
  const std::string folder = device_folder(one);
  const std::string other_folder = device_folder(other);
  if (folder.empty() || other_folder.empty()) return false;
  return folder.starts_with(other_folder) || other_folder.starts_with(folder);
}

}  // namespace

std::string device_folder(dev_t device) {
  const std::string link =
      "/sys/dev/block/" + std::to_string(major(device)) + ":" + std::to_string(minor(device));
  std::array<char, PATH_MAX> folder;
  return ::realpath(link.c_str(), folder.data()) ? std::string(folder.data()) + "/" : "";
}

bool writes_reach(int output, int input) {
  if (same_file(output, input)) return true;
  struct stat written;
  struct stat searched;
  if (!descriptor_stat(output, written) || !descriptor_stat(input, searched)) return false;
  if (!S_ISBLK(searched.st_mode)) return false;
  return overlap(S_ISBLK(written.st_mode) ? written.st_rdev : written.st_dev, searched.st_rdev);
}

}  // namespace uni
