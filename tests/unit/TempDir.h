// A scratch directory for tests that read files; it is the working directory while it lives.
#ifndef MORVANE_TESTS_UNIT_TEMPDIR_H
#define MORVANE_TESTS_UNIT_TEMPDIR_H

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

/// Made under the system's temporary directory and removed with all its files. Relative names resolve
/// inside it, so messages that quote file names stay the same from run to run.
class TempDir
{
public:
    TempDir() : _previous(std::filesystem::current_path())
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "morvane_XXXXXX").string();
        if (!mkdtemp(pattern.data()))
            throw std::runtime_error("cannot make a temporary directory");
        _path = pattern;
        std::filesystem::current_path(_path);
    }
    ~TempDir()
    {
        std::filesystem::current_path(_previous);
        std::filesystem::remove_all(_path);
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    /// Writes `text` to `name`, relative to the directory, making folders on the way.
    void write(const std::string& name, const std::string& text) const
    {
        std::filesystem::path file = _path / name;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << text;
    }
    const std::filesystem::path& path() const { return _path; }

private:
    std::filesystem::path _previous;  // working directory to go back to
    std::filesystem::path _path;      // the directory itself
};

#endif  // MORVANE_TESTS_UNIT_TEMPDIR_H
