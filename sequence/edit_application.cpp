#include "sequence/edit_application.h"

#include <cstdint>
#include <utility>

namespace Zelmor {

namespace {

// One edit as it acts in the chosen direction.
struct Step {
    bool insert;
    uint64_t index;
    const SequenceNote* note;
};

// The edits in the order in which they act, or with `lastFirst` in the reverse of it.
template <typename Visit>
void forEachStep(const NoteEditList& edits, EditDirection direction, Visit&& visit, bool lastFirst = false)
{
    const bool forwards = direction == EditDirection::forwards;
    auto one = [&](const NoteEdit& edit) {
        if (edit.op != kNoteInsert && edit.op != kNoteRemove)
            return;
        visit(Step{(edit.op == kNoteInsert) == forwards, edit.index, &edit.note});
    };
    if (forwards != lastFirst) {
        for (const NoteEdit& edit : edits)
            one(edit);
    } else {
        for (auto it = edits.rbegin(); it != edits.rend(); ++it)
            one(*it);
    }
}

// What a script does to a list of a given size, found without touching a note.
struct Plan {
    uint64_t shifts = 0;    // notes moved when each edit shifts the list's tail
    uint64_t finalSize = 0;
    bool fromBack = true;   // each position at or before the one of the edit before it
    bool fromFront = true;  // each position at or behind it
};

Plan planEdits(uint64_t oldSize, const NoteEditList& edits, EditDirection direction)
{
    Plan plan;
    uint64_t size = oldSize;
    uint64_t untouched = oldSize;   // from the back: the head of the old list not yet passed
    uint64_t finished = 0;          // from the front: the length of the head already final
    uint64_t taken = 0;             // from the front: old notes used up
    forEachStep(edits, direction, [&](const Step& step) {
        if (step.insert ? step.index > size : step.index >= size) {
            // Skipped: only the edit-by-edit run reproduces that.
            plan.fromBack = plan.fromFront = false;
            return;
        }
        plan.shifts += size - step.index - (step.insert ? 0 : 1);
        size = step.insert ? size + 1 : size - 1;

        if (step.insert ? step.index > untouched : step.index >= untouched)
            plan.fromBack = false;
        untouched = step.index;

        if (!plan.fromFront)
            return;
        const uint64_t left = oldSize - taken;
        if (step.index < finished || (step.insert ? step.index - finished > left : step.index - finished >= left)) {
            plan.fromFront = false;
            return;
        }
        taken += step.index - finished + (step.insert ? 0 : 1);
        finished = step.index + (step.insert ? 1 : 0);
    });
    plan.finalSize = size;
    return plan;
}

void runOneByOne(std::vector<SequenceNote>& notes, const NoteEditList& edits, EditDirection direction)
{
    forEachStep(edits, direction, [&](const Step& step) {
        if (step.insert) {
            if (step.index <= notes.size())
                notes.insert(notes.begin() + static_cast<std::ptrdiff_t>(step.index), *step.note);
        } else if (step.index < notes.size()) {
            notes.erase(notes.begin() + static_cast<std::ptrdiff_t>(step.index));
        }
    });
}

// Positions fall from edit to edit, and an edit leaves what lies before its
// position as the old list had it: each position is one of the old list, and
// taken from the last edit to the first they rise, so the new list fills
// from its start. Inserts at one position come out last acted first, which
// is the order they end in.
void runFromBack(std::vector<SequenceNote>& notes, const NoteEditList& edits, EditDirection direction,
                 std::size_t finalSize)
{
    std::vector<SequenceNote> out;
    out.reserve(finalSize);
    std::size_t taken = 0;
    forEachStep(
        edits, direction,
        [&](const Step& step) {
            while (taken < step.index)
                out.push_back(std::move(notes[taken++]));
            if (step.insert)
                out.push_back(*step.note);
            else
                ++taken;
        },
        true);
    while (taken < notes.size())
        out.push_back(std::move(notes[taken++]));
    notes.swap(out);
}

// Positions rise from edit to edit: what lies before an edit's position is
// final, so the new list fills from its start.
void runFromFront(std::vector<SequenceNote>& notes, const NoteEditList& edits, EditDirection direction,
                  std::size_t finalSize)
{
    std::vector<SequenceNote> out;
    out.reserve(finalSize);
    std::size_t taken = 0;
    forEachStep(edits, direction, [&](const Step& step) {
        while (out.size() < step.index)
            out.push_back(std::move(notes[taken++]));
        if (step.insert)
            out.push_back(*step.note);
        else
            ++taken;
    });
    while (taken < notes.size())
        out.push_back(std::move(notes[taken++]));
    notes.swap(out);
}

} // namespace

void runEdits(std::vector<SequenceNote>& notes, const NoteEditList& edits, EditDirection direction)
{
    const Plan plan = planEdits(notes.size(), edits, direction);
    // A few edits near the end shift little and need no second list.
    const bool shiftsAreCheap = plan.shifts <= notes.size() + plan.finalSize;
    if (shiftsAreCheap || (!plan.fromBack && !plan.fromFront))
        runOneByOne(notes, edits, direction);
    else if (plan.fromBack)
        runFromBack(notes, edits, direction, static_cast<std::size_t>(plan.finalSize));
    else
        runFromFront(notes, edits, direction, static_cast<std::size_t>(plan.finalSize));
}

} // namespace Zelmor
