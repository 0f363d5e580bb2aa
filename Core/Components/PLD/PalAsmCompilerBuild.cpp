// The second pass of the PLD compiler: pins, expression trees and macrocells on the device, and
// the checks that need it.
#include "Core/Components/PLD/ATF22V10C.h"
#include "Core/Components/PLD/LogicExpression.h"
#include "Core/Components/PLD/OLMC.h"
#include "Core/Components/PLD/PalAsmCompiler.h"
#include "Core/Support/Error.h"
#include "Core/Support/StringUtils.h"

#include <algorithm>

namespace {

bool is_operator(const EquationSymbol& symbol)
{
    return symbol.text == "*" || symbol.text == "+";
}

}  // namespace

void PalAsmCompiler::_build_program(const PldTokens& tokens)
{
    PldProgram& program = _device->program();
    program.device_name = tokens.device_name;
    program.instance_name = _device->instance_name();
    program.description = tokens.description;

    int pin = 1;
    for (const std::string& name : tokens.input_pins)
        _make_pld_pin(name, Morvane::Input, pin++);
    for (const std::string& name : tokens.output_pins) {
        _make_pld_pin(name, pin == 13 ? Morvane::Input : Morvane::Output, pin);
        ++pin;
    }

    for (const Equation& equation : tokens.equations) {
        // The right side is built before the left side is looked at.
        LogicExpression* expression = _make_expression(equation.symbols);
        if (equation.name == "AR") {
            _device->set_ar_expression(equation, expression);
            continue;
        }
        if (equation.name == "SP") {
            _device->set_sp_expression(equation, expression);
            continue;
        }
        if (!_device->has_olmc(equation.name))
            _set_up_new_olmc(equation);
        OLMC* olmc = _device->olmc(equation.name);
        bool written_inverted = equation.name[0] == '/';
        bool pin_inverted = olmc->pin_name()[0] == '_';
        if (equation.suffix == "E" && written_inverted != pin_inverted)
            throw ErrorWithPos(equation.line, 0,
                               "Error on line %d: 'inverted' tristate expressions for output '%s' are not "
                               "allowed.",
                               equation.line, equation.name.c_str());
        _connect_expression(equation, expression, olmc);
    }

    _device->provide_ar_and_sp_to_olmcs();
    _device->resolve_feedbacks();
    _device->check_olmc_configs();
}

void PalAsmCompiler::_make_pld_pin(const std::string& name, Morvane::Dir dir, int pin)
{
    std::string port_name = to_port_name(name);
    bool inverted = name[0] == '/';
    std::string lower = tolower(name);
    if (lower == "vcc" || lower == "gnd" || lower == "nc")
        return;
    if (Port* old = _device->port(port_name))
        _device->remove_port(old);
    // An input keeps no inversion: the trees read it through InputPort.
    if (dir == Morvane::Output)
        _device->add_pin(new PldOutputPin(port_name, inverted, pin));
    else
        _device->add_pin(new Pin(Morvane::Input, port_name));
}

LogicExpression* PalAsmCompiler::_make_expression(const std::vector<EquationSymbol>& symbols)
{
    bool has_and = false;
    bool has_or = false;
    for (const EquationSymbol& s : symbols) {
        has_and = has_and || s.text == "*";
        has_or = has_or || s.text == "+";
    }
    if (has_and && has_or)
        return _make_sum_of_prod(symbols);
    if (has_or)
        return _make_composite(symbols, CompositeExpr::Or);
    if (has_and)
        return _make_composite(symbols, CompositeExpr::And);
    return _make_non_op_expression(symbols[0].text, symbols[0].line);
}

LogicExpression* PalAsmCompiler::_make_composite(const std::vector<EquationSymbol>& symbols, int op)
{
    auto* node = new CompositeExpr(static_cast<CompositeExpr::Operator>(op), {});
    _device->add_expression(node);
    for (const EquationSymbol& s : symbols) {
        if (!is_operator(s))
            node->add_child(_make_non_op_expression(s.text, s.line));
    }
    return node;
}

LogicExpression* PalAsmCompiler::_make_sum_of_prod(const std::vector<EquationSymbol>& symbols)
{
    // Every node goes to the device at once, so that nothing leaks when a lookup fails.
    auto* root = new CompositeExpr(CompositeExpr::Or, {});
    _device->add_expression(root);
    auto* product = new CompositeExpr(CompositeExpr::And, {});
    _device->add_expression(product);
    const EquationSymbol* last = nullptr;
    for (const EquationSymbol& s : symbols) {
        if (!is_operator(s)) {
            last = &s;
        } else if (s.text == "*") {
            product->add_child(_make_non_op_expression(last->text, last->line));
        } else if (product->children().empty()) {
            root->add_child(_make_non_op_expression(last->text, last->line));
        } else {
            product->add_child(_make_non_op_expression(last->text, last->line));
            root->add_child(product);
            product = new CompositeExpr(CompositeExpr::And, {});
            _device->add_expression(product);
        }
    }
    // A lone term in the last place is dropped, and with it its lookup.
    if (!product->children().empty()) {
        product->add_child(_make_non_op_expression(last->text, last->line));
        root->add_child(product);
    }
    return root;
}

