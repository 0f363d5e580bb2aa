#include "Core/Support/NumberText.h"

#include "Core/Support/Regex.h"
#include "Core/Support/StringUtils.h"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace {

bool matches(const std::string& s, const std::regex& re)
{
    return std::regex_search(s, re);
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
    static const std::regex re("^[0-9a-fA-F]+$");
    return matches(s, re);
}

bool contains_hex(const std::string& s)
{
    static const std::regex re("[0-9a-fA-F]+");
    return matches(s, re);
}

bool is_input_bit_stream(const std::string& s)
{
    static const std::regex re("^[HLUZhluz]+$");
    return matches(s, re);
}

bool is_output_bit_stream(const std::string& s)
{
    static const std::regex re("^[HLUZXhluzx]+$");
    return matches(s, re);
}

bool is_time_str(const std::string& s)
{
    static const std::regex re("^[0-9., ]+[num]?s?$");
    return matches(s, re);
}

uint64_t str_to_number(std::string s)
{
    struct NumberForm
    {
        std::regex pattern;  // group 1 holds the digits
        int base;            // radix of the digits
    };
    // The order matters: 0x10 also holds the decimal 0 and 10.
    static const NumberForm forms[] = {
        {std::regex("0[xX]([0-9a-fA-F]+)"), 16},
        {std::regex("[$]([0-9a-fA-F]+)"), 16},
        {std::regex("0[bB]([01]+)"), 2},
        {std::regex("([0-9]+)"), 10},
    };
    std::smatch match;
    for (const NumberForm& form : forms) {
        if (std::regex_search(s, match, form.pattern))
            return std::stoul(match[1].str(), nullptr, form.base);
    }
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
