// The ordered record of the calls that reach simulated objects, with counters,
// so that tests can check what the agent called and in which order.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

namespace Sim {

/** Which border a call crossed. */
enum class Side
{
    Host,    ///< the agent called a host object (services, projects, nodes, ...)
    Plugin,  ///< the agent called a synthesiser plug-in
    Agent,   ///< the simulated host called the agent (driver helpers)
};

struct CallEntry
{
    Side side;
    std::string call;    ///< "Interface::operation", e.g. "IIdleHandlerRegistry::removeHandler"
    std::string object;  ///< kind and name of the receiver, for readable reports
};

/** Process-wide: the module under test lives in one process with one host. */
class CallLog
{
public:
    /** `call` must be a string literal (its address keys the counters). */
    static void record (Side side, const char* call, const std::string& object = {});
    /** FUnknown traffic is counted but kept out of the ordered list: it would drown it. */
    static void countOnly (Side side, const char* call);

    static std::vector<CallEntry> entries ();
    static std::vector<std::string> calls ();
    /** The ordered calls restricted to the given names. */
    static std::vector<std::string> only (std::initializer_list<const char*> names);
    /** As `only`, each call followed by a blank and the name of its receiver. */
    static std::vector<std::string> trace (std::initializer_list<const char*> names);
    /** The ordered calls whose name starts with one of the prefixes. */
    static std::vector<std::string> startingWith (std::initializer_list<const char*> prefixes);

    static int64_t count (const std::string& call);
    static int64_t hostCalls ();
    static int64_t pluginCalls ();

    static void clear ();
    /** Off keeps the counters but not the ordered list (long benchmark runs). */
    static void setRecording (bool on);
};

} // namespace Sim
