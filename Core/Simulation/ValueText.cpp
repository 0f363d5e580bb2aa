#include "Core/Simulation/ValueText.h"

#include "Core/Simulation/BitState.h"
#include "Core/Support/StringUtils.h"

#include <utility>

namespace {

char upper_letter(char c)
{
    return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c;
}

std::map<char, std::string> build_hex_table()
{
    static const char* const digits[16] = {"LLLL", "LLLH", "LLHL", "LLHH", "LHLL", "LHLH", "LHHL", "LHHH",
                                           "HLLL", "HLLH", "HLHL", "HLHH", "HHLL", "HHLH", "HHHL", "HHHH"};
    std::map<char, std::string> table;
    for (int i = 0; i < 10; ++i)
        table[static_cast<char>('0' + i)] = digits[i];
    for (int i = 10; i < 16; ++i) {
        table[static_cast<char>('A' + i - 10)] = digits[i];
        table[static_cast<char>('a' + i - 10)] = digits[i];
    }
    // Only the capitals stand for four bits: a small letter is one bit of that state.
    table['U'] = "uuuu";
    table['P'] = "pppp";
    table['N'] = "nnnn";
    table['Z'] = "zzzz";
    table['X'] = "xxxx";
    return table;
}

}  // namespace

const std::map<char, std::string>& hex_table()
{
    static const std::map<char, std::string> table = build_hex_table();
    return table;
}

std::string hexpand(const std::string& in)
{
    const auto& table = hex_table();
    std::string out;
    out.reserve(in.size() * 4);
    for (char c : in) {
        auto row = table.find(c);
        if (row == table.end())
            out += c;
        else
            out += row->second;
    }
    return out;
}

std::string hexpress(const std::string& in)
{
    std::string bits = in;
    remove_spaces(bits);
    const int length = static_cast<int>(bits.size());

    // Built from the right end and mirrored at the end, so that a short group lands on the left.
    std::string out;
    for (int end = length; end >= 4; end -= 4) {
        int group = end - 4;
        unsigned digit = 0;
        bool numeric = true;
        for (int p = 0; p < 4; ++p) {
            char l = Morvane::lower_letter(bits[static_cast<std::size_t>(end - 1 - p)]);
            if (l == 'h')
                digit += 1u << p;
            else if (l != 'l')
                numeric = false;
        }
        if (numeric)
            add_hex_char(out, digit);
        else
            add_bits(bits, out, group, 4);
    }
    add_bits(bits, out, 0, static_cast<unsigned>(length % 4));
    reverse(out);
    return out;
}

void add_bits(const std::string& from, std::string& to, int pos, unsigned count)
{
    if (count == 0)
        return;
    auto at = [&from](int i) { return from[static_cast<std::size_t>(i)]; };
    if (count == 4 && at(pos) == at(pos + 1) && at(pos) == at(pos + 2) && at(pos) == at(pos + 3)) {
        to += upper_letter(at(pos));
        return;
    }
    for (int i = pos + static_cast<int>(count) - 1; i >= pos; --i)
        to += at(i);
}

void add_hex_char(std::string& to, unsigned digit)
{
    if (digit < 10)
        to += static_cast<char>('0' + digit);
    else if (digit < 16)
        to += static_cast<char>('A' + digit - 10);
}

std::string arrange_in_groups(const std::string& text, unsigned group_size)
{
    std::string out = text;
    if (group_size == 0)
        return out;
    const long step = group_size;
    for (long pos = static_cast<long>(text.size()) - step; pos > 0; pos -= step)
        out.insert(static_cast<std::size_t>(pos), 1, ' ');
    return out;
}

std::string arrange_in_groups(const char* text, unsigned group_size)
{
    return arrange_in_groups(std::string(text), group_size);
}

void canonize(std::string& text)
{
    for (char& c : text) {
        if (c == 'l')
            c = 'L';
        else if (c == 'h')
            c = 'H';
    }
}

void reverse(std::string& text)
{
    if (text.size() < 2)
        return;
    for (std::size_t i = 0, j = text.size() - 1; i < j; ++i, --j)
        std::swap(text[i], text[j]);
}
