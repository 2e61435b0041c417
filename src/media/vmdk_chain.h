// A VMware disk with snapshots: a base and its children, joined by the keys of their descriptors
// and read as the newest of them shows the disk.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "media/vmdk_extent.h"
#include "uni/stretch.h"

// The parent key of an extent without a parent, in this spelling alone.
inline constexpr const char* no_parent_cid = "ffffffff";

// How many bytes of a disk are searched at once for a place that an extent holds.
inline constexpr uint64_t longest_stretch = 1ULL << 30;

class VMDK_CHAIN {
 public:
  explicit VMDK_CHAIN(bool write) : m_writable(write) {}

  // Opens each file. False at the first that is no usable extent. Of two with the same key the
  // first stays, and the other is closed.
  [[nodiscard]] bool add_files(const std::vector<std::wstring>& paths);
  void add_file(std::unique_ptr<VMDK_EXTENT> extent);

  // Joins the extents by their keys. False if there is no base, or a parent isn't among them.
  [[nodiscard]] bool link();

  // Reads `count` bytes at a place on the disk, each grain from the newest extent that holds it.
  // What no extent holds, or can't be read, becomes zeros; `out` is always filled. The disk's
  // size is no bound: what an extent holds beyond it comes as data. False if the chain isn't joined
  // properly, or nothing is asked for.
  [[nodiscard]] bool read_chain(uint8_t* out, uint64_t offset, uint32_t count) const;

  // The newest extent that holds the place; null if none does.
  const VMDK_EXTENT* find_owner(uint64_t offset) const;

  // The stretch from a place on the disk on: zeros as far as no extent holds anything, but at most
  // `longest_stretch` bytes.
  uni::stretch stretch_at(uint64_t offset) const;

  // Joins an extent to its parent, if that is in the map. False if it isn't.
  bool join(VMDK_EXTENT& extent);

  // Walks from the base to the leaf. The chain becomes valid unless the walk finds a circle.
  void walk_from_base();

  void clear();

  std::map<std::string, std::unique_ptr<VMDK_EXTENT>> m_extents;  // by their keys, bytewise
  VMDK_EXTENT* m_leaf = nullptr;                                  // newest, borrowed
  VMDK_EXTENT* m_base = nullptr;                                  // without a parent, borrowed
  bool m_writable = false;
  bool m_valid = false;
  std::vector<VMDK_EXTENT*> m_order;  // from the base to the leaf, borrowed; stored
};
