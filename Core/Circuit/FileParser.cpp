#include "Core/Circuit/FileParser.h"

#include "Core/Support/StringUtils.h"

bool FileParser::preprocess_line(std::string& line, std::string& comment)
{
    bool found = _extract_comment(line, comment);
    trim(line);
    return found;
}

bool FileParser::_extract_comment(std::string& line, std::string& comment)
{
    size_t hash = _find_first_not_within_quotes(line, '#');
    if (hash == std::string::npos) {
        comment.clear();
        return false;
    }
    comment = line.substr(hash + 1);
    trim(comment);
    line.erase(hash);
    return true;
}

size_t FileParser::_find_first_not_within_quotes(const std::string& s, char c)
{
    bool in_quotes = false;
    for (size_t i = 0; i < s.size(); ++i) {
        if (s[i] == c && !in_quotes)
            return i;
        if (s[i] == '"')
            in_quotes = !in_quotes;
    }
    return std::string::npos;
}
