#include "uni/fileio_output.h"

#include <cstdint>
#include <ios>
#include <ostream>
#include <string_view>

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
    : std::ostream(nullptr), buffer(file, buffer_size), attached(buffer.file_was_open()) {
  if (attached) rdbuf(&buffer);
}

void fileio_output::take(std::string_view line) {
  write(line.data(), static_cast<std::streamsize>(line.size()));
}

void stream_sink::take(std::string_view line) {
  stream.write(line.data(), static_cast<std::streamsize>(line.size())).flush();
}

}  // namespace uni
