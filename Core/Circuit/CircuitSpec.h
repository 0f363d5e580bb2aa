// A circuit file read into a tree of parsed lines, one node per scope, with imports read in place.
#ifndef MORVANE_CORE_CIRCUIT_CIRCUITSPEC_H
#define MORVANE_CORE_CIRCUIT_CIRCUITSPEC_H

#include "Core/Circuit/FileParser.h"
#include "Core/Circuit/Line.h"

#include <string>
#include <vector>

/// The parsed form of a circuit file. The spec built by the file-name constructor is the root; each
/// `Circuit <name> {` block and each `Circuit <name> "<path>"` statement makes a child spec. Reading runs
/// on the root, which sends statements to the scope now open (`_current`).
///
/// Nothing is checked against other statements except nets of one scope sharing a port path; all other
/// cross-line checks happen when a circuit is built from the spec. Every failure throws Error and nothing
/// of the spec survives it.
class CircuitSpec : public FileParser
{
public:
    /// Reads the file (searched as for an import) and everything it imports. Name and file name are
    /// `filename` as given.
    explicit CircuitSpec(const std::string& filename);
    /// An empty scope inside `parent`, counting lines from where the parent stands.
    CircuitSpec(CircuitSpec* parent, const std::string& name);
    ~CircuitSpec() override;
    CircuitSpec(const CircuitSpec&) = delete;
    CircuitSpec& operator=(const CircuitSpec&) = delete;

    /// Reads `filename` into the current scope; a file that is being read already throws Error.
    void load_from_file(const std::string& filename);

    const std::string& name() const { return _name; }
    void set_name(const std::string& name) { _name = name; }
    /// The own file name, else the nearest ancestor's; "" if none has one.
    const std::string& filename() const;
    /// True for a `Circuit <name> {` block: it has no file of its own.
    bool is_declared_locally() const { return _filename.empty(); }
    /// Instances, counted after array expansion, not statements.
    int nof_units() const;
    int nof_nets() const { return static_cast<int>(_nets.size()); }

    // The parsed lines of this scope, in file order, for building a circuit.
    const std::vector<UnitLine>& units() const { return _units; }
    const std::vector<NetLine>& nets() const { return _nets; }
    const std::vector<PortLine>& ports() const { return _ports; }
    const std::vector<PinLine>& pins() const { return _pins; }
    /// Child scopes in file order; owned by this spec.
    const std::vector<CircuitSpec*>& circuits() const { return _circuits; }
    const std::vector<MetaDataLine>& meta_data() const { return _meta_data; }
    /// Always empty but on the root, where every ImportPath lands.
    const std::vector<std::string>& import_paths() const { return _import_paths; }
    const std::vector<std::string>& file_comments() const { return _file_comments; }
    /// Null on the root.
    CircuitSpec* parent() const { return _parent; }

private:
    void _interpret(std::string& line);
    void _process_line(std::string& line);
    std::vector<std::string> _split(const std::string& line) const;

    void _push_circuit(const std::string& name, const std::string& filename);
    void _pop_circuit();
    void _close_circuit(const std::vector<std::string>& tokens);
    void _add_circuit(const std::vector<std::string>& tokens, const std::string& line);
    void _add_unit(std::vector<std::string>& tokens);
    void _add_net(std::vector<std::string>& tokens);
    void _add_port(std::vector<std::string>& tokens);
    void _add_pin(std::vector<std::string>& tokens);
    void _add_metadata(const std::vector<std::string>& tokens, const std::string& line);

    void _process_import(const std::string& line);
    void _process_import_core(const std::string& path);
    void _process_import_path(const std::string& line);
    std::string _extract_import_path(const std::string& line) const;
    std::string _construct_file_path(const std::string& path) const;
    std::string _find_file(const std::string& path) const;

    void _push_file_comment_block_if_any();
    void _clear_current_comment() { _current->_current_comment.clear(); }
    bool _current_comment_is_not_empty() const;
    void _process_empty_line() { _push_file_comment_block_if_any(); }

    /// Throws Error on the first two nets of this scope, in file order, that name the same port path.
    void _check_for_net_common_pins() const;
    void _delete_children();

    std::vector<UnitLine> _units;                // Unit statements of this scope
    std::vector<NetLine> _nets;                  // Net statements of this scope
    std::vector<PortLine> _ports;                // Port statements of this scope
    std::vector<PinLine> _pins;                  // Pin statements of this scope
    std::vector<CircuitSpec*> _circuits;         // owned child scopes, in file order
    std::vector<MetaDataLine> _meta_data;        // MetaData statements of this scope
    std::vector<std::string> _import_paths;      // directories to search, as written; root only
    std::vector<std::string> _file_comments;     // one text per comment block not attached to a statement
    std::string _name;                           // circuit type name; the file name for the root
    std::string _filename;                       // file being read here; "" for a block in its parent's file
    int _line_number = 0;                        // lines read in this scope's current file
    CircuitSpec* _current = nullptr;             // root only: the scope that statements go into
    CircuitSpec* _parent = nullptr;              // null on the root
    std::string _current_comment;                // gathered comment lines, each ended by a newline
    std::vector<std::string> _files_being_read;  // root only: canonical paths, outermost first
};

#endif  // MORVANE_CORE_CIRCUIT_CIRCUITSPEC_H
