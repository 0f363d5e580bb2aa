// The right side of a PLD equation as a tree: leaves read an input pin, a macrocell's feedback or a
// constant; inner nodes are And, Or, Invert and Identity.
//
// A tree has no state: every value is of a given time. Nothing is reduced or cached, so the device
// walks its trees at each evaluation; And and Or evaluate every child (no short cut), so a feedback
// read further right still writes its trace line. The device owns every node; nodes never delete
// their children.
#ifndef MORVANE_CORE_COMPONENTS_PLD_LOGICEXPRESSION_H
#define MORVANE_CORE_COMPONENTS_PLD_LOGICEXPRESSION_H

#include "Core/Simulation/Value.h"

#include <string>
#include <vector>

class ATF22V10C;
class OLMC;
class Port;

class LogicExpression
{
public:
    LogicExpression() = default;
    virtual ~LogicExpression() = default;
    LogicExpression(const LogicExpression&) = delete;
    LogicExpression& operator=(const LogicExpression&) = delete;

    /// One bit.
    virtual Value value(int time) const = 0;
    virtual bool depends_on(Port*) const { return false; }
    virtual bool depends_on(OLMC*) const { return false; }
    virtual bool is_constant() const { return false; }
    virtual void resolve_feedbacks(ATF22V10C*) {}
    /// Throws Error on a defect.
    virtual void check() {}
    /// A leaf or a product is one term; an Or sums its children.
    virtual int count_product_terms() = 0;
    /// To the trace log.
    virtual void print(int time) = 0;
};

class Vcc : public LogicExpression
{
public:
    Value value(int) const override { return Value('H', 1); }
    bool is_constant() const override { return true; }
    int count_product_terms() override { return 1; }
    void print(int time) override;
};

class Gnd : public LogicExpression
{
public:
    Value value(int) const override { return Value('L', 1); }
    bool is_constant() const override { return true; }
    int count_product_terms() override { return 1; }
    void print(int time) override;
};

/// An input pin of the device. `inverted` means the pin was declared active low, so the tree sees
/// its logical level; a "/" written in the equation is an Invert node around this leaf.
class InputPort : public LogicExpression
{
public:
    InputPort(Port* port, bool inverted) : _port(port), _inverted(inverted) {}

    Value value(int time) const override;
    bool depends_on(Port* port) const override { return _port == port; }
    using LogicExpression::depends_on;
    void check() override;
    int count_product_terms() override { return 1; }
    void print(int time) override;

private:
    Port* _port;     // not owned
    bool _inverted;  // declared active low
};

/// The logic value of a macrocell, ahead of its pin's inversion and tristate stage, found by the
/// name of its output port once the whole program is known.
class OLMCFeedback : public LogicExpression
{
public:
    explicit OLMCFeedback(const std::string& name) : _name(name) {}

    /// Writes a trace line at every read.
    Value value(int time) const override;
    /// Whether `port` is the macrocell's output pin; only after resolving.
    bool depends_on(Port* port) const override;
    bool depends_on(OLMC* olmc) const override { return _olmc == olmc; }
    /// A nested call, from a feedback loop or anywhere else, answers false.
    bool is_constant() const override;
    void resolve_feedbacks(ATF22V10C* device) override;
    void check() override;
    int count_product_terms() override { return 1; }
    void print(int time) override;

    void set_olmc(OLMC* olmc) { _olmc = olmc; }
    OLMC* olmc() const { return _olmc; }
    const std::string& name() const { return _name; }

private:
    static int call_count;  // depth of is_constant calls across all feedbacks

    OLMC* _olmc = nullptr;  // not owned; null until resolved
    std::string _name;      // the output port's name
};

/// A reference to a name that no pin has, written with a "/". It stands in the tree without a
/// complaint until the feedbacks are resolved, and refuses then.
class UndeclaredPin : public LogicExpression
{
public:
    UndeclaredPin(const std::string& name, int line) : _name(name), _line(line) {}

    Value value(int) const override { return Value('u', 1); }
    void resolve_feedbacks(ATF22V10C*) override;
    int count_product_terms() override { return 1; }
    void print(int) override {}

private:
    std::string _name;  // as written, "/" included
    int _line;          // source line
};

class CompositeExpr : public LogicExpression
{
public:
    enum Operator
    {
        Invalid = 0,
        And = 1,
        Or = 2,
        Invert = 3,
        Identity = 4
    };

    CompositeExpr(Operator op, std::vector<LogicExpression*> children)
        : _op(op),
          _children(std::move(children))
    {
    }

    Value value(int time) const override;
    bool depends_on(Port* port) const override;
    bool depends_on(OLMC* olmc) const override;
    /// True without children.
    bool is_constant() const override;
    void resolve_feedbacks(ATF22V10C* device) override;
    void check() override;
    int count_product_terms() override;
    /// Only the leaves print.
    void print(int time) override;

    /// A null node is refused with a trace line.
    void add_child(LogicExpression* node);
    const std::vector<LogicExpression*>& children() const { return _children; }
    Operator op() const { return _op; }

private:
    Value _only_child_value(int time, const char* name) const;

    Operator _op;
    std::vector<LogicExpression*> _children;  // not owned
};

#endif  // MORVANE_CORE_COMPONENTS_PLD_LOGICEXPRESSION_H
