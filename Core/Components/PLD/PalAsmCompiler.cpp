// The first pass of the PLD compiler: sections, pin lists and the shape of equations.
#include "Core/Components/PLD/PalAsmCompiler.h"

#include "Core/Support/Error.h"
#include "Core/Support/StringUtils.h"

#include <algorithm>
#include <cstring>

namespace {

enum Section
{
    device_line,
    name_line,
    first_pin_list,
    second_pin_list,
    equations,
    description
};

bool is_letter(char c)
{
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

bool is_digit(char c)
{
    return c >= '0' && c <= '9';
}

bool is_white_space(char c)
{
    return c != '\0' && std::strchr(white_space, c) != nullptr;
}

/// Everything from the first ';' cut off, then trimmed.
std::string prepared(std::string line)
{
    std::size_t comment = line.find(';');
    if (comment != std::string::npos)
        line.erase(comment);
    return trim(line);
}

/// A name begins with '/' or a letter, a '/' is followed by a letter, then letters or digits; a
/// suffix is letters only.
bool is_valid_character(const std::string& current, char c, bool in_suffix)
{
    if (in_suffix)
        return is_letter(c);
    if (current.empty())
        return c == '/' || is_letter(c);
    if (current == "/")
        return is_letter(c);
    return is_letter(c) || is_digit(c);
}

}  // namespace

void PalAsmCompiler::compile(const std::string& source)
{
    PldTokens tokens;
    tokenize(source, tokens);
    _build_program(tokens);
}

std::string PalAsmCompiler::to_port_name(std::string name)
{
    if (!name.empty() && name[0] == '/')
        name[0] = '_';
    return name;
}

void PalAsmCompiler::tokenize(const std::string& source, PldTokens& tokens)
{
    _state = device_line;
    _line_number = 1;
    _pending_lines.clear();
    std::size_t start = 0;
    while (start <= source.size()) {
        std::size_t end = source.find('\n', start);
        if (end == std::string::npos)
            end = source.size();
        std::string line = prepared(source.substr(start, end - start));
        if (!line.empty())
            _process(line, tokens);
        ++_line_number;
        start = end + 1;
    }
}

void PalAsmCompiler::_process(const std::string& line, PldTokens& tokens)
{
    switch (_state) {
    case device_line:
        tokens.device_name = line;
        _state = name_line;
        break;
    case name_line:
        tokens.instance_name = line;
        _state = first_pin_list;
        break;
    case first_pin_list:
        _read_pin_list(line, tokens.input_pins);
        _state = second_pin_list;
        break;
    case second_pin_list:
        _read_pin_list(line, tokens.output_pins);
        _check_pin_configuration(tokens);
        _state = equations;
        break;
    case equations:
        _state = _read_equation(line, tokens);
        break;
    default:
        tokens.description += line;
        break;
    }
}

void PalAsmCompiler::_read_pin_list(const std::string& line, std::vector<std::string>& pins)
{
    // Only a blank separates names: a tab stays inside one.
    std::size_t start = 0;
    while (start <= line.size()) {
        std::size_t end = line.find(' ', start);
        if (end == std::string::npos)
            end = line.size();
        std::string name = line.substr(start, end - start);
        trim(name);
        start = end + 1;
        if (name.empty())
            continue;
        if (name.size() == 1)
            throw ErrorWithPos(_line_number, 0,
                               "Syntax error on line %d: Pin name '%s' too short. Must be at least two "
                               "characters.",
                               _line_number, name.c_str());
        pins.push_back(name);
    }
}

void PalAsmCompiler::_check_pin_configuration(const PldTokens& tokens)
{
    // The first list is reported one line above the second, wherever it stood.
    std::set<std::string> seen;
    int pin = 1;
    for (const std::string& name : tokens.input_pins)
        _check_pin(seen, name, pin++, _line_number - 1);
    for (const std::string& name : tokens.output_pins)
        _check_pin(seen, name, pin++, _line_number);
}

void PalAsmCompiler::_check_pin(std::set<std::string>& seen, const std::string& name, int pin, int line)
{
    std::string lower = tolower(name);
    if (lower == "nc")
        return;
    if ((lower == "vcc") != (pin == 24))
        throw ErrorWithPos(line, 0, "Error on line %d: 'VCC' is a reserved name for pin 24.", line);
    if ((lower == "gnd") != (pin == 12))
        throw ErrorWithPos(line, 0, "Error on line %d: 'GND' is a reserved name for pin 12.", line);
    if ((lower == "clk" || lower == "clock") && pin != 1)
        throw ErrorWithPos(line, 0, "Error on line %d: The clock must be on pin 1.", line);
    if (!seen.insert(name).second)
        throw ErrorWithPos(line, 0, "Error on line %d: Duplicate pin: '%s'.", line, name.c_str());
}

int PalAsmCompiler::_read_equation(std::string line, PldTokens& tokens)
{
    line.erase(std::remove_if(line.begin(), line.end(), is_white_space), line.end());
    if (line == "DESCRIPTION") {
        _process_logical_equation_line(tokens);
        return description;
    }
    bool assigns = line.find('=') != std::string::npos;
    if (_pending_lines.empty()) {
        // Text ahead of the first equation belongs to nothing.
        if (assigns)
            _pending_lines.push_back(LinePart{line, _line_number});
    } else if (assigns) {
        _process_logical_equation_line(tokens);
        _pending_lines.assign(1, LinePart{line, _line_number});
    } else {
        _pending_lines.push_back(LinePart{line, _line_number});
    }
    return equations;
}

void PalAsmCompiler::_process_logical_equation_line(PldTokens& tokens)
{
    if (_pending_lines.empty())
        return;
    Equation equation;
    equation.line = _pending_lines.front().line;
    std::string first = _pending_lines.front().text;
    _obtain_assignee(first, equation);

    // An identifier may run on over a line break.
    std::string current;
    _process_equation_part(current, equation, first, _pending_lines.front().line);
    for (std::size_t i = 1; i < _pending_lines.size(); ++i)
        _process_equation_part(current, equation, _pending_lines[i].text, _pending_lines[i].line);

    int last_line = _pending_lines.back().line;
    if (current.empty())
        throw ErrorWithPos(last_line, 0, "Syntax error on line %d: An equation cannot end with an operator.",
                           last_line);
    equation.symbols.push_back(EquationSymbol{current, last_line});
    tokens.equations.push_back(std::move(equation));
}

void PalAsmCompiler::_obtain_assignee(std::string& text, Equation& equation)
{
    int line = equation.line;
    std::size_t assign = text.find('=');
    if (assign == std::string::npos)
        throw ErrorWithPos(line, 0, "Syntax error on line %d: expecting a '=' in an equation", line);
    if (assign < 2)
        throw ErrorWithPos(line, 0,
                           "Syntax error on line %d: identifiers required to be at least two characters "
                           "long.",
                           line);
    bool in_suffix = false;
    for (std::size_t i = 0; i < assign; ++i) {
        char c = text[i];
        if (c == '.') {
            // A second '.' joins the letters on both sides into one suffix.
            in_suffix = true;
            continue;
        }
        if (!is_valid_character(equation.name, c, in_suffix))
            throw ErrorWithPos(
                line, 0, "Syntax error on line %d: Illegal or misplaced character on line: '%c'", line, c);
        (in_suffix ? equation.suffix : equation.name) += c;
    }
    text.erase(0, assign + 1);
    if (text.empty())
        throw ErrorWithPos(line, 0, "Syntax error on line %d: empty expression on the right hand side.",
                           line);
}

void PalAsmCompiler::_process_equation_part(std::string& current, Equation& equation, const std::string& text,
                                            int line)
{
    // Faults are reported on the equation's first line, even from a continuation line.
    for (char c : text) {
        if (c == '*' || c == '+') {
            if (current.size() < 2)
                throw ErrorWithPos(equation.line, 0, "Syntax error on line %d: Identifier '%s' to short",
                                   equation.line, current.c_str());
            equation.symbols.push_back(EquationSymbol{current, line});
            equation.symbols.push_back(EquationSymbol{std::string(1, c), line});
            current.clear();
        } else if (is_valid_character(current, c, false)) {
            current += c;
        } else {
            throw ErrorWithPos(equation.line, 0,
                               "Syntax error on line %d: Illegal or misplaced character: '%c'", equation.line,
                               c);
        }
    }
}
