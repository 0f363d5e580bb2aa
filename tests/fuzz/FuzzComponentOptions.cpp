// The two kinds of static lines of a test vector file: component options and port assignments.
#include "FuzzSupport.h"

#include "Core/Components/ComponentOptions.h"
#include "Core/Simulation/Value.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    std::string text = fuzz::as_text(data, size);
    fuzz::run_guarded([&] {
        ComponentOptions options(text, "");
        for (int i = 0; i < options.nof_options(); ++i)
            options.get_value(options.get_key(i));
        options.get_options_string();
    });
    fuzz::run_guarded([&] {
        PortAssignment assignment(text, "");
        // What the verifier does with it on a port of eight bits.
        Value value(8);
        value.set_to_hex(assignment.value());
    });
    return 0;
}