LogicExpression* PalAsmCompiler::_make_non_op_expression(const std::string& name, int line)
{
    LogicExpression* expression = nullptr;
    std::string lower = tolower(name);
    if (lower == "vcc") {
        expression = new Vcc();
    } else if (lower == "gnd") {
        expression = new Gnd();
    } else {
        bool inverted = false;
        bool port_inverted = false;
        bool is_register = false;
        Port* port = _device->find_port(name, inverted, port_inverted, is_register);
        if (port == nullptr && !inverted)
            throw ErrorWithPos(line, 0,
                               "Error on line %d: Cannot make sense of expression '%s' on Maybe a missing "
                               "pin declaration?",
                               line, name.c_str());
        if (port == nullptr)
            expression = new UndeclaredPin(name, line);
        else if (port->dir() == Morvane::Output)
            expression = new OLMCFeedback(port->name());
        else
            expression = new InputPort(port, port_inverted);
        if (inverted) {
            _device->add_expression(expression);
            expression = new CompositeExpr(CompositeExpr::Invert, {expression});
        }
    }
    _device->add_expression(expression);
    return expression;
}

void PalAsmCompiler::_set_up_new_olmc(const Equation& equation)
{
    bool inverted = false;
    bool port_inverted = false;
    bool is_register = false;
    Port* port = _device->find_port(equation.name, inverted, port_inverted, is_register);
    if (port == nullptr)
        throw ErrorWithPos(equation.line, 0,
                           "Error on line %d: Cannot find port '%s'. There is a equation that refers to it. "
                           "Check that it exits.",
                           equation.line, equation.name.c_str());
    auto* pin = dynamic_cast<PldOutputPin*>(port);
    if (pin == nullptr)
        throw ErrorWithPos(equation.line, 0, "Error on line %d: Pin '%s' cannot be used as an output.",
                           equation.line, equation.name.c_str());
    if (equation.suffix.empty() || equation.suffix == "T") {
        _device->add(new CombinatorialOLMC(_device, pin, inverted, equation.suffix == "T"));
    } else if (equation.suffix == "R") {
        _device->add(new RegisterOLMC(_device, pin, inverted));
    } else if (equation.suffix == "E") {
        throw ErrorWithPos(equation.line, 0,
                           "Error on line %d: Tristate expression precedes signal expression for output '%s'",
                           equation.line, equation.name.c_str());
    } else {
        // Name and suffix in this order here, the other way round for a later equation.
        throw ErrorWithPos(equation.line, 0, "Error on line %d: Unknown suffix '%s' for signal '%s'",
                           equation.line, equation.name.c_str(), equation.suffix.c_str());
    }
}

void PalAsmCompiler::_connect_expression(const Equation& equation, LogicExpression* expression, OLMC* olmc)
{
    if (equation.suffix.empty() || equation.suffix == "R" || equation.suffix == "T") {
        _check_term_capacity(equation, expression, olmc);
        olmc->set_input_expression(expression);
    } else if (equation.suffix == "E") {
        _check_tristate(equation, expression, olmc);
        olmc->set_tristate_expression(expression);
    } else {
        throw ErrorWithPos(equation.line, 0, "Error on line %d: Unknown suffix '%s' for signal '%s'",
                           equation.line, equation.suffix.c_str(), olmc->pin_name().c_str());
    }
}

void PalAsmCompiler::_check_term_capacity(const Equation& equation, LogicExpression* expression, OLMC* olmc)
{
    int terms = expression->count_product_terms();
    int capacity = olmc->product_term_capacity();
    if (terms > capacity)
        throw ErrorWithPos(equation.line, 0,
                           "Error on line %d: too many product terms (%d) for pin '%s' (pin %d on device). "
                           "Maximum capacity for this pin is %d.",
                           equation.line, terms, olmc->pin_name().c_str(), olmc->pin_number(), capacity);
}

void PalAsmCompiler::_check_tristate(const Equation& equation, LogicExpression* expression, OLMC* olmc)
{
    if (!olmc->tristate_output())
        throw ErrorWithPos(equation.line, 0,
                           "Error on line %d: signal '%s' does not have a tristate configuration, i.e. lacks "
                           "a .T or .R suffix.",
                           equation.line, olmc->pin_name().c_str());
    if (expression->count_product_terms() >= 2)
        throw ErrorWithPos(equation.line, 0,
                           "Error on line %d: tristate expression for pin '%s' has too many terms. Only one "
                           "is allowed.",
                           equation.line, olmc->pin_name().c_str());
}
