#include "front/usage.h"

#include <cstdio>
#include <string>

#include "front/run_header.h"
#include "gate/licence_gate.h"
#include "text/path_text.h"

void print_usage(const std::string& path) {
  std::string folder;
  std::string name;
  if (!split_path(path, folder, name)) name = path;
  const auto [product, purpose] = licence_gate::identification();
  const char* const called = name.c_str();
  std::fprintf(stderr,
               "%s\n%s\n"
               "-----------------------------------------------------------------------------\n\n"
               "%s\n\n"
               "Usage:\n\n"
               "  %s -f <file>\n"
               "  %s -partition <drive letter>          = Partition scan\n"
               "  %s -vmdk \"<file1> | <file2> | ...\"    = VMWare disk scan\n"
               "    find <starting path> -name *.dat -type f | <path of %s> -pipe\n"
               "  %s -enumdir <folder> -num_subdirs <#> [options]\n"
               "\n Basic options\n"
               "  -pipe                     = pipe files into app for processing\n"
               "  -dateformat mm/dd/yyyy    = \"yyyy-mm-dd\" is the default\n"
               "  -timeformat hh:mm:ss      = \"hh:mm:ss.xxx\" is the default\n"
               "  -csv_separator \"|\"        = use a pipe char for separator\n"
               "  -locale                   = use user acct locale info for date formatting\n"
               "  -filter <*partial*|*.ext> = filters stdin data from -pipe option\n"
               "\n",
               product, purpose, banner_line().c_str(), called, called, called, called, called);
}
