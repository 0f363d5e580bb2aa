// Reads a test vector file and asks the sequence what the verifier and the printer ask, then writes
// it and reads what was written.
#include "FuzzSupport.h"

#include "Core/TestSequence/TestSequence.h"
#include "Core/TestSequence/TestSequenceFileWriter.h"

#include <algorithm>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    std::string path = fuzz::write_scratch_file("test.tv", fuzz::as_text(data, size));
    fuzz::run_guarded([&] {
        TestSequence sequence(path);
        sequence.max_time();
        sequence.max_stimulus_time();
        TestVectorHeader* header = sequence.header();
        if (header == nullptr)
            return;
        // The lookup scans the rows, so a few rows are enough to reach every path of it.
        int nof_rows = std::min(sequence.nof_vectors(), 8);
        for (int i = 0; i < header->nof_outputs(); ++i) {
            for (int row = 0; row < nof_rows; ++row)
                sequence.get_output_value(header->output_name(i), sequence.get_vector(row)->output_time());
        }
        std::string written = fuzz::scratch_dir() + "/written.tv";
        TestSequenceFileWriter().write_sequence(&sequence, written, sequence.has_delta_time());
        TestSequence again(written);
    });
    return 0;
}
