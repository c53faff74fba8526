// An interface of the agent that the editor holds and nothing calls.
#pragma once

#include <juce_core/juce_core.h>

namespace Kt {

class ISKIEditExecution
{
public:
    virtual ~ISKIEditExecution () = default;
    virtual juce::String editExecutionText1 () = 0;
    virtual juce::String editExecutionText2 () = 0;
    virtual juce::String editExecutionText3 () = 0;
    virtual juce::String editExecutionText4 () = 0;
    virtual juce::String editExecutionText5 () = 0;
};

} // namespace Kt
