// The whole run of one verification: a circuit file and a test vector file, split at a line "%%".
// The simulated time is capped so that a huge time in the test does not make a slow input.
#include "FuzzSupport.h"

#include "Cli/CircuitVerifier.h"
#include "Core/TestSequence/TestSequence.h"

#include <algorithm>

namespace {

constexpr int max_simulation_time = 2000;  // ns

// Counts mismatches silently; the printed form is not what is under test.
class QuietVerifier : public CircuitVerifier
{
public:
    using CircuitVerifier::CircuitVerifier;
    void issue(int, std::string, Value, Value) override {}
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    std::string ctc_text;
    std::string tv_text;
    fuzz::split_at_marker(fuzz::as_text(data, size), ctc_text, tv_text);
    std::string ctc_path = fuzz::write_scratch_file("circuit.ctc", ctc_text);
    std::string tv_path = fuzz::write_scratch_file("test.tv", tv_text);

    fuzz::run_guarded([&] {
        int time = 0;
        {
            TestSequence sequence(tv_path);
            if (sequence.max_time() > max_simulation_time || sequence.max_time() < 0)
                time = max_simulation_time;
        }
        QuietVerifier verifier(ctc_path, tv_path, time);
        verifier.check_circuit();
        verifier.verify();
    });
    return 0;
}
