#include "media/disk_chain_check.h"

#include <algorithm>
#include <exception>
#include <memory>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "media/vmdk_chain.h"
#include "media/vmdk_extent.h"
#include "text/path_text.h"
#include "text/zk_string.h"
#include "text/zk_wide.h"
#include "uni/fileio.h"

namespace {

constexpr const char* no_parent_text =
    "Child VMDK points to a parent VMDK that doesn't exist, aborting\n";

enum class verdict {
  joined,   // each extent has its parent, up to one whose parent is listed under another key
  extend,   // a parent was found and added to the list
  missing,  // a parent is nowhere
  refused,  // the check ends
};

class chain_check {
 public:
  chain_check(std::ostream& out, std::vector<std::wstring>& list)
      : messages(out), suggested(list) {}

  bool run() {
    bool accepted = true;
    for (;;) {
      if (!open_files()) return false;
      const verdict found = join_all();
      if (found == verdict::refused) return false;
      if (found == verdict::joined) break;
      accepted = false;
      if (found == verdict::missing) break;
    }
    if (!accepted || !chain.m_base) return false;
    chain.walk_from_base();
    return true;
  }

 private:
  bool open_files() {
    chain.clear();
    for (const std::wstring& path : suggested) {
      std::unique_ptr<VMDK_EXTENT> extent;
      try {
        extent = std::make_unique<VMDK_EXTENT>();
      } catch (const std::exception&) {
        messages << "prob creating virtual vmware disk mapping\n";
        return false;
      }
      if (directory.empty()) directory = path.substr(0, path.rfind(L'/') + 1);  // npos + 1 is 0
      if (!extent->open(path, false)) {
        messages << zk::wide_to_utf8(path) << " can't be opened\n";
        return false;
      }
      chain.add_file(std::move(extent));
    }
    return true;
  }

  verdict join_all() {
    chain.m_base = nullptr;
    for (const auto& [key, extent] : chain.m_extents) {
      if (extent->m_parent_cid == no_parent_cid) {
        chain.m_base = extent.get();
        chain.m_order.push_back(chain.m_base);
      } else if (chain.m_extents.contains(extent->m_parent_cid)) {
        if (extent->m_cid == extent->m_parent_cid) {
          messages << "Child VMDK CID errors, aborting\n";
          return verdict::refused;
        }
        chain.join(*extent);
      } else {
        return hint_is_listed(*extent) ? verdict::joined : find_parent(*extent);
      }
    }
    return verdict::joined;
  }

  // Whether a listed path holds the parent's hint, as each does an empty one. The list is then
  // accepted here, but joining it fails, as no listed file has the parent's key.
  bool hint_is_listed(const VMDK_EXTENT& extent) const {
    std::wstring hint = zk::utf8_to_wide(extent.m_parent_hint);
    zk::remove_char_wide(hint, L'"');
    const auto holds_hint = [&](const VMDK_EXTENT& other) {
      return other.m_wide_path.find(hint) != std::wstring::npos;
    };
    if (chain.m_base) return holds_hint(*chain.m_base);
    return chain.m_extents.size() >= 2 &&
           std::any_of(chain.m_extents.begin(), chain.m_extents.end(),
                       [&](const auto& entry) { return holds_hint(*entry.second); });
  }

  // Works out where the parent should be. Adds it to the list if it is there, or by its name in the
  // folder of the list if its path is of another place.
  verdict find_parent(VMDK_EXTENT& extent) {
    const bool windows = extent.m_encoding.find("windows") != std::string::npos;
    const char separator = windows ? '\\' : '/';
    std::wstring parent;
    if (extent.m_parent_hint.find(separator) == std::string::npos) parent = directory;
    parent += zk::utf8_to_wide(extent.m_parent_hint);
    zk::remove_char_wide(parent, L'"');
    if (!uni::fileio(parent).is_open()) {
      if (directory.empty() || parent.find(directory) != std::wstring::npos) return no_parent();
      std::wstring folder;
      std::wstring name;
      if (split_path(std::wstring(parent), folder, name) && !name.empty()) {
        parent = directory + name;
        extent.m_parent_hint = "\"" + zk::wide_to_utf8(parent) + "\"";
      }
    }
    // A path that is listed already would be added for ever.
    if (std::find(suggested.begin(), suggested.end(), parent) != suggested.end()) {
      return no_parent();
    }
    messages << "=> vmdk file: " << extent.m_path_utf8 << '\n'
             << " depends on parent vmdk " << extent.m_parent_hint << '\n';
    suggested.push_back(parent);
    return verdict::extend;
  }

  verdict no_parent() {
    messages << no_parent_text;
    return verdict::missing;
  }

  std::ostream& messages;
  std::vector<std::wstring>& suggested;
  std::wstring directory;  // of the first path that has one, with its slash
  VMDK_CHAIN chain{false};
};

}  // namespace

bool disk_chain_check(const std::vector<std::wstring>& paths, std::ostream& messages,
                      std::vector<std::wstring>& suggested) {
  suggested = paths;
  return chain_check(messages, suggested).run();
}
