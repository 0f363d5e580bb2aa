#include "Core/Components/PLD/LogicExpression.h"

#include "Core/Components/PLD/ATF22V10C.h"
#include "Core/Components/PLD/OLMC.h"
#include "Core/Simulation/Logic.h"
#include "Core/Simulation/Port.h"
#include "Core/Support/Error.h"
#include "Core/Support/TLog.h"

#include <cstdio>

int OLMCFeedback::call_count = 0;

void Vcc::print(int)
{
    TLog()("VCC: H");
}

void Gnd::print(int)
{
    TLog()("GND: L");
}

Value InputPort::value(int time) const
{
    Value v = _port->value(time);
    return _inverted ? Logic::Inv(v) : v;
}

void InputPort::check()
{
    if (_port == nullptr)
        throw Error("No port is defined in InputPort");
}

void InputPort::print(int time)
{
    TLog()("%sInputPort '%s': %s", _inverted ? "[Inverted]" : "", _port->name().c_str(), value(time).c_str());
}

Value OLMCFeedback::value(int time) const
{
    // A register's own input is not checked at compilation, so an unresolved read can reach here.
    if (_olmc == nullptr)
        throw Error("OLMC feedback for '%s' is unresolved.", _name.c_str());
    Value v = _olmc->feedback_value(time);
    TLog()("OLMCFeedback::value(%d) from OLMC '%s': value='%s'", time, _olmc->pin_name().c_str(), v.c_str());
    return v;
}

bool OLMCFeedback::depends_on(Port* port) const
{
    return _olmc != nullptr && _olmc->output_pin() == port;
}

bool OLMCFeedback::is_constant() const
{
    if (_olmc == nullptr)
        return false;
    if (++call_count > 1) {
        --call_count;
        return false;
    }
    bool result = _olmc->input_expression() != nullptr && _olmc->input_expression()->is_constant();
    if (_olmc->tristate_expression() != nullptr)
        result = result && _olmc->tristate_expression()->is_constant();
    if (dynamic_cast<RegisterOLMC*>(_olmc) != nullptr)
        result = false;
    --call_count;
    return result;
}

void OLMCFeedback::resolve_feedbacks(ATF22V10C* device)
{
    _olmc = device->olmc(_name);
}

void OLMCFeedback::check()
{
    if (_olmc == nullptr)
        throw Error("OLMC feedback for '%s' is unresolved.", _name.c_str());
}

void OLMCFeedback::print(int time)
{
    TLog()("OLMCFeedback '%s': %s", _name.c_str(), value(time).c_str());
}

void UndeclaredPin::resolve_feedbacks(ATF22V10C*)
{
    throw ErrorWithPos(
        _line, 0,
        "Error on line %d: Cannot make sense of expression '%s' on Maybe a missing pin declaration?", _line,
        _name.c_str());
}

Value CompositeExpr::value(int time) const
{
    switch (_op) {
    case And: {
        Value result('H', 1);
        for (const LogicExpression* child : _children)
            result = Logic::And(result, child->value(time));
        return result;
    }
    case Or: {
        Value result('L', 1);
        for (const LogicExpression* child : _children)
            result = Logic::Or(result, child->value(time));
        return result;
    }
    case Invert:
        return Logic::Inv(_only_child_value(time, "Invert"));
    case Identity:
        return _only_child_value(time, "Identity");
    default:
        std::fprintf(stderr, "*** ERROR: Attempt to get the value of an EqNode with op='%s' at t=%d ",
                     _op == Invalid ? "INVALID" : "Illegal EqOperator", time);
        return Value();
    }
}

Value CompositeExpr::_only_child_value(int time, const char* name) const
{
    if (_children.size() != 1)
        throw Error("Malformed %s CompositeExpr: expecting 1 argument, not %d.", name,
                    static_cast<int>(_children.size()));
    return _children[0]->value(time);
}

bool CompositeExpr::depends_on(Port* port) const
{
    for (const LogicExpression* child : _children) {
        if (child->depends_on(port))
            return true;
    }
    return false;
}

bool CompositeExpr::depends_on(OLMC* olmc) const
{
    for (const LogicExpression* child : _children) {
        if (child->depends_on(olmc))
            return true;
    }
    return false;
}

bool CompositeExpr::is_constant() const
{
    for (const LogicExpression* child : _children) {
        if (!child->is_constant())
            return false;
    }
    return true;
}

void CompositeExpr::resolve_feedbacks(ATF22V10C* device)
{
    for (LogicExpression* child : _children)
        child->resolve_feedbacks(device);
}

void CompositeExpr::check()
{
    for (LogicExpression* child : _children)
        child->check();
}

int CompositeExpr::count_product_terms()
{
    if (_op != Or)
        return 1;
    int count = 0;
    for (LogicExpression* child : _children)
        count += child->count_product_terms();
    return count;
}

void CompositeExpr::print(int time)
{
    for (LogicExpression* child : _children)
        child->print(time);
}

void CompositeExpr::add_child(LogicExpression* node)
{
    if (node == nullptr) {
        TLog()("CompositeExpr::add_child: node == 0");
        return;
    }
    _children.push_back(node);
}
