// <regex> without GCC 12's false "may be used uninitialized" warnings from inside it, which appear
// when it inlines the regex compiler with sanitizers on. Include this instead of <regex>.
#ifndef MORVANE_CORE_SUPPORT_REGEX_H
#define MORVANE_CORE_SUPPORT_REGEX_H

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#include <regex>
#pragma GCC diagnostic pop

#endif  // MORVANE_CORE_SUPPORT_REGEX_H
