// Shared pieces of the fuzz targets: the exceptions that end a run by design, and scratch files.
#ifndef MORVANE_TESTS_FUZZ_FUZZSUPPORT_H
#define MORVANE_TESTS_FUZZ_FUZZSUPPORT_H

#include "Core/Support/Error.h"

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <typeinfo>

namespace fuzz {

/// Runs f and swallows the documented outcomes of bad input: an Error, and the standard exceptions
/// that values and number conversions throw. Anything else (bad_alloc included) escapes and is a
/// finding.
template <typename F>
void run_guarded(F&& f)
{
    try {
        f();
    } catch (const Error&) {
    } catch (const std::out_of_range&) {
    } catch (const std::length_error&) {
    } catch (const std::domain_error&) {
    } catch (const std::invalid_argument&) {
    } catch (const std::bad_cast&) {
    }
}

/// The fuzzer's bytes as text.
inline std::string as_text(const uint8_t* data, size_t size)
{
    return std::string(reinterpret_cast<const char*>(data), size);
}

/// A private folder for the files a target writes; made once per process.
const std::string& scratch_dir();

/// Writes text to name inside the scratch folder and returns the full path.
std::string write_scratch_file(const std::string& name, const std::string& text);

/// Splits text at the first line that holds only "%%"; the rest is empty if there is none.
void split_at_marker(const std::string& text, std::string& first, std::string& rest);

}  // namespace fuzz

#endif  // MORVANE_TESTS_FUZZ_FUZZSUPPORT_H
