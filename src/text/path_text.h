// What every input's path goes through.
#pragma once

#include <string>

// The path with each %NAME% replaced by that environment variable, and with `vss` also %vss% by the
// name of a volume's shadow copy. Unknown names stay.
std::string expand_env(std::string path, bool vss);

// Divides a path at its last backslash, or else at its last slash, neither counting at the very
// start. An undivided path is a name in the folder ".". A name ".." moves into the folder, and the
// name is ".". False, with both empty, for an empty path alone.
bool split_path(const std::string& path, std::string& folder, std::string& name);
bool split_path(const std::wstring& path, std::wstring& folder, std::wstring& name);
