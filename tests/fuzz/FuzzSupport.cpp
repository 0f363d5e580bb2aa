#include "FuzzSupport.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <unistd.h>

namespace fuzz {

namespace {

// Removes the scratch folder when the process ends normally.
struct ScratchDir
{
    std::string path;  // absolute, ends without a slash

    ScratchDir()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "morvane-fuzz-XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr) {
            perror("mkdtemp");
            abort();
        }
        path = pattern;
    }
    ~ScratchDir()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
};

}  // namespace

const std::string& scratch_dir()
{
    static ScratchDir dir;
    return dir.path;
}

std::string write_scratch_file(const std::string& name, const std::string& text)
{
    std::string path = scratch_dir() + "/" + name;
    FILE* file = fopen(path.c_str(), "wb");
    if (file == nullptr) {
        perror(path.c_str());
        abort();
    }
    fwrite(text.data(), 1, text.size(), file);
    fclose(file);
    return path;
}

void split_at_marker(const std::string& text, std::string& first, std::string& rest)
{
    const std::string marker = "\n%%\n";
    size_t at = text.find(marker);
    if (at == std::string::npos) {
        first = text;
        rest.clear();
        return;
    }
    first = text.substr(0, at + 1);
    rest = text.substr(at + marker.size());
}

}  // namespace fuzz
