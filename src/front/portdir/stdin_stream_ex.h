// The paths of a run over many files, one by one, whether they come from standard input or from a
// walk through folders.
#pragma once

#include <cstdint>
#include <string>

#include "front/filter_text.h"
#include "front/portdir/path_stack.h"
#include "opts/cmd_params.h"
#include "uni/stdin_stream.h"

namespace zkportdir {

class stdin_stream_ex : public uni::stdin_stream {
 public:
  stdin_stream_ex() = default;

  // Reads standard input from now on.
  void reset();

  // Walks `folder` and as many levels below it from now on. The walk is depth-first, and within a
  // folder it takes the reverse of the listing's order; links are files. A folder that can't be
  // read gives nothing, nor does a name that isn't UTF-8. False for an empty name; a folder that
  // isn't there gives an empty walk.
  bool open_walk(const std::string& folder, uint32_t num_subdirs, const filter_list& filters);

  // The next path. A walk's has no line end; a line loses its own if `strip_line_end` is set. False
  // at the end, with `out` empty.
  virtual bool getline(std::string& out, bool strip_line_end);

 private:
  bool next_from_walk(std::string& out);
  void list_folder(const std::string& folder, uint32_t depth);
  // Whether the filters take the path of a file, or can't tell because it can't be read.
  bool accept_path(const std::string& path) const;

  path_stack pending_dirs;
  path_stack pending_files;
  uint32_t max_depth = 1;
  filter_list walk_filters;
  bool walking = false;
  cmd_params no_span;  // the driver tests times, when it gets the path
};

}  // namespace zkportdir
