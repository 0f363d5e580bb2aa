#include "Core/Components/PLD/OLMC.h"

#include "Core/Components/PLD/ATF22V10C.h"
#include "Core/Components/PLD/LogicExpression.h"
#include "Core/Simulation/Logic.h"
#include "Core/Support/Error.h"

namespace {

const Value low('L', 1);
const Value high('H', 1);
const Value undefined('u', 1);

}  // namespace

// PldOutputPin

PldOutputPin::PldOutputPin(const std::string& name, bool inverted, int pin_number)
    : Pin(Morvane::Output, name),
      _inverted(inverted),
      _pin_number(pin_number)
{
}

void PldOutputPin::set(const Value& value, int time, const Value& tristate)
{
    if (tristate == 'H')
        Port::set(_inverted ? Logic::Inv(value) : value, time);
    else if (tristate == 'L')
        Port::set(Value('z', 1), time);
    else
        Port::set(undefined, time);
}

// OLMC

OLMC::OLMC(ATF22V10C* device, PldOutputPin* output_pin, bool inverts_input_expr)
    : ValueHistory(1),
      _device(device),
      _output_pin(output_pin),
      _inverts_input_expr(inverts_input_expr)
{
}

void OLMC::init()
{
    int t0 = -3 * _device->delay();
    set(low, t0);
    _output_pin->set(low, t0, high);
    bool input_constant = _input_expression == nullptr || _input_expression->is_constant();
    bool tristate_constant = _tristate_expression == nullptr || _tristate_expression->is_constant();
    if (input_constant && tristate_constant)
        evaluate(-_device->delay(), 0);
}

void OLMC::reset()
{
    clear();
}

bool OLMC::depends_on(Port* pin) const
{
    return (_input_expression != nullptr && _input_expression->depends_on(pin)) ||
           (_tristate_expression != nullptr && _tristate_expression->depends_on(pin));
}

bool OLMC::depends_on(OLMC* olmc) const
{
    return (_input_expression != nullptr && _input_expression->depends_on(olmc)) ||
           (_tristate_expression != nullptr && _tristate_expression->depends_on(olmc));
}

void OLMC::check_config()
{
    if (_output_pin == nullptr)
        throw Error("No output pin");
    if (_input_expression == nullptr)
        throw Error("No input expression for output '%s'", pin_name().c_str());
    _input_expression->check();
    if (_tristate_expression != nullptr)
        _tristate_expression->check();
}

int OLMC::product_term_capacity() const
{
    static constexpr int capacity[] = {9, 11, 13, 15, 17, 17, 15, 13, 11, 9};  // pins 14 to 23
    int pin = pin_number();
    return pin >= 14 && pin <= 23 ? capacity[pin - 14] : 0;
}

Value OLMC::eval_input_expr(int time)
{
    // An empty input (a register whose tree was never checked) reads as undefined.
    Value v = _input_expression != nullptr ? _input_expression->value(time) : undefined;
    if (_inverts_input_expr)
        v = Logic::Inv(v);
    set(v, time);
    return v;
}

Value OLMC::tristate_value(int time) const
{
    return _tristate_expression != nullptr ? _tristate_expression->value(time) : high;
}

void OLMC::set_output_pin(const Value& value, int time, const Value& tristate, int suppress)
{
    Value before = pin_value(time);
    _output_pin->set(value, time, tristate);
    if (suppress == 0 && before != pin_value(time))
        _device->olmc_changed(this, time);
}

void OLMC::set_output_pin(const Value& value, int time, int suppress)
{
    set_output_pin(value, time, tristate_value(time), suppress);
}

// CombinatorialOLMC

CombinatorialOLMC::CombinatorialOLMC(ATF22V10C* device, PldOutputPin* output_pin, bool inverts_input_expr,
                                     bool tristate_output)
    : OLMC(device, output_pin, inverts_input_expr),
      _tristate_output(tristate_output)
{
}

void CombinatorialOLMC::evaluate(int input_time, int output_time)
{
    Value v = eval_input_expr(input_time);
    Value e = tristate_value(input_time);
    set_output_pin(v, output_time, e, 0);
}

// RegisterOLMC

RegisterOLMC::RegisterOLMC(ATF22V10C* device, PldOutputPin* output_pin, bool inverts_input_expr)
    : OLMC(device, output_pin, inverts_input_expr)
{
    _register_history.set(low, 0);
}

void RegisterOLMC::init()
{
    int t0 = -3 * _device->delay();
    _register_history.set(low, t0);
    set_output_pin(low, t0, high, 1);
}

void RegisterOLMC::reset()
{
    _register_history.clear();
    OLMC::reset();
}

void RegisterOLMC::evaluate(int input_time, int output_time)
{
    Pin* clk = _device->clk();
    if (clk != nullptr && clk->ValueHistory::positive_flank_at(input_time))
        evaluate_clk(input_time, output_time);
    else
        evaluate_non_clk(input_time, output_time);
}

void RegisterOLMC::evaluate_non_clk(int input_time, int output_time)
{
    Value ar = AR_value(input_time);
    if (ar == 'H')
        _register_history.set(low, output_time);
    else if (ar == 'u')
        _register_history.set(undefined, output_time);
    set_output_pin(_register_history.value(output_time), output_time, tristate_value(input_time), 0);
}

void RegisterOLMC::evaluate_clk(int input_time, int output_time)
{
    // The pin is left alone while AR holds the register.
    Value ar = AR_value(input_time);
    if (ar == 'H') {
        _register_history.set(low, output_time);
        return;
    }
    if (ar == 'u') {
        _register_history.set(undefined, output_time);
        return;
    }
    Value d = eval_input_expr(input_time);
    Value sp = SP_value(input_time);
    if (sp == 'H')
        _register_history.set(high, output_time);
    else if (sp == 'L')
        _register_history.set(d, output_time);
    else
        _register_history.set(undefined, output_time);
    set_output_pin(_register_history.value(output_time), output_time, tristate_value(input_time), 0);
}

Value RegisterOLMC::AR_value(int time) const
{
    return _ar_expression != nullptr ? _ar_expression->value(time) : low;
}

Value RegisterOLMC::SP_value(int time) const
{
    return _sp_expression != nullptr ? _sp_expression->value(time) : low;
}

bool RegisterOLMC::depends_on(Port* pin) const
{
    return OLMC::depends_on(pin) || (_ar_expression != nullptr && _ar_expression->depends_on(pin)) ||
           (_sp_expression != nullptr && _sp_expression->depends_on(pin)) || pin == _device->clk();
}

bool RegisterOLMC::depends_on(OLMC* olmc) const
{
    return OLMC::depends_on(olmc) || (_ar_expression != nullptr && _ar_expression->depends_on(olmc)) ||
           (_sp_expression != nullptr && _sp_expression->depends_on(olmc));
}

void RegisterOLMC::check_config()
{
    if (_ar_expression != nullptr)
        _ar_expression->check();
    if (_sp_expression != nullptr)
        _sp_expression->check();
}
