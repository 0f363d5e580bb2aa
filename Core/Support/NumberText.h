// What counts as a number, a time or a bit stream in the files, and how times print.
#ifndef MORVANE_CORE_SUPPORT_NUMBERTEXT_H
#define MORVANE_CORE_SUPPORT_NUMBERTEXT_H

#include <cstdint>
#include <string>

// The patterns are searches: text around a match is ignored.
/// True if strtol in base 10 consumes the whole text; "" is true.
bool is_a_decimal_number(std::string& s);
bool is_hex(const std::string& s);
bool contains_hex(const std::string& s);
bool is_input_bit_stream(const std::string& s);
bool is_output_bit_stream(const std::string& s);
bool is_time_str(const std::string& s);

/// The first number found as 0x.., $.., 0b.. or decimal; all ones if there is none.
/// Throws std::out_of_range ("stoul") past 64 bits.
uint64_t str_to_number(std::string s);
/// A time such as "10 us" or "1.5ms" in ns; no unit means ns, no number gives 0.
int str_to_time(std::string s);
/// A time in the largest unit up to s, e.g. 1500 gives "1.5 us". With `decimals` 0 the precision shows
/// exactly the significant digits; otherwise it is `decimals` and the number is padded on the left.
std::string time_to_str(long long ns, int decimals);

#endif  // MORVANE_CORE_SUPPORT_NUMBERTEXT_H
