// A PLD program: any bytes go through the first pass alone, then compile into a fresh device that
// runs for 200 ns with every input pin toggling at its own rate.
#include "FuzzSupport.h"

#include "Core/Circuit/Circuit.h"
#include "Core/Components/ComponentFactory.h"
#include "Core/Components/PLD/ATF22V10C.h"
#include "Core/Components/PLD/PalAsmCompiler.h"
#include "Core/Simulation/EventSimulator.h"
#include "Core/Simulation/Net.h"
#include "Core/Support/TLog.h"

#include <memory>
#include <vector>

namespace {

void run_device(const std::string& source)
{
    NetFactory nets;  // dies last: ports leave living nets
    ComponentFactory parts;
    std::vector<std::unique_ptr<Port>> drivers;
    Circuit root("top", nullptr);
    auto* device = static_cast<ATF22V10C*>(parts.create("ATF22V10C", "u1"));
    device->set_new_program(source);
    root.add(device, false);
    struct SimulatorGuard
    {
        ~SimulatorGuard() { destroy_simulator(); }
    } guard;  // gone before the circuit it points at
    simulator(&root);
    for (Port* p : device->ports()) {
        if (p->dir() != Morvane::Input)
            continue;
        drivers.push_back(std::make_unique<Port>(1, Morvane::Output, "drive", nullptr));
        Net* net = nets.create(p->name(), 0);
        net->add(drivers.back().get(), Morvane::Outside);
        net->add(p, Morvane::Outside);
    }
    simulator()->reset(200);
    for (std::size_t i = 0; i < drivers.size(); ++i) {
        int period = 10 + 7 * static_cast<int>(i);
        for (int t = 0, n = 0; t < 200; t += period / 2, ++n)
            drivers[i]->set(Value(n % 2 == 0 ? 'L' : 'H', 1), t);
    }
    simulator()->simulate(200);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    // Feedback reads write trace lines; the fuzzer's output stays readable without them.
    static const bool quiet = (TLog::disable_logging(), true);
    (void)quiet;
    std::string source = fuzz::as_text(data, size);
    fuzz::run_guarded([&] {
        ATF22V10C probe("probe", 10);
        PldTokens tokens;
        PalAsmCompiler(probe).tokenize(source, tokens);
    });
    fuzz::run_guarded([&] { run_device(source); });
    return 0;
}
