#include "Core/Circuit/Line.h"

#include "Core/Support/Error.h"
#include "Core/Support/NumberText.h"

#include <cstdio>
#include <unordered_set>
#include <utility>

namespace {

bool is_array_base_char(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
           c == '(' || c == ')' || c == ',';
}

bool is_digit(char c)
{
    return c >= '0' && c <= '9';
}

// A whole-token match of ([a-zA-Z0-9_(),]+)\[([0-9]+)\], done by hand: the library's matcher
// recurses once per character and runs out of stack on long tokens.
bool split_array_name(const std::string& token, std::string& base, std::string& count)
{
    size_t open = token.find('[');
    if (open == 0 || open == std::string::npos || token.size() < open + 3 || token.back() != ']')
        return false;
    for (size_t i = 0; i < open; ++i) {
        if (!is_array_base_char(token[i]))
            return false;
    }
    for (size_t i = open + 1; i + 1 < token.size(); ++i) {
        if (!is_digit(token[i]))
            return false;
    }
    base = token.substr(0, open);
    count = token.substr(open + 1, token.size() - open - 2);
    return true;
}

}  // namespace

Line::Line(int line, std::string file) : line_number(line), filename(std::move(file)) {}

MetaDataLine::MetaDataLine(const std::string& key_text, const std::string& value_text, int line,
                           std::string file)
    : Line(line, std::move(file)),
      key(key_text),
      value(value_text)
{
}

NetLine::NetLine(std::vector<std::string>& tokens, int line, std::string file) : Line(line, std::move(file))
{
    if (tokens.size() < 3)
        throw Error("Error in %s:%d: Net needs a name and at least one port: Net <name> <ports...>",
                    filename.c_str(), line_number);
    if (tokens.size() == 3)
        fprintf(stderr, "*** WARNING %s:%d: Only one port in Net. May indicate missing net name.\n",
                filename.c_str(), line_number);
    name = tokens[1];
    tokens.erase(tokens.begin(), tokens.begin() + 2);
    std::unordered_set<std::string> seen;
    for (const std::string& port : tokens) {
        if (!seen.insert(port).second)
            throw Error("Error in %s:%d: Repeated port: '%s'.", filename.c_str(), line_number, port.c_str());
        ports.push_back(port);
    }
}

std::string NetLine::first_common_pin_name(const NetLine& other) const
{
    for (const std::string& port : ports) {
        for (const std::string& other_port : other.ports) {
            if (port == other_port)
                return port;
        }
    }
    return "";
}

PinLine::PinLine(std::vector<std::string>& tokens, int line, std::string file) : Line(line, std::move(file))
{
    if (tokens.size() < 3)
        throw Error("Error on line %d, in file %s: Pin takes at least 2 arguments: Pin <direction> <name>",
                    line_number, filename.c_str());
    direction = tokens[1];
    names.assign(tokens.begin() + 2, tokens.end());
}

PortLine::PortLine(std::vector<std::string>& tokens, int line, std::string file) : Line(line, std::move(file))
{
    if (tokens.size() < 4)
        throw Error("Error on line %d, in file %s: Port takes at least 3 arguments: Port <direction> <size> "
                    "<name>",
                    line_number, filename.c_str());
    direction = tokens[1];
    size = tokens[2];
    if (!is_a_decimal_number(size))
        throw Error("Error on line %d, in file %s: port size must be a number. '%s' is not.", line_number,
                    filename.c_str(), size.c_str());
    if (direction != "Input" && direction != "Output" && direction != "Inout")
        throw Error("Error on line %d, in file %s: port direction must Input or Output, '%s' is neither.",
                    line_number, filename.c_str(), direction.c_str());
    names.assign(tokens.begin() + 3, tokens.end());
}

UnitLine::UnitLine(std::vector<std::string> tokens, int line, std::string file) : Line(line, std::move(file))
{
    if (tokens.size() < 3)
        throw Error("Error on line %d, in file %s: Unit takes at least 2 arguments: Unit <type> <name>",
                    line_number, filename.c_str());
    type = tokens[1];
    for (size_t t = 2; t < tokens.size(); ++t) {
        std::string base;
        std::string count_text;
        if (!split_array_name(tokens[t], base, count_text)) {
            names.push_back(tokens[t]);
            continue;
        }
        // Beyond 32 bits this throws std::out_of_range ("stoi"), which callers let pass.
        int count = std::stoi(count_text);
        if (count > max_array_size)
            throw Error("Error on line %d, in file %s: Unit array '%s' is too large: at most %d instances.",
                        line_number, filename.c_str(), tokens[t].c_str(), max_array_size);
        for (int i = 0; i < count; ++i)
            names.push_back(base + "[" + std::to_string(i) + "]");
    }
}
