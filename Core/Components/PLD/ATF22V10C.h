// A 24-pin programmable logic device whose pins, logic and timing come from a program in the
// equation language of the PLD compiler.
//
// It has no fixed ports: compiling the program makes them, with the names the program gives, before
// the circuit connects nets to them. The program is the parameter "program" (the source in double
// quotes, each newline written as backslash-n); without one, a file named after the instance with
// ".pld" beside the circuit file that holds it; without either, a built-in 4-bit counter.
//
// One delay, the "delay" parameter (10 ns by default), is the pin-to-pin time of every path. An
// input change evaluates, one delay later, the macrocells whose trees read that pin; a macrocell
// whose pin changes asks, one more delay later, for the macrocells that read its feedback.
#ifndef MORVANE_CORE_COMPONENTS_PLD_ATF22V10C_H
#define MORVANE_CORE_COMPONENTS_PLD_ATF22V10C_H

#include "Core/Components/Component.h"
#include "Core/Components/PLD/PldTokens.h"

#include <memory>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

class CombinatorialOLMC;
class LogicExpression;
class OLMC;
class RegisterOLMC;

class ATF22V10C : public SingleDelayComponent
{
public:
    static constexpr const char* class_name = "ATF22V10C";
    /// The built-in program, in the quoted form a parameter holds.
    static const char* const default_program_src;
    static ParaMap default_parameters();
    static std::string parameter_description();

    /// No program.
    ATF22V10C(const std::string& name, int delay);
    /// Compiles the program of the parameters; a positioned compile error is thrown again with the
    /// instance's name in front.
    ATF22V10C(const std::string& name, const ParaMap& params);
    ~ATF22V10C() override;

    /// Moves the instance's program file along.
    void rename_callback(const std::string& old_name, const std::string& new_name) override;
    /// Finds the program file beside the circuit file, or falls back to the built-in program.
    void circuit_connect_callback(Circuit* circuit) override;
    void reset() override;
    void init(int end_time) override;
    /// Every macrocell: combinatorial ones first.
    void evaluate(int time) override;
    /// The macrocell of an output pin, or those whose trees read an input.
    void evaluate_port(int time, Port* port) override;
    std::vector<std::string> get_valid_param_keys() override { return {"delay", "program"}; }
    /// Inputs are read one delay back, and the clock one ns before that for its edge.
    int history_reach() const override
    {
        return delay() < 0 ? 1 : (delay() < unbounded_reach ? delay() + 1 : unbounded_reach);
    }
    void add_pin(Pin* pin) override;
    void update_after_param_change() override;

    // For the compiler.
    PldProgram& program() { return _program; }
    /// Takes ownership; a node already held isn't added twice.
    void add_expression(LogicExpression* expression);
    void add(LogicExpression* expression) { add_expression(expression); }
    void add(RegisterOLMC* olmc);
    void add(CombinatorialOLMC* olmc);
    /// By pin name, with or without the active-low mark; registers searched first.
    OLMC* olmc(const std::string& name) const;
    OLMC* olmc(const Port* port) const;
    bool has_olmc(const std::string& name) const { return olmc(name) != nullptr; }
    /// The port of a name with or without "/" (the positive name wins), null with a trace line.
    Port* find_port(const std::string& name, bool& is_inverted, bool& port_inverted, bool& is_register);
    void set_ar_expression(const Equation& equation, LogicExpression* expression);
    void set_sp_expression(const Equation& equation, LogicExpression* expression);
    void provide_ar_and_sp_to_olmcs();
    void resolve_feedbacks();
    void check_olmc_configs();

    // For the macrocells.
    Pin* clk() const { return _clk; }
    /// Asks for the macrocells that read `olmc`'s feedback, one delay later.
    void olmc_changed(OLMC* olmc, int time);

    // Program handling.
    const std::string& hdl_src() const { return _hdl_src; }
    void set_hdl_src(const std::string& src);
    /// Also writes the quoted form to the parameter "program".
    void set_hdl_src_and_params(const std::string& src);
    /// Compiles without deleting what is there.
    void compile_hdl_program();
    /// Drops the old program's pins, trees and macrocells, then compiles.
    void set_new_program(const std::string& src);
    void set_default_hdl_program();
    const std::vector<RegisterOLMC*>& register_olmcs() const { return _register_olmcs; }
    const std::vector<CombinatorialOLMC*>& combinatorial_olmcs() const { return _combinatorial_olmcs; }
    LogicExpression* ar_expression() const { return _ar_expression; }
    LogicExpression* sp_expression() const { return _sp_expression; }
    void delete_resources();
    static std::string instance_to_filename(std::string name) { return name + ".pld"; }
    std::string pld_file_name(const std::string& suffix) const { return instance_name() + suffix + ".pld"; }

    static std::string _decode_hdl_string(const std::string& text);
    static std::string _encode_hdl_string(const std::string& text);

private:
    /// Who hears of a pin's change: its own macrocell for an output, else the macrocells whose
    /// trees read it, registers first.
    struct Route
    {
        const Port* port = nullptr;
        OLMC* own = nullptr;
        std::vector<OLMC*> readers;
    };

    /// Null where no route was made.
    const Route* _route(const Port* port) const;
    Route _walk_route(Port* port) const;
    void _make_routes();
    void _update_program();
    void _ensure_compiled_hdl_program();
    void _compile();
    void _check_clk_pin();
    /// The text of the instance's program file beside its circuit file, if there is one.
    std::optional<std::string> _read_program_file(Circuit* circuit) const;

    std::vector<std::unique_ptr<LogicExpression>> _expressions;  // everything the compiler made
    std::unordered_set<const LogicExpression*> _expression_set;  // the same, for the look-up
    std::vector<Pin*> _pins;                                     // owned; every pin add_pin saw
    LogicExpression* _ar_expression = nullptr;                   // in _expressions; null without AR
    LogicExpression* _sp_expression = nullptr;                   // in _expressions; null without SP
    Pin* _clk = nullptr;                                         // clocks the registers
    std::vector<RegisterOLMC*> _register_olmcs;                  // owned, in order of first equations
    std::vector<CombinatorialOLMC*> _combinatorial_olmcs;        // owned, likewise
    std::string _hdl_src;                                        // the source, decoded
    PldProgram _program;                                         // the text parts of the source
    bool _program_compiled = false;                              // the macrocells match _hdl_src
    bool _program_from_unit = false;  // the Unit line gave "program": no file is looked for
    std::vector<Route> _routes;       // of every port, made once a compilation succeeded
};

#endif  // MORVANE_CORE_COMPONENTS_PLD_ATF22V10C_H
