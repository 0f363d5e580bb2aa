#include "Core/Support/NumberText.h"

#include "Core/Support/StringUtils.h"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace {

// Scanned by hand: the library's regular expressions recurse once per character and run out of
// stack on the long cells of a test vector file.
bool is_hex_digit(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

bool is_decimal_digit(char c)
{
    return c >= '0' && c <= '9';
}

bool is_binary_digit(char c)
{
    return c == '0' || c == '1';
}

// Index of the first digit of the leftmost place where the prefix (its letter in either case) is
// followed by at least one digit; npos if there is none.
size_t find_digits_after(const std::string& s, std::string_view prefix, bool (*is_digit)(char))
{
    for (size_t at = 0; at + prefix.size() < s.size(); ++at) {
        bool prefix_fits = true;
        for (size_t i = 0; i < prefix.size(); ++i) {
            char c = s[at + i];
            char p = prefix[i];
            if (!(c == p || (p >= 'a' && p <= 'z' && c == p - 'a' + 'A')))
                prefix_fits = false;
        }
        if (prefix_fits && is_digit(s[at + prefix.size()]))
            return at + prefix.size();
    }
    return std::string::npos;
}

std::string digit_run(const std::string& s, size_t at, bool (*is_digit)(char))
{
    size_t end = at;
    while (end < s.size() && is_digit(s[end]))
        ++end;
    return s.substr(at, end - at);
}

int count_trailing_zeros(const std::string& digits)
{
    size_t last = digits.find_last_not_of('0');
    return static_cast<int>(last == std::string::npos ? digits.size() : digits.size() - last - 1);
}

// Truncates toward zero; a value out of range or NaN gives INT_MIN, as the processor's own
// conversion does, without the undefined behaviour of a plain cast.
int truncate_to_int(double value)
{
    if (!(value > static_cast<double>(INT_MIN) - 1.0 && value < static_cast<double>(INT_MAX) + 1.0))
        return INT_MIN;
    return static_cast<int>(value);
}

}  // namespace

bool is_a_decimal_number(std::string& s)
{
    char* end = nullptr;
    std::strtol(s.c_str(), &end, 10);
    return *end == '\0';
}

bool is_hex(const std::string& s)
{
    return !s.empty() && std::all_of(s.begin(), s.end(), is_hex_digit);
}

bool contains_hex(const std::string& s)
{
    return std::any_of(s.begin(), s.end(), is_hex_digit);
}

bool is_input_bit_stream(const std::string& s)
{
    return !s.empty() && s.find_first_not_of("HLUZhluz") == std::string::npos;
}

bool is_output_bit_stream(const std::string& s)
{
    return !s.empty() && s.find_first_not_of("HLUZXhluzx") == std::string::npos;
}

bool is_time_str(const std::string& s)
{
    // Digits, dots, commas and blanks, then at most a unit prefix and at most an s.
    size_t digits_end = s.find_first_not_of("0123456789., ");
    if (s.empty() || digits_end == 0)
        return false;
    if (digits_end == std::string::npos)
        return true;
    std::string_view unit = std::string_view(s).substr(digits_end);
    if (!unit.empty() && (unit[0] == 'n' || unit[0] == 'u' || unit[0] == 'm'))
        unit.remove_prefix(1);
    return unit.empty() || unit == "s";
}

uint64_t str_to_number(std::string s)
{
    // The order matters: 0x10 also holds the decimal 0 and 10. Within a form the leftmost digits win.
    size_t at = 0;
    if ((at = find_digits_after(s, "0x", is_hex_digit)) != std::string::npos)
        return std::stoul(digit_run(s, at, is_hex_digit), nullptr, 16);
    if ((at = find_digits_after(s, "$", is_hex_digit)) != std::string::npos)
        return std::stoul(digit_run(s, at, is_hex_digit), nullptr, 16);
    if ((at = find_digits_after(s, "0b", is_binary_digit)) != std::string::npos)
        return std::stoul(digit_run(s, at, is_binary_digit), nullptr, 2);
    if ((at = find_digits_after(s, "", is_decimal_digit)) != std::string::npos)
        return std::stoul(digit_run(s, at, is_decimal_digit), nullptr, 10);
    return ~uint64_t{0};
}

int str_to_time(std::string s)
{
    s.erase(std::remove_if(
                s.begin(), s.end(),
                [](char c) { return std::string_view(white_space).find(c) != std::string_view::npos; }),
            s.end());
    double value = 0;
    if (std::sscanf(s.c_str(), "%lf", &value) != 1)
        return 0;
    auto has = [&s](char unit) { return s.find(unit) != std::string::npos; };
    // n is tested first so that "ns" is not read as seconds.
    double scale = 1;  // ns per unit
    if (has('n'))
        scale = 1;
    else if (has('u'))
        scale = 1000;
    else if (has('m'))
        scale = 1000000;
    else if (has('s'))
        scale = 1000000000;
    return truncate_to_int(value * scale);
}

std::string time_to_str(long long ns, int decimals)
{
    long long divisor = 1;   // ns per unit
    int divisor_digits = 0;  // zeros of the divisor
    const char* prefix = "n";
    if (ns > 999999999) {
        divisor = 1000000000;
        divisor_digits = 9;
        prefix = "";
    } else if (ns > 999999) {
        divisor = 1000000;
        divisor_digits = 6;
        prefix = "m";
    } else if (ns > 999) {
        divisor = 1000;
        divisor_digits = 3;
        prefix = "u";
    }

    std::string digits = std::to_string(ns);
    int length = static_cast<int>(digits.size());
    int significant = length - count_trailing_zeros(digits);
    int before_point = length - divisor_digits;
    int precision;
    int width;
    if (decimals <= 0) {
        precision = std::max(0, significant - before_point);
        width = significant + (precision > 0 ? 1 : 0);
    } else {
        precision = decimals;
        width = (ns < 1000 ? length : significant) + 1;
    }
    return fmt("%*.*lf %ss", width, precision, static_cast<double>(ns) / static_cast<double>(divisor),
               prefix);
}
