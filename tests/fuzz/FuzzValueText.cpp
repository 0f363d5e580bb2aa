// Bit texts of test vector cells: letters, hexadecimal digits and the compact forms.
#include "FuzzSupport.h"

#include "Core/Simulation/Value.h"
#include "Core/Simulation/ValueText.h"
#include "Core/Support/NumberText.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    std::string text = fuzz::as_text(data, size);
    fuzz::run_guarded([&] {
        if (contains_hex(text))
            hexpand(text);
    });
    fuzz::run_guarded([&] { hexpress(text); });
    fuzz::run_guarded([&] {
        Value value(text);
        value.hex();
        value.readable();
        if (value.is_integer())
            value.integer();
        value.matches(text);
    });
    fuzz::run_guarded([&] {
        Value value(16);
        value.set_to_hex(text);
    });
    fuzz::run_guarded([&] { str_to_number(text); });
    fuzz::run_guarded([&] { str_to_time(text); });
    return 0;
}
