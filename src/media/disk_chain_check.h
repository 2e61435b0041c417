// The check of a list of disk files, before any is read.
#pragma once

#include <ostream>
#include <string>
#include <vector>

// Opens the files of a VMware disk and joins them by their keys. `suggested` begins as the list
// itself; a parent that isn't listed, but can be found, is added to it, and the longer list is
// checked in turn. The result is then false all the same: the user is to give the whole list.
// `messages` gets a line for each fault. All files are closed again.
[[nodiscard]] bool disk_chain_check(const std::vector<std::wstring>& paths, std::ostream& messages,
                                    std::vector<std::wstring>& suggested);
