#include "media/vmdk_chain.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "media/vmdk_extent.h"
#include "uni/stretch.h"

bool VMDK_CHAIN::add_files(const std::vector<std::wstring>& paths) {
  return std::all_of(paths.begin(), paths.end(), [this](const std::wstring& path) {
    auto extent = std::make_unique<VMDK_EXTENT>();
    if (!extent->open(path, m_writable)) return false;
    add_file(std::move(extent));
    return true;
  });
}

void VMDK_CHAIN::add_file(std::unique_ptr<VMDK_EXTENT> extent) {
  const std::string key = extent->m_cid;
  m_extents.try_emplace(key, std::move(extent));
}

bool VMDK_CHAIN::join(VMDK_EXTENT& extent) {
  const auto parent = m_extents.find(extent.m_parent_cid);
  if (parent == m_extents.end()) return false;
  extent.m_parent = parent->second.get();
  extent.m_parent->m_child = &extent;
  return true;
}

bool VMDK_CHAIN::link() {
  m_base = nullptr;
  m_order.clear();
  bool joined = true;
  for (const auto& [key, extent] : m_extents) {
    if (extent->m_parent_cid == no_parent_cid) {
      m_base = extent.get();
      m_order.push_back(m_base);
    } else if (!join(*extent)) {
      joined = false;
    }
  }
  if (!joined || !m_base) return false;
  walk_from_base();
  return true;
}

void VMDK_CHAIN::walk_from_base() {
  VMDK_EXTENT* extent = m_base;
  for (size_t steps = 0; extent->m_child && steps <= m_extents.size(); ++steps) {
    extent = extent->m_child;
    m_order.push_back(extent);
  }
  m_valid = !extent->m_child;
  m_leaf = extent;
}

const VMDK_EXTENT* VMDK_CHAIN::find_owner(uint64_t offset) const {
  uint64_t file_offset = 0;
  const VMDK_EXTENT* extent = m_valid ? m_leaf : nullptr;
  while (extent && !extent->locate_grain(offset, file_offset)) extent = extent->m_parent;
  return extent;
}

bool VMDK_CHAIN::read_chain(uint8_t* out, uint64_t offset, uint32_t count) const {
  if (!m_valid || !out || count == 0) return false;
  uint32_t total = 0;
  while (total < count) {
    const VMDK_EXTENT* const owner = find_owner(offset);
    const uint32_t room = (owner ? owner : m_base)->bytes_to_grain_end(offset);
    uint32_t piece = std::min(count - total, room);
    if (piece == 0) {
      // A grain whose size is nothing in 32 bits: the rest is zeros.
      std::memset(out + total, 0, count - total);
      break;
    }
    uint32_t delivered = piece;
    if (!owner || !owner->read_extent(owner->m_fd, out + total, offset, delivered)) {
      std::memset(out + total, 0, piece);
      delivered = piece;
    }
    total += delivered;
    offset += delivered;
  }
  return true;
}

uni::stretch VMDK_CHAIN::stretch_at(uint64_t offset) const {
  constexpr uint64_t no_end = std::numeric_limits<uint64_t>::max();
  if (!m_valid) return {no_end, false};
  // Table numbers wrap at 32 bits, so the search is bounded; the caller asks again from the bound
  // on.
  const uint64_t limit = offset + std::min(no_end - offset, longest_stretch);
  const VMDK_EXTENT* owner = nullptr;
  uint64_t end = offset;
  while (end < limit && !(owner = find_owner(end))) {
    uint64_t step = limit - end;
    for (const auto& [key, extent] : m_extents) {
      step = std::min(step, extent->bytes_not_held(end));
    }
    end += step;
  }
  if (end != offset) return {end, true};
  return {offset + std::max(owner ? owner->bytes_to_grain_end(offset) : 0, 1U), false};
}

void VMDK_CHAIN::clear() {
  m_extents.clear();
  m_order.clear();
  m_leaf = m_base = nullptr;
  m_valid = false;
}
