// Which bits of a net a narrower port covers.
#ifndef MORVANE_CORE_SIMULATION_PINSPEC_H
#define MORVANE_CORE_SIMULATION_PINSPEC_H

#include <string>
#include <vector>

/// Maps the port's dense bits 0..size-1 to the net's sparse bits. Text form: items "n" or "from:to"
/// joined by ';'. Dense bit 0 is the last bit of the text, so "3:0" is the identity on four bits and
/// "0:3" mirrors them. An empty expression is the identity on any width, with size 0.
class PinSpec
{
public:
    /// Throws Error for a malformed or negative item.
    explicit PinSpec(const std::string& expression);
    /// The same as the text "a:b".
    PinSpec(int a, int b);
    virtual ~PinSpec() = default;

    int size() const { return static_cast<int>(_indices.size()); }
    const std::vector<int>& indices() const { return _indices; }
    const std::string& expression() const { return _expression; }
    /// The largest sparse bit; 0 with none.
    int highest_bit() const;
    bool includes_bit(int bit) const;
    /// Unchecked: `i` must be below size().
    int dense_to_sparse(int i) const { return _expression.empty() ? i : _indices[i]; }
    /// Throws Error for a bit that isn't covered; test includes_bit first.
    int sparse_to_dense(int bit) const;

private:
    void _make_indices();
    /// Appends `to` down or up to `from`, both included.
    void _fill_indices_from_to(int from, int to);
    /// Appends `from` down or up to `to`, both included.
    void _fill_indices_to_from(int from, int to);

    std::string _expression;    // source text; empty is the identity map
    std::vector<int> _indices;  // _indices[dense] is the sparse bit
};

#endif  // MORVANE_CORE_SIMULATION_PINSPEC_H
