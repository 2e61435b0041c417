// A VMware disk of two files. The input begins with the first one's size.
#include <algorithm>
#include <sstream>

#include "fuzz/support.h"
#include "media/disk_chain_check.h"
#include "media/vmdk_chain.h"
#include "text/zk_wide.h"
#include "uni/stretch.h"

namespace {

void check_list(const VMDK_CHAIN& chain, const std::vector<std::wstring>& paths, bool linked) {
  bool own_parent = false;
  for (const auto& [key, extent] : chain.m_extents) {
    // Another file than the two isn't to be opened.
    if (extent->m_parent_hint.find_first_of("/\\") != std::string::npos) return;
    own_parent |= extent->m_parent_cid == key && key != no_parent_cid;
  }
  std::ostringstream messages;
  std::vector<std::wstring> suggested;
  const bool accepted = disk_chain_check(paths, messages, suggested);
  if (linked && !own_parent) {
    require(accepted && messages.str().empty() && suggested == paths,
            "the check accepts what can be joined");
  }
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 4) return 0;
  static const memory_file files[2];
  const size_t first = std::min<size_t>(zk::load_le32(data), size - 4);
  const uint8_t* const begins[] = {data + 4, data + 4 + first};
  const size_t sizes[] = {first, size - 4 - first};
  std::vector<std::wstring> paths;
  for (size_t i = 0; i < 2; ++i) {
    if (takes_long(begins[i], sizes[i])) return 0;
    files[i].fill(begins[i], sizes[i]);
    paths.push_back(zk::utf8_to_wide(files[i].path()));
  }

  VMDK_CHAIN chain(false);
  if (!chain.add_files(paths)) return 0;
  const bool linked = chain.link();
  check_list(chain, paths, linked);
  const disk_place place(data, size);
  byte_vector out(place.count, 'a');
  byte_vector again(place.count, 'b');
  const bool read = chain.read_chain(out.data(), place.offset, place.count);
  require(read == (linked && chain.m_valid), "a joined chain can be read");
  if (!read) return 0;
  require(chain.read_chain(again.data(), place.offset, place.count), "and again");
  require(out == again, "a read fills all that was asked");
  if (uni::stretch_finder(chain).all_zeros(place.offset, place.count)) {
    require(std::count(out.begin(), out.end(), 0) == place.count, "a hole reads as zeros");
  }
  const uint64_t grain = chain.m_base->m_bytes_per_grain;
  for (const auto& [key, extent] : chain.m_extents) {
    if (extent->m_bytes_per_grain != grain || grain > UINT32_MAX) return 0;
  }
  for (uint32_t i = 0; i < place.count; ++i) {
    uint64_t at = 0;
    const VMDK_EXTENT* const owner = chain.find_owner(place.offset + i);
    const bool held = owner && owner->locate_grain(place.offset + i, at);
    const size_t from = held && owner->m_wide_path == paths[1];
    require(out[i] == (held && at < sizes[from] ? begins[from][at] : 0), "a byte is its owner's");
  }
  return 0;
}
