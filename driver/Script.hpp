// The script around a program that drives: what it says about the surroundings, and what it does
// for such a program, which runs under Wine and can start nothing on the system below.
#pragma once

#include <functional>
#include <string>

namespace vantor::driver {

/// Waits up to `patienceMs` for `condition`; false when it does not come.
bool Comes(const std::function<bool()>& condition, unsigned patienceMs);

/// Waits up to 100 s for `condition`; raises an error that names `what` when it does not come.
void Await(const std::string& what, const std::function<bool()>& condition);

/// A setting of the surroundings, from the script; empty when there is none.
std::string Setting(const char* name);

/// A file of this run, as tsupdate.exe and this program name it.
std::string FileOfRun(const char* name);

/// The bytes of such a file; none while it cannot be read.
std::string Content(const char* name);

/// Has the script do what `words` say, and waits until it has.
void Ask(const std::string& words);

/// The virtual indicator, which the script starts behind COM1.
class Indicator {
public:
    Indicator() = default;
    ~Indicator() { Stop(); }
    Indicator(const Indicator&) = delete;
    Indicator& operator=(const Indicator&) = delete;

    void Start(const std::string& options);
    void Stop();
    /// Waits for its end; its exit status.
    int Wait();
    /// What it has said against the program.
    std::string Complaints() const;

    /// The bytes that have passed in one direction: '>' to the indicator, '<' from it.
    std::string Passed(char direction) const;
    /// The milliseconds from the first to the last byte of one direction.
    double Span(char direction) const;
};

}  // namespace vantor::driver
