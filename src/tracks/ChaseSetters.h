// The chase rule of a camera or a group as the engine stores it: one setter and getter per value, each
// sending to the camera's or the group's operation by the entity's kind (2 camera, 1 group; any other
// kind does nothing and answers zeros). The editor only stores rules; the engine plays them.
#pragma once
#include <array>
#include <string>

namespace vexil {

// Engine codes of the chase types, in the order of the dialog's list.
enum ChaseCode : int {
    NO_CHASE = 0,
    CHASE_LOCATION = 2,
    CHASE_PRECISE = 3,
    CHASE_FLEXIBLE = 4,
    CHASE_PHYSICS = 9,
    CHASE_TRACK = 135,
    TRACK_AIRPLANE = 136,
};
// List index 0..6 of a code; unknown codes are index 0.
int ChaseListIndex(int code);
int ChaseCodeOfIndex(int index);

struct ChaseTarget {
    int kind = 0;   // 2 camera, 1 group
    int handle = 0;

    bool Valid() const { return kind == 1 || kind == 2; }

    void SetChaseType(int code) const;
    int ChaseType() const;
    void SetNameToChase(const std::string& name) const;
    std::string NameToChase() const;
    void SetChaseOffset(const std::array<double, 3>& offset) const;
    std::array<double, 3> ChaseOffset() const;
    void SetChaseDistance(double d) const;
    double ChaseDistance() const;
    void SetSoftness(double s) const;
    double Softness() const;
    void SetTrackToChase(const std::string& track) const;
    int TrackHandle() const;
    void SetTrackOffset(const std::array<double, 3>& offset) const;
    std::array<double, 3> TrackOffset() const;
    void SetSpeed(double s) const;
    double Speed() const;
    // Direction normalised (unless zero) and multiplied by the magnitude: a zero direction is no force.
    void SetPhysicForce(const std::array<double, 3>& direction, double magnitude) const;
    std::array<double, 3> Force() const;
    void SetPhysicFriction(double f) const;
    double Friction() const;
    void SetPhysicElasticity(double e) const;
    double Elasticity() const;
    void SetPhysicMaxSpeed(double s) const;
    double MaxSpeed() const;
};

} // namespace vexil
