// Bit selections such as "3:0,7" that narrow a net for a port.
#include "FuzzSupport.h"

#include "Core/Simulation/PinSpec.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    std::string text = fuzz::as_text(data, size);
    fuzz::run_guarded([&] {
        PinSpec spec(text);
        int highest = spec.highest_bit();
        for (int i = 0; i < spec.size(); ++i)
            spec.sparse_to_dense(spec.dense_to_sparse(i));
        spec.includes_bit(highest);
    });
    return 0;
}
