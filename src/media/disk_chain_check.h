// The check of a list of disk files, before any is read.
#pragma once

#include <ostream>
#include <string>
#include <vector>

// Opens the files of a VMware disk and joins them by their keys. Where a parent isn't listed but
// its place is known, it goes into `suggested`, which begins as the list itself, and the check goes
// on with it; the result is then false all the same, for the list to be given whole. `messages`
// gets a line for each fault. Everything is closed again.
[[nodiscard]] bool disk_chain_check(const std::vector<std::wstring>& paths, std::ostream& messages,
                                    std::vector<std::wstring>& suggested);
