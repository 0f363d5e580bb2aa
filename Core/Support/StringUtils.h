// Text functions shared by every parser and printer.
#ifndef MORVANE_CORE_SUPPORT_STRINGUTILS_H
#define MORVANE_CORE_SUPPORT_STRINGUTILS_H

#include <string>
#include <vector>

/// The white space that all callers trim: tab, newline, vertical tab, form feed, carriage return, blank.
inline constexpr const char* white_space = "\t\n\v\f\r ";

// Trimming and case. The in-place forms return the string they changed.
std::string& ltrim(std::string& s, const std::string& chars = white_space);
std::string& rtrim(std::string& s, const std::string& chars = white_space);
std::string& trim(std::string& s, const std::string& chars = white_space);
std::string& to_lower(std::string& s);
std::string& to_upper(std::string& s);
std::string tolower(const std::string& s);
std::string toupper(const std::string& s);

/// Removes blanks only (not tabs) in place; returns a copy of the result.
std::string remove_spaces(std::string& s);
std::string& remove_any_carrige_returns(std::string& s);

/// Replaces the first occurrence only; false if there is none.
bool replace(std::string& s, const std::string& from, const std::string& to);
bool starts_with(const std::string& s, const std::string& prefix);
bool ends_with(const std::string& s, const std::string& suffix);

/// Pieces between separators: "a,,b" gives three, a trailing separator adds no empty piece, "" gives none.
std::vector<std::string> split(const std::string& s, char separator);
/// Pieces between commas, each trimmed of white space.
std::vector<std::string> csv_string_to_vector(const std::string& s);

/// printf into a string of any length; an encoding failure gives "".
[[gnu::format(printf, 1, 2)]] std::string fmt(const char* format, ...);

/// Splits trailing digits off `text`: "data12" gives "data" and 12, "data" gives "data" and 1.
/// A text of digits only throws std::out_of_range.
void extract_number_suffix(const std::string& text, std::string& rest, int& number);

/// The text in double quotes, with C escapes for quotes, backslashes and control chars.
std::string escape_string(const std::string& text);

/// The type name a file uses for a class: a maker's prefix before "74" goes, MC27C64 is 27C64.
std::string class_to_type_name(const char* class_name);
std::string class_to_type_name(const std::string& class_name);

#endif  // MORVANE_CORE_SUPPORT_STRINGUTILS_H
