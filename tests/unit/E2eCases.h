// The circuit and test vector files of the end-to-end cases, for tests that run over all of them.
#ifndef MORVANE_TESTS_UNIT_E2ECASES_H
#define MORVANE_TESTS_UNIT_E2ECASES_H

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

/// One pair of files that a case hands to morvane, as absolute paths.
struct E2eCase
{
    std::string name;           // the folder of the first case that uses the pair
    std::filesystem::path ctc;  // the circuit file
    std::filesystem::path tv;   // the test vector file
};

/// Every pair that some case's cmd names (examples included), once, in the order of the folders.
inline std::vector<E2eCase> e2e_cases()
{
    namespace fs = std::filesystem;
    std::vector<fs::path> folders;
    for (const auto& entry : fs::directory_iterator(fs::path(MORVANE_SOURCE_DIR) / "tests/e2e"))
        if (fs::exists(entry.path() / "cmd"))
            folders.push_back(entry.path());
    std::sort(folders.begin(), folders.end());

    std::vector<E2eCase> cases;
    std::set<std::pair<fs::path, fs::path>> seen;
    for (const fs::path& folder : folders) {
        std::ifstream cmd(folder / "cmd");
        std::string word;
        fs::path ctc;
        fs::path tv;
        while (cmd >> word) {
            if (ctc.empty() && word.ends_with(".ctc"))
                ctc = fs::weakly_canonical(folder / word);
            else if (!ctc.empty() && tv.empty() && word.ends_with(".tv"))
                tv = fs::weakly_canonical(folder / word);
        }
        if (!tv.empty() && fs::exists(ctc) && fs::exists(tv) && seen.insert({ctc, tv}).second)
            cases.push_back({folder.filename().string(), ctc, tv});
    }
    return cases;
}

/// The whole file as it stands.
inline std::string file_text(const std::filesystem::path& path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

#endif  // MORVANE_TESTS_UNIT_E2ECASES_H
