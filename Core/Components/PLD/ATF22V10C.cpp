#include "Core/Components/PLD/ATF22V10C.h"

#include "Core/Circuit/Circuit.h"
#include "Core/Components/PLD/LogicExpression.h"
#include "Core/Components/PLD/OLMC.h"
#include "Core/Components/PLD/PalAsmCompiler.h"
#include "Core/Simulation/EventSimulator.h"
#include "Core/Support/Error.h"
#include "Core/Support/StringUtils.h"
#include "Core/Support/TLog.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <sstream>
#include <system_error>

namespace fs = std::filesystem;

const char* const ATF22V10C::default_program_src =
    "\"GAL22V10\n"
    "instance_name\n"
    "; Pin declarations:\n"
    "Clock D0    D1    D2    D3    Set   Clear NC    NC  NC    NC   GND\n"
    "/OE   NC    NC    NC    NC    Q3    Q2    Q1    Q0  NC    NC   VCC\n"
    "; Equations:\n"
    "Q0.R =   /Clear *  Set *  D0        + /Clear * /Set * /Q0\n"
    "Q1.R =   /Clear *  Set *  D1        + /Clear * /Set * /Q1 *  Q0        + /Clear * /Set *  Q1 * /Q0\n"
    "Q2.R =   /Clear *  Set *  D2        + /Clear * /Set *  Q2 * /Q1        + /Clear * /Set *  Q2 * /Q0      "
    "  + /Clear * /Set * /Q2 *  Q1 *  Q0\n"
    "Q3.R =   /Clear *  Set *  D3        + /Clear * /Set *  Q3 * /Q2         + /Clear * /Set *  Q3 * /Q1     "
    "   + /Clear * /Set *  Q3 * /Q0       + /Clear * /Set * /Q3 *  Q2 *  Q1 *  Q0\n"
    "\n"
    "Q0.E=OE  ; .E is active high\n"
    "Q1.E=OE\n"
    "Q2.E=OE\n"
    "Q3.E=OE\n"
    "\n"
    "DESCRIPTION\n"
    "This is a 4-Bit-Counter\n"
    "Registered outputs are signed with the postfix .R\n"
    " Pin 'Set' HIGH while clock signal LOW/HIGH at pin 'Clock':\n"
    "        load Q0-Q3 with state of D0-D3\n"
    " Pin 'Clear' HIGH while clock signal:\n"
    "        Q0-Q3 are cleared\n"
    " Clock signal while pins 'Set' and 'Clear' are LOW:\n"
    "        increment counter\"";

namespace {

/// The port name, its positive form and its active-low form: "/OE" and "_OE" give "OE" and "_OE".
void make_invert_names(const std::string& name, std::string& positive, std::string& inverted,
                       bool& is_inverted)
{
    std::string port_name = PalAsmCompiler::to_port_name(name);
    is_inverted = !port_name.empty() && port_name[0] == '_';
    if (is_inverted) {
        inverted = port_name;
        positive = port_name.substr(1);
    } else {
        positive = port_name;
        inverted = "_" + port_name;
    }
}

template <class List> OLMC* first_with_pin(const List& olmcs, const std::string& a, const std::string& b)
{
    for (OLMC* o : olmcs) {
        if (o->pin_name() == a || o->pin_name() == b)
            return o;
    }
    return nullptr;
}

}  // namespace

ParaMap ATF22V10C::default_parameters()
{
    static const std::map<std::string, std::string> ATF22V10C_default_params = {
        {"delay", "10"}, {"program", default_program_src}};
    return ParaMap(ATF22V10C_default_params);
}

std::string ATF22V10C::parameter_description()
{
    return "<b>delay</b> The pin-to-time delay time in ns.";
}

ATF22V10C::ATF22V10C(const std::string& name, int delay) : SingleDelayComponent(class_name, name, delay) {}

