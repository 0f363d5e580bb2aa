#include "Core/Support/StringUtils.h"

#include <algorithm>
#include <cctype>
#include <cstdarg>
#include <cstdio>
#include <sstream>

std::string& ltrim(std::string& s, const std::string& chars)
{
    s.erase(0, s.find_first_not_of(chars));
    return s;
}

std::string& rtrim(std::string& s, const std::string& chars)
{
    // npos + 1 wraps to 0, so a text made only of `chars` empties.
    s.erase(s.find_last_not_of(chars) + 1);
    return s;
}

std::string& trim(std::string& s, const std::string& chars)
{
    return ltrim(rtrim(s, chars), chars);
}

std::string& to_lower(std::string& s)
{
    for (char& c : s)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return s;
}

std::string& to_upper(std::string& s)
{
    for (char& c : s)
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return s;
}

std::string tolower(const std::string& s)
{
    std::string copy = s;
    return to_lower(copy);
}

std::string toupper(const std::string& s)
{
    std::string copy = s;
    return to_upper(copy);
}

std::string remove_spaces(std::string& s)
{
    s.erase(std::remove(s.begin(), s.end(), ' '), s.end());
    return s;
}

std::string& remove_any_carrige_returns(std::string& s)
{
    s.erase(std::remove(s.begin(), s.end(), '\r'), s.end());
    return s;
}

bool replace(std::string& s, const std::string& from, const std::string& to)
{
    size_t pos = s.find(from);
    if (pos == std::string::npos)
        return false;
    s.replace(pos, from.size(), to);
    return true;
}

bool starts_with(const std::string& s, const std::string& prefix)
{
    return s.starts_with(prefix);
}

bool ends_with(const std::string& s, const std::string& suffix)
{
    return s.ends_with(suffix);
}

std::vector<std::string> split(const std::string& s, char separator)
{
    std::vector<std::string> pieces;
    std::istringstream in(s);
    std::string piece;
    while (std::getline(in, piece, separator))
        pieces.push_back(piece);
    return pieces;
}

std::vector<std::string> csv_string_to_vector(const std::string& s)
{
    std::vector<std::string> pieces = split(s, ',');
    for (std::string& piece : pieces)
        trim(piece);
    return pieces;
}

std::string fmt(const char* format, ...)
{
    constexpr size_t first_try_size = 1024;
    char buffer[first_try_size];
    va_list args;
    va_start(args, format);
    va_list second_args;
    va_copy(second_args, args);
    int needed = vsnprintf(buffer, sizeof buffer, format, args);
    va_end(args);

    std::string result;
    if (needed >= 0 && static_cast<size_t>(needed) < first_try_size) {
        result.assign(buffer, static_cast<size_t>(needed));
    } else if (needed >= 0) {
        result.resize(static_cast<size_t>(needed));
        vsnprintf(result.data(), result.size() + 1, format, second_args);
    }
    va_end(second_args);
    return result;
}

void extract_number_suffix(const std::string& text, std::string& rest, int& number)
{
    rest = text;
    std::string digits;
    for (;;) {
        // substr throws out_of_range once `rest` has run empty: a name needs a non-digit stem.
        char last = rest.substr(rest.size() - 1)[0];
        if (!std::isdigit(static_cast<unsigned char>(last)))
            break;
        digits.insert(digits.begin(), last);
        rest.pop_back();
    }
    number = digits.empty() ? 1 : std::stoi(digits);
}

std::string escape_string(const std::string& text)
{
    static const char hex_digits[] = "0123456789ABCDEF";
    std::string out = "\"";
    for (char c : text) {
        unsigned char u = static_cast<unsigned char>(c);
        switch (c) {
        case '\t':
            out += "\\t";
            break;
        case '\n':
            out += "\\n";
            break;
        case '\r':
            out += "\\r";
            break;
        case '"':
        case '\\':
            out += '\\';
            out += c;
            break;
        default:
            // Bytes above 128 pass through so that UTF-8 text stays readable.
            if ((u >= ' ' && u <= '~') || u > 128) {
                out += c;
            } else {
                out += "\\x";
                out += hex_digits[u >> 4];
                out += hex_digits[u & 0xF];
            }
        }
    }
    out += '"';
    return out;
}

std::string class_to_type_name(const char* class_name)
{
    return class_to_type_name(std::string(class_name));
}

std::string class_to_type_name(const std::string& class_name)
{
    if (class_name == "MC27C64")
        return "27C64";
    // A maker's two-letter prefix before a 74-series number: DM74LS00 is the 74LS00.
    if (class_name.size() >= 4 && class_name.compare(2, 2, "74") == 0)
        return class_name.substr(2);
    return class_name;
}
