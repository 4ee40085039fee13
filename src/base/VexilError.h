// The editor's one failure mechanism: an exception that
// carries the number, the description and a source text that grows into a call trace as it
// passes up, one "Vexil.Object.Procedure" line per level, innermost first, lines joined by CR LF.
//
// This header has no Qt in it: GUI-free components (maths, simplify) use it too.
//
// The handler shape of the failure reporting in C++:
//
//   void Form1::mnuSomething_Click() {                    // an event handler
//       vexil::handleEvent("Form1", "mnuSomething_Click", [&] { ...body... });
//   }
//   double SurfSimpli::Cost(...) {                          // any other procedure
//       return vexil::propagate("SurfSimpli", "Cost", [&] { ...body...; return x; });
//   }
//
// `propagate` appends its line to a VexilError passing through (and turns any other
// std::exception into one); `handleEvent` (declared in ErrLog.h, it needs Qt) appends the line
// and calls ReportError.
#pragma once
#include <stdexcept>
#include <string>
#include <utility>

namespace vexil {

// The application title of the run-time (VB's App.Title): the first word of every trace line.
// Not to be confused with the window title, UI string 602 (see Locale.h, UiAppTitle()).
constexpr const char* AppTitle = "Vexil";

// Numbers of the runtime failures that algorithms rely on being raised (VB run-time numbers).
enum ErrNumber : long {
    ErrInvalidCall = 5,
    ErrOverflow = 6,
    ErrOutOfMemory = 7,
    ErrSubscript = 9,
    ErrDivisionByZero = 11,
    ErrTypeMismatch = 13,
    ErrFileNotFound = 53,
    ErrPathNotFound = 76,
    ErrObjectRequired = 424,
    ErrEntryPointNotFound = 453, // "Can't find DLL entry point ..."
    ErrUserBase = 0x80040000L,   // vbObjectError: base of the program's own numbers
};

// The formatter of the failure reporting. An empty source means "the error began in this procedure" (the
// C++ counterpart of ErrorSourceDefault): the result is the one line
// "Vexil.objectName.procedureName". Otherwise the line is appended behind source after CR LF.
inline std::string FormatErrorSource(const std::string& source, const std::string& objectName,
                                     const std::string& procedureName) {
    const std::string line = std::string(AppTitle) + "." + objectName + "." + procedureName;
    return source.empty() ? line : source + "\r\n" + line;
}

class VexilError : public std::runtime_error {
public:
    VexilError(long number, std::string description, std::string source = {})
        : std::runtime_error(description), number(number), description(std::move(description)),
          source(std::move(source)) {}
    long number;
    std::string description;
    std::string source;

    // Adds one "Vexil.Object.Procedure" line to the trace, innermost first (FormatErrorSource).
    VexilError& addSource(const std::string& object, const std::string& procedure) {
        source = FormatErrorSource(source, object, procedure);
        return *this;
    }
};

[[noreturn]] inline void raiseDivisionByZero() { throw VexilError(ErrDivisionByZero, "Division by zero"); }
[[noreturn]] inline void raiseOverflow() { throw VexilError(ErrOverflow, "Overflow"); }
[[noreturn]] inline void raiseError(long number, const std::string& description) {
    throw VexilError(number, description);
}

// Checked division: C++ does not trap on a floating-point division by zero, the editor's algorithms expect it to.
inline double checkedDiv(double a, double b) {
    if (b == 0.0) raiseDivisionByZero();
    return a / b;
}

// Runs body; a failure leaves as a VexilError with this level's trace line appended
// ("any other procedure raises the error again"). Returns what body returns.
template <class F>
auto propagate(const char* objectName, const char* procedureName, F&& body) -> decltype(body()) {
    try {
        return body();
    } catch (VexilError& e) {
        e.addSource(objectName, procedureName);
        throw;
    } catch (const std::bad_alloc&) {
        throw VexilError(ErrOutOfMemory, "Out of memory", FormatErrorSource({}, objectName, procedureName));
    } catch (const std::exception& e) {
        throw VexilError(ErrInvalidCall, e.what(), FormatErrorSource({}, objectName, procedureName));
    }
}

} // namespace vexil
