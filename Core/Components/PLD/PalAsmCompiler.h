// The compiler of PLD equations: source text in, pins, expression trees and macrocells of an
// ATF22V10C out, with no fuse map between.
//
// A source is line-oriented; ";" starts a comment everywhere and blank lines count. In order: a
// device line, a name line, the first pin list (pin 1 upward), the second pin list (numbering on),
// equations, and optionally "DESCRIPTION" followed by free text. An equation is a line holding "="
// and every following line without one; it is only processed when the next "=" line or
// "DESCRIPTION" closes it, so a last equation that nothing closes is lost without a word.
//
// Two passes: tokenize() needs no device and checks the pin lists and the shape of the equations;
// _build_program() makes the pins, trees and macrocells and checks what needs the device. Every
// failure of either pass is an ErrorWithPos naming the source line.
#ifndef MORVANE_CORE_COMPONENTS_PLD_PALASMCOMPILER_H
#define MORVANE_CORE_COMPONENTS_PLD_PALASMCOMPILER_H

#include "Core/Components/PLD/PldTokens.h"
#include "Core/Simulation/Dir.h"

#include <set>
#include <string>
#include <vector>

class ATF22V10C;
class LogicExpression;
class OLMC;

/// Lives for one compilation: the device makes one on the stack and calls compile.
class PalAsmCompiler
{
public:
    explicit PalAsmCompiler(ATF22V10C* device) : _device(device) {}
    explicit PalAsmCompiler(ATF22V10C& device) : _device(&device) {}
    virtual ~PalAsmCompiler() = default;

    /// Both passes; the first failure is thrown and leaves the device half built.
    void compile(const std::string& source);
    /// The first pass alone.
    void tokenize(const std::string& source, PldTokens& tokens);
    /// A declared name as its port is called: "/OE" gives "_OE".
    static std::string to_port_name(std::string name);

private:
    // First pass.
    void _process(const std::string& line, PldTokens& tokens);
    void _read_pin_list(const std::string& line, std::vector<std::string>& pins);
    void _check_pin_configuration(const PldTokens& tokens);
    void _check_pin(std::set<std::string>& seen, const std::string& name, int pin, int line);
    int _read_equation(std::string line, PldTokens& tokens);
    void _process_logical_equation_line(PldTokens& tokens);
    void _obtain_assignee(std::string& text, Equation& equation);
    void _process_equation_part(std::string& current, Equation& equation, const std::string& text, int line);

    // Second pass.
    void _build_program(const PldTokens& tokens);
    void _make_pld_pin(const std::string& name, Morvane::Dir dir, int pin);
    LogicExpression* _make_expression(const std::vector<EquationSymbol>& symbols);
    LogicExpression* _make_composite(const std::vector<EquationSymbol>& symbols, int op);
    LogicExpression* _make_sum_of_prod(const std::vector<EquationSymbol>& symbols);
    LogicExpression* _make_non_op_expression(const std::string& name, int line);
    void _set_up_new_olmc(const Equation& equation);
    void _connect_expression(const Equation& equation, LogicExpression* expression, OLMC* olmc);
    void _check_term_capacity(const Equation& equation, LogicExpression* expression, OLMC* olmc);
    void _check_tristate(const Equation& equation, LogicExpression* expression, OLMC* olmc);

    int _state = 0;        // section being read: device, name, two pin lists, equations, description
    int _line_number = 0;  // current source line, from 1
    ATF22V10C* _device;    // not owned
    std::vector<LinePart> _pending_lines;  // the equation being collected
};

#endif  // MORVANE_CORE_COMPONENTS_PLD_PALASMCOMPILER_H
