#include "front/host_info.h"

#include <sys/stat.h>
#include <sys/utsname.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>

#include "text/zk_string.h"
#include "uni/medium.h"

namespace {

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
  return uni::device_folder(facts.st_dev).find("usb") != std::string::npos;
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
