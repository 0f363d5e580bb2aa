#include "Core/Simulation/PinSpec.h"

#include "Core/Support/Error.h"
#include "Core/Support/StringUtils.h"

#include <algorithm>
#include <cstdio>

PinSpec::PinSpec(const std::string& expression) : _expression(expression)
{
    if (!_expression.empty())
        _make_indices();
}

PinSpec::PinSpec(int a, int b) : _expression(fmt("%d:%d", a, b))
{
    _fill_indices_from_to(a, b);
}

int PinSpec::highest_bit() const
{
    if (_indices.empty())
        return 0;
    return *std::max_element(_indices.begin(), _indices.end());
}

bool PinSpec::includes_bit(int bit) const
{
    if (bit < 0)
        return false;
    if (_expression.empty())
        return true;
    return std::find(_indices.begin(), _indices.end(), bit) != _indices.end();
}

int PinSpec::sparse_to_dense(int bit) const
{
    if (_expression.empty())
        return bit;
    auto it = std::find(_indices.begin(), _indices.end(), bit);
    if (it == _indices.end())
        throw Error("Cannot find bit %s in PinSpec.", std::to_string(bit).c_str());
    return static_cast<int>(it - _indices.begin());
}

namespace {

// Values hold at most 255 bits, so no net has a bit beyond this; a larger number is a typo, and a
// range up to it would only fill memory.
constexpr int highest_possible_bit = 254;

bool is_bit_number(int n)
{
    return n >= 0 && n <= highest_possible_bit;
}

}  // namespace

void PinSpec::_make_indices()
{
    for (const std::string& item : split(_expression, ';')) {
        int from = 0;
        int to = 0;
        bool is_range = item.find(':') != std::string::npos;
        // sscanf ignores what follows the numbers, so "7:4x" reads as 7:4.
        bool valid = is_range ? std::sscanf(item.c_str(), "%d:%d", &from, &to) == 2 && is_bit_number(from) &&
                                    is_bit_number(to)
                              : std::sscanf(item.c_str(), "%d", &from) == 1 && is_bit_number(from);
        if (!valid)
            throw Error("Invalid pin spec expression: '%s'.", _expression.c_str());
        if (is_range)
            _fill_indices_to_from(from, to);
        else
            _indices.push_back(from);
    }
    // The text lists the most significant bit first; dense bit 0 is its last.
    std::reverse(_indices.begin(), _indices.end());
}

void PinSpec::_fill_indices_from_to(int from, int to)
{
    int step = from >= to ? 1 : -1;
    for (int bit = to; bit != from + step; bit += step)
        _indices.push_back(bit);
}

void PinSpec::_fill_indices_to_from(int from, int to)
{
    int step = to >= from ? 1 : -1;
    for (int bit = from; bit != to + step; bit += step)
        _indices.push_back(bit);
}
