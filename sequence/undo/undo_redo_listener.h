// Told of every undo and redo that the host sends to an edit step.
#pragma once

namespace Zelmor {

class ISequenceEditStepUndoRedoListener
{
public:
    virtual ~ISequenceEditStepUndoRedoListener () = default;
    virtual void willUndo () = 0;
    virtual void didUndo () = 0;
    virtual void willRedo () = 0;
    virtual void didRedo () = 0;
};

} // namespace Zelmor
