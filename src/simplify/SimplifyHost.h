// The outlets of SurfSimpli toward its caller: a progress bar, a status label,
// message boxes, the once-per-contraction yield, and the diagnostic drawing surface.
// No Qt here: the workbench window implements these small interfaces.
#pragma once
#include <string>

namespace simplify {

// The progress object given to Reduce; may be absent (nullptr), then nothing concerns it.
class SimplifyProgress {
public:
    virtual ~SimplifyProgress() = default;
    virtual void setMaximum(int value) = 0;
    virtual void setMinimum(int value) = 0;
    virtual void setValue(int value) = 0;
};

// The status label object given to Reduce; may be absent (nullptr).
class SimplifyStatus {
public:
    virtual ~SimplifyStatus() = default;
    virtual void setText(const std::string& text) = 0;
};

// What the object needs of its window for the whole of its life: message boxes and letting
// pending interface events through once per contraction. May be absent.
class SimplifyHost {
public:
    virtual ~SimplifyHost() = default;
    virtual void messageBox(const std::string& text) = 0;
    virtual void yieldEvents() = 0;
    // Asked right after each yieldEvents: true stops the run after the contraction just made
    // (a Cancel button or Escape handled during the yield sets it). Reduce then builds no output
    // and answers 0, and the next run starts again from the copy.
    virtual bool cancelRequested() { return false; }
};

// Locale texts set by SetLocaleMessages (strings 618 to 623 of the table); an empty text means
// "not set", and the built-in English default is used.
struct SimplifyMessages {
    std::string simplifying;      // default "Simplyfing" (sic, kept)
    std::string cantSimplify;     // default "Can't simplify further!"
    std::string improperTexture;  // default "Improper Texture coordinates found. Defaulting!"
    std::string invalidTri;       // default "Invalid Tri - EvaluatePlaneOfAffectedTris"
    std::string extracting;       // default "Extracting Triangles"
    std::string building;         // default "Building Output"
};

// The seven pens of the diagnostic drawing, in the order of making.
enum class SimpPen { White1 = 0, Red1, Blue1, Red2, Green2, Blue2, Yellow2 };

// The paintable area given by SetPaintableAreaDC: projection of a mesh position to the
// view, and two drawing primitives. The workbench implements it over its view.
class SimplifyCanvas {
public:
    virtual ~SimplifyCanvas() = default;
    // Projects a position to view coordinates; false if it cannot be projected.
    virtual bool project(const double xyz[3], double& x, double& y) = 0;
    virtual void drawLine(SimpPen pen, double x1, double y1, double x2, double y2) = 0;
    virtual void drawCircle(SimpPen pen, double x, double y, double radius) = 0;
};

} // namespace simplify
