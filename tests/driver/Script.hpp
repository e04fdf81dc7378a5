// Interface to the shell script that runs a driver program: its settings, and requests that it
// executes, since a program under Wine does not start host processes itself.
#pragma once

#include <functional>
#include <string>

namespace vantor::driver {

/// Waits up to `patienceMs` for `condition`; false on a time-out.
bool Comes(const std::function<bool()>& condition, unsigned patienceMs);

/// Waits up to 100 s for `condition`; raises an error that names `what` on a time-out.
void Await(const std::string& what, const std::function<bool()>& condition);

/// An environment variable set by the script; empty if unset.
std::string Setting(const char* name);

/// The Windows path of a file in the folder of this run.
std::string FileOfRun(const char* name);

/// The bytes of such a file; empty if it cannot be read.
std::string Content(const char* name);

/// Sends the request `words` to the script and waits until it is done.
void Ask(const std::string& words);

/// The virtual indicator, which the script starts on COM1.
class Indicator {
public:
    Indicator() = default;
    ~Indicator() { Stop(); }
    Indicator(const Indicator&) = delete;
    Indicator& operator=(const Indicator&) = delete;

    static void Start(const std::string& options) { Ask("start " + options); }
    static void Stop() { Ask("stop"); }
    /// Waits for the process to end; returns its exit status.
    static int Wait();
    /// Its standard error output: protocol violations of the program.
    static std::string Complaints() { return Content("indicator.err"); }

    /// The bytes transferred in one direction, with the escapes of the transcript:
    /// '>' to the indicator, '<' from it.
    static std::string Passed(char direction);
};

}  // namespace vantor::driver
