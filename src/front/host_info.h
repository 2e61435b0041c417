// Where the program runs. No probe reports a failure; each gives its default.
#pragma once

#include <sstream>
#include <string>

// The path of the program's own file; empty if unknown.
std::string probe_exe_path();

// Whether that file lies on a network or FUSE file system, or on a USB device.
bool exe_on_network();
bool exe_on_usb();

// The host's name, or "<unk>".
std::string host_name();

struct host_info {
  bool ok = false;
  bool is_64_bit = false;
  std::string system = "Linux";
  std::string version;
  std::string release;
  std::string node;
  std::string path;
  std::string stem;  // what lies between the path's last "/" and the next "_" after it
  bool on_network = false;
  bool on_usb = false;
};

// Asks the system. `path` is kept.
void host_info_read(host_info& info, const std::string& path);

// Writes system, version, release and "64" or "32" with `separator` between them, with `with_node`
// the node's name after the system, with `with_stem` the stem at the end. `replacement` is
// written for each separator inside a text. The stream is emptied first.
void host_info_write(const host_info& info, std::ostringstream& out, const std::string& separator,
                     const std::string& replacement, bool with_node, bool with_stem);
