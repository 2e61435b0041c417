#include "front/host_info.h"

#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/utsname.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <array>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <string_view>
#include <vector>

#include "text/zk_number.h"
#include "text/zk_string.h"
#include "uni/fileio.h"

namespace {

constexpr uint32_t largest_version_file = 0x10000;

// Replaces every `what`. An empty one is nowhere.
std::string replaced(std::string text, const std::string& what, const std::string& with) {
  if (what.empty()) return text;
  for (size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += with.size()) {
    text.replace(at, what.size(), with);
  }
  return text;
}

std::string stem_of(const std::string& path) {
  const size_t slash = path.rfind('/');
  if (slash == std::string::npos) return "";
  const size_t underscore = path.find('_', slash);
  if (underscore == std::string::npos) return "";
  return path.substr(slash + 1, underscore - slash - 1);
}

}  // namespace

std::string probe_exe_path() {
  std::array<char, 2048> buffer = {};
  const ssize_t got = ::readlink("/proc/self/exe", buffer.data(), buffer.size() - 1);
  return got == -1 ? "" : buffer.data();
}

bool exe_on_network() {
  const std::string path = probe_exe_path();
  struct statfs facts = {};
  if (path.size() <= 1 || ::statfs(path.c_str(), &facts) != 0) return false;
  switch (static_cast<uint32_t>(facts.f_type)) {
    case 0x517B:      // SMB
    case 0x6969:      // NFS
    case 0x65735546:  // FUSE
    case 0xFF534D42:  // CIFS
      return true;
    default:
      return false;
  }
}

bool exe_on_usb() {
  const std::string path = probe_exe_path();
  struct stat facts = {};
  if (path.size() <= 1 || ::lstat(path.c_str(), &facts) != 0) return false;
  std::array<char, 4096> link = {};
  std::snprintf(link.data(), link.size(), "%s/%ld:%ld", "/sys/dev/block",
                static_cast<long>(major(facts.st_dev)), static_cast<long>(minor(facts.st_dev)));
  std::array<char, PATH_MAX> device = {};
  if (!::realpath(link.data(), device.data())) return false;
  return std::string_view(device.data()).find("usb") != std::string_view::npos;
}

std::string host_name() {
  std::array<char, 4096> buffer = {};
  return ::gethostname(buffer.data(), buffer.size() - 1) == 0 ? buffer.data() : "<unk>";
}

void host_info_read(host_info& info, const std::string& path) {
  info = {};
  utsname names;
  if (::uname(&names) != 0) return;
  info.system = names.sysname;
  info.version = names.version;
  info.release = names.release;
  info.node = names.nodename;
  std::string machine = names.machine;
  info.is_64_bit = zk::to_lower(machine).find("64") != std::string::npos;
  info.path = path;
  info.stem = stem_of(path);
  info.on_usb = exe_on_usb();
  info.on_network = exe_on_network();
  info.ok = true;
}

void host_info_write(const host_info& info, std::ostringstream& out, const std::string& separator,
                     const std::string& replacement, bool with_node, bool with_stem) {
  out.str("");
  const auto put = [&](const std::string& text) {
    out << replaced(text, separator, replacement) << separator;
  };
  put(info.system);
  if (with_node) put(info.node);
  put(info.version);
  put(info.release);
  out << (info.is_64_bit ? "64" : "32");
  if (with_stem && !info.stem.empty()) {
    std::string stem = replaced(info.stem, separator, replacement);
    out << separator << zk::to_lower(stem);
  }
}

void read_system_version(cmd_params& params, const char* path) {
  std::vector<uint8_t> bytes;
  if (!uni::load_file(bytes, path, largest_version_file)) return;
  const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  constexpr std::string_view key = ">ProductVersion<";
  constexpr std::string_view opening = "<string>";
  const size_t key_at = text.find(key);
  if (key_at == std::string_view::npos) return;
  const size_t opening_at = text.find(opening, key_at);
  if (opening_at == std::string_view::npos) return;
  const size_t begin = opening_at + opening.size();
  const size_t end = text.find("</s", begin);
  if (end == std::string_view::npos) return;
  params.os_product_version = text.substr(begin, end - begin);

  const auto numbers = zk::split_trimmed(params.os_product_version, ".");
  int32_t* const targets[] = {&params.os_version_major, &params.os_version_minor,
                              &params.os_version_patch};
  for (size_t i = 0; i < numbers.size() && i < std::size(targets); ++i) {
    uint32_t number = 0;
    zk::read_number(numbers[i].c_str(), number);
    *targets[i] = static_cast<int32_t>(number);
  }
}
