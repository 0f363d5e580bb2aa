// 74-series chips built of inner primitive parts that share their pins: quad Nand, hex inverter,
// quad And, quad Or, quad three-state buffer and dual 1-of-4 decoder.
//
// Each chip makes its inner parts with empty names and hands their pins to itself under the chip's
// pin names. A pin is one object for both, and both listen to it, so a change on a chip input asks
// for two evaluations: the inner part's own, one inner delay later, and the chip's, one chip delay
// later, in which every inner part is evaluated in turn. Once a "delay" parameter is applied (the
// factory always applies the defaults) the inner parts take the chip's delay, and the two
// evaluations of one time write the same value.
//
// Functions, per section n from 1:
// - DM74LS00: "Yn" = "An" Nand "Bn"; DM74LS04: "Yn" = Inv "An"; DM74LS08: "Yn" = "An" And "Bn";
//   DM74LS32: "Yn" = "An" Or "Bn". A dominant input beats an undefined other one (L into Nand gives
//   H, L into And gives L, H into Or gives H); otherwise an undefined input gives u.
// - DM74LS125: "Cn" H releases "Yn" (z); "Cn" u gives u; any other "Cn" (L) passes "An".
// - DM74LS139: enable "En" H drives all four bits of "On" H, u makes them u; "En" L drives bit
//   "An" (2 bits) of "On" (4 bits, active low) L and the others H; an undefined address bit gives u.
//
// Timing parameter: delay, ns from an input change to the outputs: 10 (00, 04), 13 (08), 14 (32),
// 25 (125), 38 (139). Made by code without parameters, the inner parts start with 10, 10, 13, 3,
// 25 and 38.
#ifndef MORVANE_CORE_COMPONENTS_CHIPS74GATES_H
#define MORVANE_CORE_COMPONENTS_CHIPS74GATES_H

#include "Core/Components/Component.h"
#include "Core/Components/ParaMap.h"

#include <initializer_list>
#include <memory>
#include <string>
#include <utility>
#include <vector>

/// What the chips of inner parts share: the parts themselves, their evaluation in turn, and the
/// delay handed down to them.
class InnerPartsChip : public SingleDelayComponent
{
public:
    /// The same help text for every such chip.
    static std::string parameter_description();

    /// Lets go of the shared pins before the inner parts that own them are freed.
    ~InnerPartsChip() override;

    /// Each inner part in order, each reading back by its own delay.
    void evaluate(int time) override;
    /// Reads "delay" and hands it to every inner part.
    void update_after_param_change() override;
    /// Each inner part, then the chip's own ports.
    void reset() override;

    /// The inner parts in order of making, for inspection.
    const std::vector<std::unique_ptr<SingleDelayComponent>>& inner_parts() const { return _parts; }

protected:
    InnerPartsChip(const char* class_name, const std::string& instance_name, const ParaMap& params)
        : SingleDelayComponent(class_name, instance_name, params)
    {
    }
    InnerPartsChip(const char* class_name, const std::string& instance_name, int delay)
        : SingleDelayComponent(class_name, instance_name, delay)
    {
    }

    /// Keeps the part; returned for the hand-over of its pins.
    template <class Part> Part* _adopt(Part* part)
    {
        _parts.emplace_back(part);
        return part;
    }
    void _set_delay_of_gates(int delay);
    /// Hands the inner part's pins to the chip in the order given, each renamed to its chip prefix
    /// followed by the unit number `n`.
    void _take_pins(Component* part, std::initializer_list<std::pair<const char*, std::string>> names, int n);

private:
    std::vector<std::unique_ptr<SingleDelayComponent>> _parts;  // inner parts, owned; they own the pins
};

/// Quad 2-input Nand: pins "A1" "B1" "Y1" ... "A4" "B4" "Y4". Default delay 10 ns.
class DM74LS00 : public InnerPartsChip
{
public:
    static constexpr const char* class_name = "DM74LS00";
    static ParaMap default_parameters();

    DM74LS00(const std::string& instance_name, const ParaMap& params);
    DM74LS00(const std::string& instance_name, int delay);

private:
    void _init();
};

/// Hex inverter: pins "A1" "Y1" ... "A6" "Y6". Default delay 10 ns.
class DM74LS04 : public InnerPartsChip
{
public:
    static constexpr const char* class_name = "DM74LS04";
    static ParaMap default_parameters();

    DM74LS04(const std::string& instance_name, const ParaMap& params);
    DM74LS04(const std::string& instance_name, int delay);

private:
    void _init();
};

/// Quad 2-input And: pins "A1" "B1" "Y1" ... "A4" "B4" "Y4". Default delay 13 ns.
class DM74LS08 : public InnerPartsChip
{
public:
    static constexpr const char* class_name = "DM74LS08";
    static ParaMap default_parameters();

    DM74LS08(const std::string& instance_name, const ParaMap& params);
    DM74LS08(const std::string& instance_name, int delay);

private:
    void _init();
};

/// Quad 2-input Or: pins "A1" "B1" "Y1" ... "A4" "B4" "Y4". Default delay 14 ns.
class DM74LS32 : public InnerPartsChip
{
public:
    static constexpr const char* class_name = "DM74LS32";
    static ParaMap default_parameters();

    DM74LS32(const std::string& instance_name, const ParaMap& params);
    DM74LS32(const std::string& instance_name, int delay);

private:
    void _init();
};

/// Quad three-state buffer, enables active low: pins "A1" "C1" "Y1" ... "A4" "C4" "Y4". Default
/// delay 25 ns.
class DM74LS125 : public InnerPartsChip
{
public:
    static constexpr const char* class_name = "DM74LS125";
    static ParaMap default_parameters();

    DM74LS125(const std::string& instance_name, const ParaMap& params);
    DM74LS125(const std::string& instance_name, int delay);

private:
    void _init();
};

/// Dual 1-of-4 decoder: pin "E1", port "A1" (2 bits), port "O1" (4 bits), then the same for 2.
/// Default delay 38 ns.
class DM74LS139 : public InnerPartsChip
{
public:
    static constexpr const char* class_name = "DM74LS139";
    static ParaMap default_parameters();

    DM74LS139(const std::string& instance_name, const ParaMap& params);
    DM74LS139(const std::string& instance_name, int delay);

private:
    void _init();
};

#endif  // MORVANE_CORE_COMPONENTS_CHIPS74GATES_H
