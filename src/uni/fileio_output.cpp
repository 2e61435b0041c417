#include "uni/fileio_output.h"

#include <cstdint>

#include "uni/fileio.h"

namespace uni {

fileio_ostream::fileio_ostream(fileio* target, int buffer_size)
    : streambuf_generic_output<char>(buffer_size), file(target), was_open(target->is_open()) {}

fileio_ostream::~fileio_ostream() {
  fileio_ostream::flush_buffer();
}

int fileio_ostream::write_bytes(const char* data, int count) {
  return file->append(data, static_cast<uint32_t>(count)) ? count : -1;
}

fileio_output::fileio_output(fileio* file, int buffer_size)
    : std::ostream(nullptr), file_buffer(file, buffer_size), attached(file_buffer.file_was_open()) {
  if (attached) rdbuf(&file_buffer);
}

fileio_output::~fileio_output() {
  if (attached) flush();
}

}  // namespace uni
