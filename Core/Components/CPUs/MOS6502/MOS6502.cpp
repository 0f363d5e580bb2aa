#include "Core/Components/CPUs/MOS6502/MOS6502.h"

#include <map>

ParaMap MOS6502::default_parameters()
{
    static const std::map<std::string, std::string> MOS6502_default_params = {
        {"t_ads", "200"}, {"t_ah", "10"}, {"t_mds", "25"}, {"t_dhw", "10"}};
    return ParaMap(MOS6502_default_params);
}

std::string MOS6502::parameter_description()
{
    return timing_description();
}

MOS6502::MOS6502(const std::string& instance_name, const ParaMap& params)
    : ProcessorPart(class_name, instance_name, params)
{
    _make_pins("_R/W");
    MOS6502::update_after_param_change();
    _reset_init();
}

void MOS6502::reset()
{
    _reset_pins();
    _reset_init();
    Component::reset();
}

void MOS6502::evaluate_port(int time, Port* port)
{
    _evaluate_inputs_and_clock(time, port);
    _update_outputs(time);
}

void MOS6502::_update_outputs(int time)
{
    _update_clocks(time);
    _a.refresh(time);
    _write.refresh(time);
    _rw.refresh(time);
    _sync.refresh(time);
    _phi1->update(time);
    _phi2->update(time);
}
