// A folder that is removed after its test, and files in it.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <filesystem>  // IWYU pragma: export
#include <fstream>
#include <ios>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

class temp_dir {
 public:
  temp_dir() {
    std::string name = (std::filesystem::temp_directory_path() / "udx-test-XXXXXX").string();
    if (!::mkdtemp(name.data())) throw std::runtime_error("no temporary folder");
    root = name;
  }
  temp_dir(const temp_dir&) = delete;
  temp_dir& operator=(const temp_dir&) = delete;
  ~temp_dir() {
    std::error_code ignored;
    std::filesystem::remove_all(root, ignored);
  }

  std::string path(const std::string& name = "") const {
    return name.empty() ? root : root + "/" + name;
  }

  // Writes a file, with the folders above it, and returns its path.
  std::string write(const std::string& name, std::string_view text) const {
    const std::filesystem::path target = path(name);
    std::filesystem::create_directories(target.parent_path());
    std::ofstream(target, std::ios::binary) << text;
    return target;
  }
  std::string write(const std::string& name, const std::vector<uint8_t>& bytes) const {
    return write(name, {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
  }

 private:
  std::string root;
};
