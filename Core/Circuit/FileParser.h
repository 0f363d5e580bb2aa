// The character rules shared by the circuit file and test vector readers: comments and trimming.
#ifndef MORVANE_CORE_CIRCUIT_FILEPARSER_H
#define MORVANE_CORE_CIRCUIT_FILEPARSER_H

#include <string>

/// Base of the line-oriented readers. A "#" outside double quotes starts a comment that runs to the end
/// of the line.
class FileParser
{
public:
    virtual ~FileParser() = default;

    /// Cuts the comment off `line` into `comment` (trimmed), then trims `line`. True if a "#" was found;
    /// `comment` is emptied when there was none.
    bool preprocess_line(std::string& line, std::string& comment);

protected:
    /// As preprocess_line, without trimming `line`.
    bool _extract_comment(std::string& line, std::string& comment);
    /// Index of the first `c` outside double quotes, npos if none. Each quote outside quotes opens and
    /// the next one closes; a search for the quote itself finds the first one.
    static size_t _find_first_not_within_quotes(const std::string& s, char c);
};

#endif  // MORVANE_CORE_CIRCUIT_FILEPARSER_H
