// Writing a circuit back as a circuit file.
#ifndef MORVANE_CORE_CIRCUIT_CIRCUITFILEWRITER_H
#define MORVANE_CORE_CIRCUIT_CIRCUITFILEWRITER_H

#include "Core/Simulation/Dir.h"

#include <cstdio>
#include <map>
#include <string>
#include <vector>

class Circuit;
class Component;
class Port;

/// Writes a normalised form, not the file the circuit came from: statements grouped by kind, imports
/// merged into the scope they filled, one-bit ports as pins, arrays collapsed to `base[n]`. Port
/// options, declarations without instances, nets without ports and the comments and parameters of
/// array elements are lost. One writer does one save at a time.
class CircuitFileWriter
{
public:
    explicit CircuitFileWriter(const Circuit* circuit);
    virtual ~CircuitFileWriter() = default;
    CircuitFileWriter(const CircuitFileWriter&) = delete;
    CircuitFileWriter& operator=(const CircuitFileWriter&) = delete;

    /// Replaces the file. With `with_banner` a comment block with the present time comes first. A file
    /// that cannot be opened throws Error; a failed write is not noticed.
    void write_circuit(const std::string& filename, bool with_banner);

private:
    /// The highest index seen of one array base, and the type of its latest element.
    struct ArrayExtent
    {
        int highest = 0;
        std::string type;
    };
    using NamesByKey = std::map<std::string, std::vector<std::string>>;

    // Texts go out byte for byte, a NUL among them included.
    void _output(const std::string& text);
    void _output_indent();
    void _output_line(const std::string& text);
    /// `head` and a blank ahead of each name, on one line.
    void _output_list_line(const std::string& head, const std::vector<std::string>& names);
    void _output_empty_line();
    void _output_comment(const std::string& text);

    void _save_body();
    void _save_meta_data();
    void _save_meta_data_lines(const std::string& key, const std::vector<std::string>& values);
    void _save_file_comments();
    void _save_import_paths();
    void _save_circuit_declarations();
    void _output_local_declaration(const Circuit* declaration);
    void _output_file_declaration(const Circuit* declaration);
    /// The own ports of `dir`, one bit wide for `pins` and two or more otherwise, with a comment and
    /// without one; false if there is none.
    bool _sort_ports(Morvane::Dir dir, bool pins, std::vector<const Port*>& commented,
                     std::vector<const Port*>& plain) const;
    void _save_pins();
    void _save_pin_line(Morvane::Dir dir, const std::vector<std::string>& names);
    void _save_pin_line_with_comment(Morvane::Dir dir, const std::vector<const Port*>& ports);
    void _save_ports();
    void _save_port_lines(Morvane::Dir dir, const std::map<int, std::vector<std::string>>& names_by_size);
    void _save_port_lines_with_comment(Morvane::Dir dir, const std::vector<const Port*>& ports);
    void _save_components();
    void _save_component_lines(const NamesByKey& names_by_type);
    void _save_component_lines_with_comment(const std::vector<const Component*>& components);
    static void _add_array_names_to_component_list(const std::map<std::string, ArrayExtent>& arrays,
                                                   NamesByKey& names_by_type);
    /// True for "base[digits]..." whatever follows the "]"; `index` is left alone without digits.
    static bool _is_an_array_name(const std::string& name, std::string& base, int& index);
    static int _count_instances(const std::string& type, const Circuit* circuit);
    void _save_nets();

    const Circuit* _circuit;  // the scope being written; a local declaration while its body is written
    FILE* _file = nullptr;    // open during write_circuit only
    int _indent = 0;          // nesting depth of local declarations
};

#endif  // MORVANE_CORE_CIRCUIT_CIRCUITFILEWRITER_H
