// The message of a failure, so tests compare it word for word in one line.
#ifndef MORVANE_TESTS_UNIT_ERRORTEXT_H
#define MORVANE_TESTS_UNIT_ERRORTEXT_H

#include "Core/Support/Error.h"

#include <functional>
#include <string>

/// The message of the Error that `action` throws, or "no error".
inline std::string error_of(const std::function<void()>& action)
{
    try {
        action();
    } catch (const Error& e) {
        return e.message();
    }
    return "no error";
}

#endif  // MORVANE_TESTS_UNIT_ERRORTEXT_H
