// Whether what a run writes can reach what it reads.
#pragma once

#include <sys/types.h>

#include <string>

namespace uni {

// The folder of a block device in /sys, with a slash at its end. That of a partition lies in that
// of its disk. Empty if there is none.
std::string device_folder(dev_t device);

// Whether bytes written to `output` may come back from `input`, both being open descriptors: they
// are the same file, or `input` is a block device on which, as /sys tells, the file system of
// `output` lies: on the device itself, on a partition of it, or on the disk that it is a partition
// of. What else may stand between them, such as a loop device over an image, LVM, encryption or a
// pipe, isn't known. False too where the system doesn't tell.
[[nodiscard]] bool writes_reach(int output, int input);

}  // namespace uni
