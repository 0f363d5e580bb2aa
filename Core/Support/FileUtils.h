// File access shared by the circuit, test vector and memory image readers.
#ifndef MORVANE_CORE_SUPPORT_FILEUTILS_H
#define MORVANE_CORE_SUPPORT_FILEUTILS_H

#include <filesystem>
#include <string>

/// The whole file; throws Error if it cannot be stat'ed.
std::string file_contents(const char* path);
/// Seconds, in spite of the name; 0 if the file cannot be stat'ed.
long long file_modification_time_in_ns(const std::string& path);
/// fnmatch with no flags.
bool filename_matches_pattern(const std::string& pattern, const std::string& name);
/// From the user database entry of the real user; "" if there is none.
std::string get_home_directory();
/// Nothing to do on this platform: dot files are hidden by their name.
void hide_file(const std::string& path);
std::filesystem::path relative_file_path(const std::string& path, const std::string& base);

#endif  // MORVANE_CORE_SUPPORT_FILEUTILS_H
