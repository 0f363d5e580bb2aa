#include "Core/Components/Memories/GenericMemory.h"

#include "Core/Circuit/Circuit.h"
#include "Core/Components/Component.h"
#include "Core/Support/NumberText.h"
#include "Core/Support/StringUtils.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

namespace {

struct FileCloser
{
    void operator()(std::FILE* file) const { std::fclose(file); }
};

/// A hexadecimal field as a 32-bit integer, the high bits of a longer number cut off: "ffffffff" is -1.
int hex_field(const std::string& text)
{
    return static_cast<int>(static_cast<std::uint32_t>(std::strtoull(text.c_str(), nullptr, 16)));
}

}  // namespace

void GenericMemory::init_cells_from_params(Circuit* circuit, ParaMap& params)
{
    // An empty name counts as no file, so "cbmfile=" lets a "rawfile" through.
    if (params.has_key("cbmfile") && !params["cbmfile"].empty()) {
        load_file_into_memory(circuit->hierachical_filepath(params["cbmfile"]), 0, true);
    } else if (params.has_key("rawfile") && !params["rawfile"].empty()) {
        int address =
            params.has_key("rawaddress") ? static_cast<int>(str_to_number(params["rawaddress"])) : 0;
        load_file_into_memory(circuit->hierachical_filepath(params["rawfile"]), address, false);
    }
    if (params.has_key("cells"))
        set_cell_values(params["cells"]);
}

void GenericMemory::load_file_into_memory(const std::string& path, int address, bool cbm_format)
{
    std::unique_ptr<std::FILE, FileCloser> file(std::fopen(path.c_str(), "rb"));
    if (!file) {
        _owner->clog(error, "Cannot find the specified file '%s'.", path.c_str());
        return;
    }
    if (cbm_format) {
        // A file shorter than two bytes leaves EOF (-1) in the address, as the message then shows.
        int low = std::fgetc(file.get());
        int high = std::fgetc(file.get());
        address = low + high * 256;
    }
    int count = 0;
    Value word(static_cast<int>(word_size()));
    for (int b = std::fgetc(file.get()); b != EOF; b = std::fgetc(file.get())) {
        word.set_to(b);
        write_word(word, address + count, 0);
        ++count;
    }
    _owner->clog(information, "Loaded %d bytes from file '%s' into address 0x%04x in '%s'.", count,
                 path.c_str(), static_cast<unsigned>(address), _owner->instance_name().c_str());
}

void GenericMemory::set_cell_values(const std::string& text)
{
    for (const std::string& piece : split(text, ';')) {
        if (piece.empty())
            continue;
        std::vector<std::string> fields = split(piece, ':');
        bool stored = false;
        if (fields.size() >= 2 && is_hex(fields[0]) && is_hex(fields[1])) {
            int address = hex_field(fields[0]);
            int value = hex_field(fields[1]);
            bool value_fits =
                value >= 0 && static_cast<std::int64_t>(value) < (std::int64_t{1} << word_size());
            bool address_fits = address >= 0 && static_cast<unsigned>(address) < word_count();
            if (value_fits && address_fits) {
                Value word(static_cast<int>(word_size()));
                word.set_to(value);
                write_word(word, address, 0);
                stored = true;
            }
        }
        if (!stored)
            _owner->clog(warning,
                         "A memory component of type '%s' has failed to store address/value combination '%s' "
                         "during initialization, as specified by its parameters. Maybe a parameter syntax "
                         "error or address out of range or value too large.",
                         _owner->type_name().c_str(), piece.c_str());
    }
}

std::string GenericMemory::loader_parameter_description(bool capital_commodore)
{
    return std::string("<b>cells</b> Initialize certain memory cells with values for T=0. Format: "
                       "<b>addr</b>:<b>value</b>(;<b>addr</b>:<b>value</b>)*. <b>addr</b> and <b>value</b> "
                       "must be hexadecimal values, and should fit into the memory size. Example: "
                       "1f00:ff;D000:25. Stores $ff in $1f00 and $25 in $D000.<p><b>cbmfile</b> A ") +
           (capital_commodore ? "Commodore" : "commodore") +
           "-style object file to be loaded into the memory, where the two first bytes are the load "
           "address, in LSB order.<p><b>rawfile</b> A raw binary file to be loaded into the memory.<p>"
           "<b>rawaddress</b> The memory location the rawfile will be loaded into. Default is 0x0000.";
}
