// Reads a circuit file and builds the circuit from it. Text behind a line "%%" becomes a second file,
// sub.ctc beside the first, for Import and Circuit statements to reach.
#include "FuzzSupport.h"

#include "Core/Circuit/Circuit.h"
#include "Core/Circuit/CircuitSpec.h"

#include <memory>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    std::string main_text;
    std::string sub_text;
    fuzz::split_at_marker(fuzz::as_text(data, size), main_text, sub_text);
    std::string main_path = fuzz::write_scratch_file("circuit.ctc", main_text);
    fuzz::write_scratch_file("sub.ctc", sub_text);

    fuzz::run_guarded([&] {
        CircuitSpec spec(main_path);
        auto circuit = std::make_unique<Circuit>(spec.name(), nullptr);
        circuit->build_from_spec(&spec);
        circuit->forget_circuit_spec();
    });
    return 0;
}
