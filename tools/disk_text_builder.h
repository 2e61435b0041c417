// Builds disks from text, for the tables of cases: the inputs of a case from `first` on.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "tools/case_file.h"

// An extent: its descriptor, the byte that fills each of its grains or a dot if it holds none, and
// behind these AT=NUMBER for what stands in four bytes and a size to cut or fill the file to.
std::vector<uint8_t> vmdk_from_text(const strings& inputs, size_t first);

// The start of a disk: its size, and boot records: where each stands, behind that size too, then
// TYPE,FIRST,SECTORS for each of its entries, and the name in it.
std::vector<uint8_t> boot_records_from_text(const strings& inputs, size_t first);
