// One stream of paths, whether they come from standard input or from a walk through folders.
#pragma once

#include <cstdint>
#include <deque>
#include <string>

#include "front/filter_text.h"
#include "front/opts/cmd_params.h"
#include "uni/stdin_stream.h"

namespace zkportdir {

class stdin_stream_ex : public uni::stdin_stream {
 public:
  stdin_stream_ex() = default;

  // Reads standard input from now on.
  void reset();

  // Walks `folder` and as many levels below it from now on. The walk is depth-first, and within a
  // folder it takes the reverse of the listing's order; links are files. A folder that can't be
  // read gives nothing. False for an empty name; a folder that isn't there gives an empty walk.
  bool open_walk(const std::string& folder, uint32_t num_subdirs, const filter_list& filters);

  // The next path. One whose name isn't UTF-8 comes out empty. False at the end.
  bool read_line(std::string& out, bool strip_line_end) override;

 private:
  struct pending_dir {
    std::wstring path;
    uint32_t depth;
  };

  bool next_from_walk(std::wstring& out);
  // Takes the last folder that isn't too deep. False if there is none.
  bool next_folder(pending_dir& next);
  void list_folder(const pending_dir& folder);
  // Whether the filters, unless left out, take the path. A long one that begins with
  // two backslashes loses its first four characters, unless "global" follows them.
  bool accept_path(std::wstring& path, bool skip_filter) const;

  std::deque<pending_dir> pending_dirs;
  std::deque<std::wstring> pending_files;
  uint32_t max_depth = 1;
  filter_list walk_filters;
  bool walking = false;
  cmd_params no_span;  // a walk tests no times
};

}  // namespace zkportdir
