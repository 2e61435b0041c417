// A buffered output stream over a uni::fileio. Rows gather in its buffer and reach the file in
// whole blocks, however often the stream is flushed.
#pragma once

#include <cstddef>
#include <ios>
#include <ostream>
#include <span>
#include <streambuf>
#include <string>
#include <string_view>
#include <vector>

#include "text/line_sink.h"

namespace uni {

class fileio;

// Output through a buffer of `buffer_size` characters. The put area ends one short of the buffer,
// so that the character that finds it full still fits: blocks are `buffer_size` long.
template <class Char, class Traits = std::char_traits<Char>>
class streambuf_generic_output : public std::basic_streambuf<Char, Traits> {
 public:
  using int_type = typename Traits::int_type;

  // What is left of the put area, for text that is composed in place; nothing where a block
  // couldn't be written. The text counts as put once `advance` tells its length.
  std::span<Char> space() { return {this->pptr(), this->epptr()}; }
  void advance(size_t count) { this->pbump(static_cast<int>(count)); }

 protected:
  explicit streambuf_generic_output(int buffer_size)
      : buffer(static_cast<size_t>(buffer_size)), ready(buffer_size > 0) {
    empty_put_area();
  }

  // Writes `count` characters. Returns how many were written, -1 if none could be.
  virtual int write_bytes(const Char* data, int count) = 0;

  // Writes what the buffer holds. 0, or -1 if that failed. Derived classes call it in their
  // destructors.
  virtual int flush_buffer() {
    if (!ready) return 0;
    return Traits::eq_int_type(overflow(Traits::eof()), Traits::eof()) ? -1 : 0;
  }

  int sync() override { return flush_buffer(); }

  int_type overflow(int_type c) override {
    if (!ready) return Traits::eof();
    Char* const begin = buffer.data();
    if (!Traits::eq_int_type(c, Traits::eof())) {
      // Full of a block that couldn't be written.
      if (this->pptr() == begin + buffer.size()) return Traits::eof();
      *this->pptr() = Traits::to_char_type(c);
      this->pbump(1);
    }
    const int held = static_cast<int>(this->pptr() - begin);
    for (int written = 0; written < held;) {
      const int step = write_bytes(begin + written, held - written);
      if (step == -1) {
        // The block stays, in a put area that ends with the buffer.
        this->setp(begin, begin + buffer.size());
        this->pbump(held);
        return Traits::eof();
      }
      written += step;
    }
    empty_put_area();
    return Traits::not_eof(c);
  }

 private:
  void empty_put_area() {
    if (ready) this->setp(buffer.data(), buffer.data() + buffer.size() - 1);
  }

  std::vector<Char> buffer;
  bool ready;
};

// The stream's buffer, over a file that it doesn't own and that must outlive it.
class fileio_ostream : public streambuf_generic_output<char> {
 public:
  fileio_ostream(fileio* file, int buffer_size);
  ~fileio_ostream() override;  // writes what the buffer holds; a failure is ignored

  bool file_was_open() const { return was_open; }

 protected:
  // Deliberate: flushing writes nothing, so that blocks stay whole.
  int sync() override { return 0; }
  int write_bytes(const char* data, int count) override;

 private:
  fileio* file;
  bool was_open;
};

// The stream, and a sink of lines, which are composed in its buffer where they fit. Over a file
// that isn't open it has no buffer and refuses all output.
class fileio_output : public std::ostream, public zk::line_sink {
 public:
  fileio_output(fileio* file, int buffer_size);

  std::span<char> space() override { return attached ? buffer.space() : std::span<char>(); }
  void advance(size_t count) override { buffer.advance(count); }
  void take(std::string_view line) override;

 private:
  fileio_ostream buffer;
  bool attached;
};

// A sink that hands each line to a stream, which it borrows, and flushes it. A failing stream isn't
// looked at.
class stream_sink : public zk::line_sink {
 public:
  explicit stream_sink(std::ostream& out) : stream(out) {}

  std::span<char> space() override { return {}; }
  void advance(size_t) override {}
  void take(std::string_view line) override;

 private:
  std::ostream& stream;
};

// Takes everything and keeps nothing.
class null_out_buf : public std::streambuf {
 protected:
  std::streamsize xsputn(const char*, std::streamsize count) override { return count; }
  int overflow(int c) override { return c; }
};

class null_out_stream : public std::ostream {
 public:
  null_out_stream() : std::ostream(nullptr) { rdbuf(&discarding); }

 private:
  null_out_buf discarding;
};

}  // namespace uni
