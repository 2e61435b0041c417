// Whether what a run writes can reach what it reads.
#pragma once

#include <sys/types.h>

#include <string>

namespace uni {

// The folder of a block device in /sys, with a slash at its end. That of a partition lies in that
// of its disk. Empty if there is none.
std::string device_folder(dev_t device);

// Whether bytes written to `output` may come back from `input`, both being open descriptors. True
// if they are the same file; or if `input` is a block device, and `output` is that device or a file
// on it, or the same of a partition of it or of the disk that it is a partition of, as /sys tells.
// What else may lie between them isn't known: a loop device over an image, LVM, encryption, an
// overlay file system, a pipe. False too where the system doesn't tell.
[[nodiscard]] bool writes_reach(int output, int input);

}  // namespace uni
