// The editor's one failure mechanism: an exception that carries the number, the
// description and a source text that grows into a call trace as it passes up.
#pragma once
#include <stdexcept>
#include <string>

namespace vexil {

constexpr const char* AppTitle = "Vexil";

// Numbers of the runtime failures that algorithms rely on being raised.
enum ErrNumber : long {
    ErrDivisionByZero = 11,
    ErrOverflow = 6,
    ErrSubscript = 9,
    ErrInvalidCall = 5,
};

class VexilError : public std::runtime_error {
public:
    VexilError(long number, std::string description, std::string source = {})
        : std::runtime_error(description), number(number), description(std::move(description)),
          source(std::move(source)) {}
    long number;
    std::string description;
    std::string source;

    // Adds one "Vexil.Object.Procedure" line to the trace, innermost first.
    VexilError& addSource(const std::string& object, const std::string& procedure) {
        const std::string line = std::string(AppTitle) + "." + object + "." + procedure;
        source = source.empty() ? line : source + "\n" + line;
        return *this;
    }
};

[[noreturn]] inline void raiseDivisionByZero() { throw VexilError(ErrDivisionByZero, "Division by zero"); }
[[noreturn]] inline void raiseOverflow() { throw VexilError(ErrOverflow, "Overflow"); }

// Checked division: C++ does not trap on a floating-point division by zero, the editor's algorithms expect it to.
inline double checkedDiv(double a, double b) {
    if (b == 0.0) raiseDivisionByZero();
    return a / b;
}

} // namespace vexil
