#include "Core/Components/ComponentFactory.h"

#include "Core/Circuit/Circuit.h"
#include "Core/Components/Basic/Buffers.h"
#include "Core/Components/Basic/BusAdapters.h"
#include "Core/Components/CPUs/MOS6502/MOS6502.h"
#include "Core/Components/CPUs/W65C02/W65C02Chip.h"
#include "Core/Components/Chips74/Chips74Decoders.h"
#include "Core/Components/Chips74/Chips74FlipFlops.h"
#include "Core/Components/Chips74/Chips74Gates.h"
#include "Core/Components/Chips74/Chips74Registers.h"
#include "Core/Components/Component.h"
#include "Core/Components/Chips74/DM74LS191.h"
#include "Core/Components/Basic/FlipFlop.h"
#include "Core/Components/Basic/Gates.h"
#include "Core/Components/Memories/HM62256B.h"
#include "Core/Components/Memories/IDT7132LA.h"
#include "Core/Components/Memories/MC27C64.h"
#include "Core/Components/PLD/ATF22V10C.h"
#include "Core/Components/Chips74/SN74AS867.h"
#include "Core/Components/Basic/Sources.h"
#include "Core/Support/Error.h"
#include "Core/Support/StringUtils.h"

namespace {

/// One type: function pointers only, so the table is fixed before any code runs.
struct ComponentType
{
    std::string (*type_name)();                                            // as a file names the type
    Component* (*create)(const std::string& name, const ParaMap& params);  // a new part of the class
    ParaMap (*default_parameters)();                                       // the class's defaults
    std::string (*description)();                                          // help on the parameters
};

template <class Part> std::string type_name_of()
{
    return class_to_type_name(Part::class_name);
}

template <class Part> Component* create_part(const std::string& name, const ParaMap& params)
{
    return new Part(name, params);
}

template <class Part> constexpr ComponentType row()
{
    return ComponentType{&type_name_of<Part>, &create_part<Part>, &Part::default_parameters,
                         &Part::parameter_description};
}

// The first match wins, so the order is part of the behaviour. Each part type adds its row in the
// place its comment holds.
constexpr ComponentType components[] = {
    row<High>(),           // High
    row<Low>(),            // Low
    row<PullUp>(),         // PullUp
    row<PullDown>(),       // PullDown
    row<Step>(),           // Step
    row<Delay>(),          // Delay
    row<Inv>(),            // Inv
    row<And>(),            // And
    row<Nand>(),           // Nand
    row<Xor>(),            // Xor
    row<Xnor>(),           // Xnor
    row<Or>(),             // Or
    row<Nor>(),            // Nor
    row<Oscillator>(),     // Oscillator
    row<D_flip_flop>(),    // D_flip_flop
    row<ThreeStateBuf>(),  // ThreeStateBuf
    row<BusBuffer>(),      // BusBuffer
    row<Demux1to4>(),      // Demux1to4
    row<Join>(),           // Join
    row<Split>(),          // Split
    row<Splice>(),         // Splice
    row<Const>(),          // Const
    row<DM74LS00>(),       // 74LS00
    row<DM74LS04>(),       // 74LS04
    row<DM74LS08>(),       // 74LS08
    row<DM74LS32>(),       // 74LS32
    row<SN74x74>(),        // 74x74
    row<DM74LS78A>(),      // 74LS78A
    row<DM74LS125>(),      // 74LS125
    row<DM74LS137>(),      // 74LS137
    row<DM74LS139>(),      // 74LS139
    row<DM74LS154>(),      // 74LS154
    row<SN74x174>(),       // 74x174
    row<DM74LS191>(),      // 74LS191
    row<DM74LS244>(),      // 74LS244
    row<SN74x273>(),       // 74x273
    row<DM74LS283>(),      // 74LS283
    row<DM74LS374>(),      // 74LS374
    row<DM74x574>(),       // 74x574
    row<SN74x688>(),       // 74x688
    row<SN74AS867>(),      // 74AS867
    row<ATF22V10C>(),      // ATF22V10C
    row<HM62256B>(),       // HM62256B
    row<MC27C64>(),        // 27C64
    row<IDT7132LA>(),      // IDT7132LA
    row<MOS6502>(),        // MOS6502
    row<W65C02>(),         // W65C02
};

const ComponentType* find_type(const std::string& type)
{
    for (const ComponentType& entry : components) {
        if (entry.type_name() == type)
            return &entry;
    }
    return nullptr;
}

}  // namespace

ComponentFactory::~ComponentFactory()
{
    for (Component* c : _components)
        delete c;
    _components.clear();
}

Component* ComponentFactory::create(const std::string& type, const std::string& spec)
{
    std::string name;
    std::string params;
    extract_name_and_params(spec, name, params);
    ParaMap map = default_parameters(type);
    map.add_params(params);

    const ComponentType* entry = find_type(type);
    if (entry == nullptr)
        return nullptr;
    Component* component = entry->create(name, map);
    if (component == nullptr)
        return nullptr;
    // Applied even when the constructor read them already: a part may look at more than it did there.
    if (map.size() > 0)
        component->set_parameters(map);
    _components.push_back(component);
    return component;
}

Component* ComponentFactory::duplicate(const Circuit* source, Circuit* parent)
{
    Component* copy = source->copy_allocator(source, parent);
    if (copy != nullptr)
        _components.push_back(copy);
    return copy;
}

bool ComponentFactory::handles_the_type(const std::string& type)
{
    return find_type(type) != nullptr;
}

ParaMap ComponentFactory::default_parameters(const std::string& type)
{
    const ComponentType* entry = find_type(type);
    return entry != nullptr ? entry->default_parameters() : ParaMap();
}

std::string ComponentFactory::parameter_description(const std::string& type)
{
    const ComponentType* entry = find_type(type);
    return entry != nullptr ? entry->description() : std::string();
}

void ComponentFactory::extract_name_and_params(const std::string& spec, std::string& name,
                                               std::string& params)
{
    std::size_t open = spec.find('(');
    name += spec.substr(0, open);
    if (open != std::string::npos)
        params += spec.substr(open);
    // The outputs are appended to, so text a caller left in `params` counts here too.
    if (!spec.empty() && !params.empty() && spec.back() != ')')
        throw Error(
            "Parse error: trailing characters or unmatched paranthesis in instance specification '%s'.",
            spec.c_str());
}

std::vector<std::string> ComponentFactory::type_names()
{
    std::vector<std::string> names;
    for (const ComponentType& entry : components)
        names.push_back(entry.type_name());
    return names;
}
