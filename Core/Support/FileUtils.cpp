#include "Core/Support/FileUtils.h"

#include "Core/Support/Error.h"

#include <fnmatch.h>
#include <fstream>
#include <pwd.h>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>

std::string file_contents(const char* path)
{
    struct stat info;
    if (stat(path, &info) != 0)
        throw Error("File '%s' does not exist", path);
    std::ifstream in(path, std::ios::binary);
    std::ostringstream contents;
    contents << in.rdbuf();
    return contents.str();
}

long long file_modification_time_in_ns(const std::string& path)
{
    struct stat info;
    if (stat(path.c_str(), &info) != 0)
        return 0;
    return static_cast<long long>(info.st_mtime);
}

bool filename_matches_pattern(const std::string& pattern, const std::string& name)
{
    return fnmatch(pattern.c_str(), name.c_str(), 0) != FNM_NOMATCH;
}

std::string get_home_directory()
{
    const passwd* entry = getpwuid(getuid());
    if (entry == nullptr || entry->pw_dir == nullptr)
        return std::string();
    return entry->pw_dir;
}

void hide_file(const std::string&) {}

std::filesystem::path relative_file_path(const std::string& path, const std::string& base)
{
    return std::filesystem::relative(path, base);
}
