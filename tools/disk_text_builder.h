// Builds disks from text, for the tables of cases.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tools/case_file.h"

// An extent: its descriptor, the byte that fills each of its grains or a dot if it holds none, and
// AT=NUMBER for a field of four bytes, or a size to cut or fill the file to.
std::vector<uint8_t> vmdk_from_text(const std::string& keys, const std::string& grains,
                                    const strings& changes);

// The start of a disk: its size, and boot records: the place of each, which may lie after that
// size, then TYPE,FIRST,SECTORS for each of its entries, and the name in it.
std::vector<uint8_t> boot_records_from_text(const std::string& size, const strings& records);
