// Process-wide accounting of the live simulated objects, so that a test can
// find the host objects that the agent leaked or released once too often.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace Sim {

class Object;

struct ObjectState
{
    std::string kind;
    std::string name;
    int32_t count = 0;
    int32_t expected = 0;
    int32_t overReleases = 0;
    bool alive = true;  ///< false: the object is gone and this is what it left behind

    /** "IdleRegistry 'idle': count 2, expected 1 (leaked 1)" and the like. */
    std::string describe () const;
};

class Tracker
{
public:
    /** Every live object, in order of creation. */
    static std::vector<ObjectState> live ();
    static std::size_t liveCount ();
    /**
     * Every live object whose count differs from what its owner expects or
     * that was released below its owner's share, plus whatever objects were
     * destroyed in such a state or over-released after their last release.
     */
    static std::vector<ObjectState> imbalances ();
    /** The imbalances, one a line; empty when all is balanced. */
    static std::string report ();
    /** Forgets recorded events and frees released hand-outs. */
    static void reset ();

    // For Object only.
    static void enter (Object* object);
    static void leave (Object* object);
    static void retire (Object* object);
};

} // namespace Sim