ATF22V10C::ATF22V10C(const std::string& name, const ParaMap& params)
    : SingleDelayComponent(class_name, name, params)
{
    _program_from_unit = params.has_key("program") && params["program"] != default_program_src;
    try {
        update_after_param_change();
    } catch (const ErrorWithPos& e) {
        delete_resources();
        throw Error("ATF22V10C component instantiation error for '%s': %s", name.c_str(),
                    e.pos_message().c_str());
    } catch (...) {
        delete_resources();
        throw;
    }
}

ATF22V10C::~ATF22V10C()
{
    delete_resources();
}

void ATF22V10C::rename_callback(const std::string& old_name, const std::string& new_name)
{
    SingleDelayComponent::rename_callback(old_name, new_name);
    std::string from = instance_to_filename(old_name);
    std::string to = instance_to_filename(new_name);
    if (parent() != nullptr) {
        from = parent()->hierachical_filepath(from);
        to = parent()->hierachical_filepath(to);
    }
    std::error_code ec;
    if (fs::exists(from, ec))
        fs::rename(from, to, ec);
}

void ATF22V10C::circuit_connect_callback(Circuit* circuit)
{
    SingleDelayComponent::circuit_connect_callback(circuit);
    std::optional<std::string> src;
    if (!_program_from_unit)
        src = _read_program_file(circuit);
    // A copy of an instance or a second connection finds the same file: nothing to do then.
    if (src && (*src != _hdl_src || !_program_compiled)) {
        try {
            set_new_program(*src);
        } catch (const ErrorWithPos& e) {
            throw Error("ATF22V10C component instantiation error for '%s': %s", instance_name().c_str(),
                        e.pos_message().c_str());
        }
    } else if (!src && _hdl_src.empty()) {
        set_default_hdl_program();
    }
}

