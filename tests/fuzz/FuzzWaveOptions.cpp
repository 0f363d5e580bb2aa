// The arguments of morvane-wave that name what to write: a window "<from>:<to>:<step>" on the first
// line, a comma list of signal paths on the rest, over a small hierarchical circuit after a run.
#include "FuzzSupport.h"
#include "Wave/VcdWriter.h"
#include "Wave/WaveJsonWriter.h"
#include "Wave/WaveSignals.h"

#include "Cli/CircuitVerifier.h"
#include "Core/Circuit/Circuit.h"

#include <memory>
#include <sstream>

namespace {

constexpr int max_samples = 10000;  // a wider window is only slower, not different

class QuietVerifier : public CircuitVerifier
{
public:
    using CircuitVerifier::CircuitVerifier;
    void issue(int, std::string, Value, Value) override {}
};

/// Built and run once: the paths are under test, not the circuit.
CircuitVerifier& verifier()
{
    static std::unique_ptr<QuietVerifier> instance = [] {
        fuzz::write_scratch_file("half.ctc",
                                 "Pin Input a b\nPin Output s c\nUnit Xor x\nUnit And g\n"
                                 "Net a a x.a g.a\nNet b b x.b g.b\nNet s x.out s\nNet c g.out c\n");
        std::string ctc = fuzz::write_scratch_file(
            "wave.ctc", "Circuit Half \"half.ctc\"\nPin Input a b\nPort Output 2 q\nUnit Half h\n"
                        "Unit Join j(out=2,lo=0,hi=1)\nNet a a h.a\nNet b b h.b\nNet s h.s j.lo\n"
                        "Net c h.c j.hi\nNet q j.out q\n");
        std::string tv = fuzz::write_scratch_file("wave.tv", "time a b => q\n0 L L 0\n10 H L X\n20 H H X\n");
        auto v = std::make_unique<QuietVerifier>(ctc, tv, 0);
        v->simulate();
        return v;
    }();
    return *instance;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    std::string text = fuzz::as_text(data, size);
    std::size_t newline = text.find('\n');
    std::string window_text = text.substr(0, newline);
    std::string paths = newline == std::string::npos ? "" : text.substr(newline + 1);
    fuzz::run_guarded([&] {
        CircuitVerifier& run = verifier();
        std::vector<WaveSignal> signals = select_wave_signals(*run.circuit(), paths);
        std::ostringstream out;
        write_vcd(out, "wave", signals, 31);
        WaveWindow window;
        if (window.parse(window_text) && (window.to - window.from) / window.step < max_samples)
            write_wavejson(out, "wave", signals, window);
    });
    return 0;
}
