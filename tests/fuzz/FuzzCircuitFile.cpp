// Reads a circuit file and builds the circuit from it. Text behind a line "%%" becomes a second file,
// sub.ctc beside the first, for Import and Circuit statements to reach. A circuit that builds is
// written, read back and written again: where the second circuit builds, the two texts must agree.
#include "FuzzSupport.h"

#include "Core/Circuit/Circuit.h"
#include "Core/Circuit/CircuitFileReader.h"
#include "Core/Circuit/CircuitFileWriter.h"
#include "Core/Support/StringUtils.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <sstream>

namespace {

std::unique_ptr<Circuit> build(const std::string& file)
{
    return std::unique_ptr<Circuit>(CircuitFileReader::new_circuit(file));
}

std::string written(const Circuit& circuit, const std::string& name)
{
    std::string path = fuzz::scratch_dir() + "/" + name;
    CircuitFileWriter(&circuit).write_circuit(path, false);
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

// Texts that the writer puts out without a way back: meta data values come back with their escapes,
// an import path ends at its first double quote, and a port whose name was not understood has the empty
// name, which vanishes from its line.
bool writes_without_way_back(const Circuit& circuit)
{
    for (const Port* port : circuit.ports())
        if (port->name().empty())
            return true;
    for (const std::string& key : circuit.get_meta_data_keys())
        for (const std::string& value : circuit.get_meta_data_vector(key))
            if (escape_string(value) != "\"" + value + "\"")
                return true;
    for (const std::string& path : circuit.import_paths())
        if (path.find('"') != std::string::npos)
            return true;
    for (const Circuit* declaration : circuit.circuit_declarations())
        if (writes_without_way_back(*declaration))
            return true;
    return false;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    std::string main_text;
    std::string sub_text;
    fuzz::split_at_marker(fuzz::as_text(data, size), main_text, sub_text);
    std::string main_path = fuzz::write_scratch_file("circuit.ctc", main_text);
    fuzz::write_scratch_file("sub.ctc", sub_text);

    std::unique_ptr<Circuit> first;
    fuzz::run_guarded([&] { first = build(main_path); });
    if (!first)
        return 0;
    std::string first_text = written(*first, "first.ctc");
    std::unique_ptr<Circuit> second;
    fuzz::run_guarded([&] { second = build(fuzz::scratch_dir() + "/first.ctc"); });
    if (!second || writes_without_way_back(*first))
        return 0;
    if (written(*second, "second.ctc") != first_text) {
        fprintf(stderr, "A written circuit reads back otherwise:\n%s", first_text.c_str());
        abort();
    }
    return 0;
}