std::optional<std::string> ATF22V10C::_read_program_file(Circuit* circuit) const
{
    if (circuit == nullptr)
        return std::nullopt;
    std::string path = circuit->hierachical_filepath(instance_to_filename(instance_name()));
    std::error_code ec;
    if (!fs::exists(path, ec))
        return std::nullopt;
    std::ifstream file(path, std::ios::binary);
    if (!fs::is_regular_file(path, ec) || !file)
        throw Error("Cannot read the program file '%s' of '%s'.", path.c_str(), instance_name().c_str());
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

void ATF22V10C::reset()
{
    SingleDelayComponent::reset();
    for (RegisterOLMC* o : _register_olmcs)
        o->reset();
    for (CombinatorialOLMC* o : _combinatorial_olmcs)
        o->reset();
}

void ATF22V10C::init(int)
{
    _ensure_compiled_hdl_program();
    for (RegisterOLMC* o : _register_olmcs)
        o->init();
    for (CombinatorialOLMC* o : _combinatorial_olmcs)
        o->init();
    request_evaluation(0, this, nullptr);
}

void ATF22V10C::evaluate(int time)
{
    for (CombinatorialOLMC* o : _combinatorial_olmcs)
        o->evaluate(time - delay(), time);
    for (RegisterOLMC* o : _register_olmcs)
        o->evaluate(time - delay(), time);
}

void ATF22V10C::evaluate_port(int time, Port* port)
{
    const Route* found = _route(port);
    // Trees not compiled here have no routes: they are walked as they are.
    Route walked = found == nullptr ? _walk_route(port) : Route();
    const Route& route = found != nullptr ? *found : walked;
    if (route.own != nullptr) {
        route.own->evaluate(time - delay(), time);
        return;
    }
    // All read their inputs one delay back, so the order among them changes no value; it is kept
    // fixed because feedback reads write trace lines.
    for (OLMC* o : route.readers)
        o->evaluate(time - delay(), time);
}

const ATF22V10C::Route* ATF22V10C::_route(const Port* port) const
{
    for (const Route& r : _routes) {
        if (r.port == port)
            return &r;
    }
    return nullptr;
}

ATF22V10C::Route ATF22V10C::_walk_route(Port* port) const
{
    Route r;
    r.port = port;
    r.own = port->dir() == Morvane::Output ? olmc(port) : nullptr;
    for (RegisterOLMC* o : _register_olmcs) {
        if (o->depends_on(port))
            r.readers.push_back(o);
    }
    for (CombinatorialOLMC* o : _combinatorial_olmcs) {
        if (o->depends_on(port))
            r.readers.push_back(o);
    }
    return r;
}

void ATF22V10C::_make_routes()
{
    // The trees are fixed from here on, so who reads a pin is worked out once.
    _routes.clear();
    for (Port* p : ports())
        _routes.push_back(_walk_route(p));
}

void ATF22V10C::add_pin(Pin* pin)
{
    SingleDelayComponent::add_pin(pin);
    if (std::find(_pins.begin(), _pins.end(), pin) == _pins.end())
        _pins.push_back(pin);
}

void ATF22V10C::update_after_param_change()
{
    SingleDelayComponent::update_after_param_change();
    _update_program();
}

void ATF22V10C::add_expression(LogicExpression* expression)
{
    if (expression == nullptr || !_expression_set.insert(expression).second)
        return;
    _expressions.emplace_back(expression);
}

void ATF22V10C::add(RegisterOLMC* olmc)
{
    _register_olmcs.push_back(olmc);
}

void ATF22V10C::add(CombinatorialOLMC* olmc)
{
    _combinatorial_olmcs.push_back(olmc);
}

OLMC* ATF22V10C::olmc(const std::string& name) const
{
    std::string positive;
    std::string inverted;
    bool is_inverted = false;
    make_invert_names(name, positive, inverted, is_inverted);
    if (OLMC* o = first_with_pin(_register_olmcs, positive, inverted))
        return o;
    return first_with_pin(_combinatorial_olmcs, positive, inverted);
}

OLMC* ATF22V10C::olmc(const Port* port) const
{
    for (OLMC* o : _register_olmcs) {
        if (o->output_pin() == port)
            return o;
    }
    for (OLMC* o : _combinatorial_olmcs) {
        if (o->output_pin() == port)
            return o;
    }
    return nullptr;
}

Port* ATF22V10C::find_port(const std::string& name, bool& is_inverted, bool& port_inverted, bool& is_register)
{
    std::string positive;
    std::string inverted;
    make_invert_names(name, positive, inverted, is_inverted);
    Port* found = port(positive);
    if (found == nullptr)
        found = port(inverted);
    if (found == nullptr) {
        TLog()("Oops, can't find port '%s' or '%s'", inverted.c_str(), positive.c_str());
        return nullptr;
    }
    port_inverted = !found->name().empty() && found->name()[0] == '_';
    is_register = false;
    for (RegisterOLMC* o : _register_olmcs)
        is_register = is_register || o->output_pin() == found;
    return found;
}

void ATF22V10C::set_ar_expression(const Equation& equation, LogicExpression* expression)
{
    if (expression->count_product_terms() > 1)
        throw Error("Error on line %d: AR expressions cannot have multiple terms.", equation.line);
    _ar_expression = expression;
    add_expression(expression);
}

void ATF22V10C::set_sp_expression(const Equation& equation, LogicExpression* expression)
{
    if (expression->count_product_terms() > 1)
        throw Error("Error on line %d: SP expressions cannot have multiple terms.", equation.line);
    _sp_expression = expression;
    add_expression(expression);
}

void ATF22V10C::provide_ar_and_sp_to_olmcs()
{
    for (RegisterOLMC* o : _register_olmcs) {
        o->set_ar_expression(_ar_expression);
        o->set_sp_expression(_sp_expression);
    }
}

void ATF22V10C::resolve_feedbacks()
{
    if (_ar_expression != nullptr)
        _ar_expression->resolve_feedbacks(this);
    if (_sp_expression != nullptr)
        _sp_expression->resolve_feedbacks(this);
    auto resolve = [this](OLMC* o) {
        if (o->input_expression() != nullptr)
            o->input_expression()->resolve_feedbacks(this);
        if (o->tristate_expression() != nullptr)
            o->tristate_expression()->resolve_feedbacks(this);
    };
    for (RegisterOLMC* o : _register_olmcs)
        resolve(o);
    for (CombinatorialOLMC* o : _combinatorial_olmcs)
        resolve(o);
}

void ATF22V10C::check_olmc_configs()
{
    for (RegisterOLMC* o : _register_olmcs)
        o->check_config();
    for (CombinatorialOLMC* o : _combinatorial_olmcs)
        o->check_config();
    _check_clk_pin();
}

void ATF22V10C::_check_clk_pin()
{
    if (_register_olmcs.empty())
        return;
    _clk = nullptr;
    for (Port* p : ports()) {
        std::string lower = tolower(p->name());
        if (lower == "clk" || lower == "clock") {
            _clk = pin(p->name());
            break;
        }
    }
    if (_clk == nullptr)
        throw Error("Registered PLD outputs are defined but pin 1 is not defined as an clock input");
}

void ATF22V10C::olmc_changed(OLMC* changed, int time)
{
    Port* pin = changed->output_pin();
    const Route* found = _route(pin);
    Route walked = found == nullptr ? _walk_route(pin) : Route();
    for (OLMC* o : (found != nullptr ? *found : walked).readers)
        request_evaluation(time + delay(), this, o->output_pin());
}

void ATF22V10C::set_hdl_src(const std::string& src)
{
    _program_compiled = _program_compiled && src == _hdl_src;
    _hdl_src = src;
}

void ATF22V10C::set_hdl_src_and_params(const std::string& src)
{
    set_hdl_src(src);
    parameters()["program"] = _encode_hdl_string(src);
}

void ATF22V10C::_compile()
{
    _clk = nullptr;
    _routes.clear();
    PalAsmCompiler(this).compile(_hdl_src);
    _program_compiled = true;
    _make_routes();
}

void ATF22V10C::compile_hdl_program()
{
    _compile();
}

void ATF22V10C::set_new_program(const std::string& src)
{
    delete_resources();
    _hdl_src = src;
    _program_compiled = false;
    _compile();
}

void ATF22V10C::set_default_hdl_program()
{
    _hdl_src = default_program_src;
    replace(_hdl_src, "instance_name", instance_name());
    _program_compiled = false;
    _compile();
}

void ATF22V10C::_update_program()
{
    if (_hdl_src.empty() && parameters().has_key("program"))
        set_hdl_src(_decode_hdl_string(parameters()["program"]));
    if (_hdl_src.empty())
        return;
    if (!_program_compiled)
        _compile();
}

void ATF22V10C::_ensure_compiled_hdl_program()
{
    if (!_program_compiled)
        _compile();
}

void ATF22V10C::delete_resources()
{
    for (RegisterOLMC* o : _register_olmcs)
        delete o;
    _register_olmcs.clear();
    for (CombinatorialOLMC* o : _combinatorial_olmcs)
        delete o;
    _combinatorial_olmcs.clear();
    _expressions.clear();
    _expression_set.clear();
    for (Pin* p : _pins) {
        remove_port(p);
        delete p;
    }
    _pins.clear();
    _ar_expression = nullptr;
    _sp_expression = nullptr;
    _routes.clear();
}

std::string ATF22V10C::_decode_hdl_string(const std::string& text)
{
    // Too short to hold its two quotes: no program.
    if (text.size() < 2)
        return "";
    std::string result;
    std::string inner = text.substr(1, text.size() - 2);
    for (std::size_t i = 0; i < inner.size(); ++i) {
        if (inner[i] == '\\' && i + 1 < inner.size() && inner[i + 1] == 'n') {
            result += '\n';
            ++i;
        } else {
            result += inner[i];
        }
    }
    return result;
}

std::string ATF22V10C::_encode_hdl_string(const std::string& text)
{
    std::string result = "\"";
    for (char c : text) {
        if (c == '\n')
            result += "\\n";
        else
            result += c;
    }
    return result + "\"";
}
