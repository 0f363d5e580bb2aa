// The output logic macrocells of the PLD, between an expression tree and an output pin, and the
// output pin that inverts and floats.
//
// Every evaluation has two times: the input time, one device delay back, when the trees are read,
// and the output time, when results are stored and driven. A macrocell's own history holds its logic
// value by input time, which is what feedback reads: ahead of the pin's inversion and tristate stage.
//
// A register takes its input on a rising edge of the clock pin (L one ns before the input time, H at
// it; a rise from U is no edge). AR, at H, clears it at any evaluation and wins over SP; SP, at H,
// presets it on an edge. AR at U makes the register U. The enable is active high: L floats the pin,
// U makes it U.
#ifndef MORVANE_CORE_COMPONENTS_PLD_OLMC_H
#define MORVANE_CORE_COMPONENTS_PLD_OLMC_H

#include "Core/Simulation/Port.h"
#include "Core/Simulation/ValueHistory.h"

#include <string>

class ATF22V10C;
class LogicExpression;

/// An output pin of the device; the inversion of a name declared with "/" happens here.
class PldOutputPin : public Pin
{
public:
    PldOutputPin(const std::string& name, bool inverted, int pin_number);

    int pin_number() const { return _pin_number; }
    bool inverted() const { return _inverted; }
    /// `tristate` H drives the value (inverted if declared so), L floats, anything else gives U.
    void set(const Value& value, int time, const Value& tristate);
    using Port::set;

private:
    bool _inverted;   // declared with a leading "/"
    int _pin_number;  // position on the device
};

/// The history it derives from is one bit wide: its logic value by input time.
class OLMC : public ValueHistory
{
public:
    OLMC(ATF22V10C* device, PldOutputPin* output_pin, bool inverts_input_expr);

    /// Drives L long before time 0, so feedback read at a negative time is defined; a macrocell
    /// whose trees are constant is evaluated for time 0.
    virtual void init();
    virtual void evaluate(int input_time, int output_time) = 0;
    virtual Value feedback_value(int time) = 0;
    virtual void reset();
    virtual bool tristate_output() const = 0;
    virtual bool depends_on(Port* pin) const;
    virtual bool depends_on(OLMC* olmc) const;
    /// Throws Error on a missing pin or input, or a defect in a tree.
    virtual void check_config();

    void set_output_pin(PldOutputPin* pin) { _output_pin = pin; }
    PldOutputPin* output_pin() const { return _output_pin; }
    const std::string& pin_name() const { return _output_pin->name(); }
    int pin_number() const { return _output_pin->pin_number(); }
    Value pin_value(int time) const { return _output_pin->ValueHistory::value(time); }
    ATF22V10C* device() const { return _device; }
    /// From the device's data sheet; 0 for a pin that is no output.
    int product_term_capacity() const;
    void set_input_expression(LogicExpression* e) { _input_expression = e; }
    LogicExpression* input_expression() const { return _input_expression; }
    void set_tristate_expression(LogicExpression* e) { _tristate_expression = e; }
    LogicExpression* tristate_expression() const { return _tristate_expression; }
    bool inverts_input_expr() const { return _inverts_input_expr; }

    /// The input tree at `time`, inverted if the equation's left side had "/", stored in the own
    /// history at that time.
    Value eval_input_expr(int time);
    /// H without an enable.
    Value tristate_value(int time) const;
    /// Drives the pin; unless suppressed, a change of the pin tells the device.
    void set_output_pin(const Value& value, int time, const Value& tristate, int suppress);
    void set_output_pin(const Value& value, int time, int suppress);

protected:
    ATF22V10C* _device;  // not owned

private:
    PldOutputPin* _output_pin;                        // not owned
    bool _inverts_input_expr;                         // the left side had "/"
    LogicExpression* _input_expression = nullptr;     // not owned
    LogicExpression* _tristate_expression = nullptr;  // not owned; null: always enabled
};

class CombinatorialOLMC : public OLMC
{
public:
    CombinatorialOLMC(ATF22V10C* device, PldOutputPin* output_pin, bool inverts_input_expr,
                      bool tristate_output);

    void evaluate(int input_time, int output_time) override;
    /// What eval_input_expr computed for inputs up to `time`.
    Value feedback_value(int time) override { return value(time); }
    bool tristate_output() const override { return _tristate_output; }

private:
    bool _tristate_output;  // the suffix "T": an enable may follow
};

class RegisterOLMC : public OLMC
{
public:
    RegisterOLMC(ATF22V10C* device, PldOutputPin* output_pin, bool inverts_input_expr);

    /// L in the register and on the pin, without telling the device.
    void init() override;
    void evaluate(int input_time, int output_time) override;
    Value feedback_value(int time) override { return _register_history.value(time); }
    void reset() override;
    bool tristate_output() const override { return true; }
    /// Also AR, SP and the clock pin.
    bool depends_on(Port* pin) const override;
    /// Also AR and SP.
    bool depends_on(OLMC* olmc) const override;
    /// AR and SP only: the register's own trees go unchecked.
    void check_config() override;

    void set_ar_expression(LogicExpression* e) { _ar_expression = e; }
    void set_sp_expression(LogicExpression* e) { _sp_expression = e; }
    /// L without an expression.
    Value AR_value(int time) const;
    Value SP_value(int time) const;
    void evaluate_clk(int input_time, int output_time);
    void evaluate_non_clk(int input_time, int output_time);

private:
    LogicExpression* _ar_expression = nullptr;  // the device's; not owned
    LogicExpression* _sp_expression = nullptr;  // the device's; not owned
    ValueHistory _register_history{0};          // the flip-flop's state by output time
};

#endif  // MORVANE_CORE_COMPONENTS_PLD_OLMC_H
