#pragma once

#include <ctime>
#include <string>

#include "support/Environment.h"

namespace harvlink::test {

/// The time zone of the process, in the form that every system understands, such as "TEST-14". UTC at the end.
class TimeZone {
public:
    explicit TimeZone(std::string const& name) { Set(name); }
    TimeZone(TimeZone const&) = delete;
    TimeZone& operator=(TimeZone const&) = delete;
    ~TimeZone() { Set("UTC0"); }

private:
    static void Set(std::string const& name) {
        SetVariable("TZ", name);
#if defined(_WIN32)
        ::_tzset();
#else
        ::tzset();
#endif
    }
};

} // namespace harvlink::test
