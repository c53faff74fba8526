// A node of the project tree: types, a name, attributes, a place in time and
// children. Folders, tracks, parts and notes build on it.
#pragma once

#include "workbench/sim/attribute_store.h"
#include "workbench/sim/object.h"
#include "workbench/sim/value.h"

#include "host/project_interfaces.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Sim {

class Project;

class Node : public Object, public Steinberg::IProjectNode
{
public:
    Node (std::string kind, std::string name, std::vector<std::string> types, Project* project);
    ~Node () override;

    Steinberg::IProjectNode* face () { return this; }
    Project* project () const { return project_; }
    Node* parent () const { return parent_; }

    bool hasType (const std::string& type) const;
    void setTypes (std::vector<std::string> types) { types_ = std::move (types); }

    /** The UTF-8 name also becomes the UTF-16 name the host reports. */
    void rename (const std::string& name);
    /** A name that need not be valid UTF-16. */
    void setRawName (std::u16string name) { rawName_ = std::move (name); }
    const std::u16string& rawName () const { return rawName_; }

    // Attributes as the test sees them. Changes to a note's attributes are
    // journaled while the project has an edit open.
    bool hasAttr (const std::string& key) const { return attributes_.has (key.c_str ()); }
    std::optional<Value> attr (const std::string& key) const { return attributes_.value (key.c_str ()); }
    int64_t attrInt (const std::string& key) const;
    std::string attrText (const std::string& key) const;
    void setAttr (const std::string& key, const Value& value);
    void removeAttr (const std::string& key);
    /** The present attributes, ordered by key. */
    std::map<std::string, Value> attributes () const { return attributes_.values (); }
    /** The flags of the last setAttribute, per key. */
    std::optional<Steinberg::int32> lastFlags (const std::string& key) const;

    /** getAttribute hands strings out as borrowed pointers, without the owner flag. */
    void setBorrowedStrings (bool on) { borrowedStrings_ = on; }
    /** What hasAttribute answers for a missing key on this node (default: the project's). */
    void setMissingResult (Steinberg::tresult result) { missingResult_ = result; }

    void setMuted (bool muted) { muted_ = muted; }
    bool muted () const { return muted_; }
    void setTimes (double start, double end) { start_ = start; end_ = end; }
    void setContentStart (double contentStart) { contentStart_ = contentStart; }
    double start () const { return start_; }
    double end () const { return end_; }
    double contentStart () const { return contentStart_; }

    // Children, in the order the iterator yields them.
    template <class T>
    T& adopt (std::unique_ptr<T> child)
    {
        T& ref = *child;
        ref.parent_ = this;
        children_.push_back ({std::move (child), static_cast<Steinberg::IProjectNode*> (&ref)});
        return ref;
    }
    /** A plain node with the given types (e.g. "part" alone), to build odd shapes. */
    Node& addNode (const std::string& name, std::vector<std::string> types);
    /** A child that has the node table but refuses IProjectNode when queried. */
    Node& addStranger ();
    void addNullChild ();
    /** Takes a child out of the tree; it lives on with the project (journals may point at it). */
    void removeChild (Node& child);
    std::vector<Node*> childNodes () const;
    /** getChildren returns null instead of an iterator. */
    void setChildrenNull (bool on) { childrenNull_ = on; }

    // IProjectNode
    Steinberg::int32 PLUGIN_API isType (const char* typeName) override;
    Steinberg::tresult PLUGIN_API setAttribute (const char* key, const Steinberg::FVariant* value,
                                                Steinberg::int32 flags) override;
    Steinberg::tresult PLUGIN_API getAttribute (const char* key, Steinberg::FVariant* value) override;
    Steinberg::tresult PLUGIN_API hasAttribute (const char* key) override;
    Steinberg::tresult PLUGIN_API removeAttribute (const char* key) override;
    const Steinberg::char16* PLUGIN_API getName () override;
    Steinberg::TBool PLUGIN_API isMuted () override;
    double PLUGIN_API getStart (Steinberg::ITimeContext* context) override;
    double PLUGIN_API getEnd (Steinberg::ITimeContext* context) override;
    double PLUGIN_API getContentStart (Steinberg::ITimeContext* context) override;
    Steinberg::INodeIterator* PLUGIN_API getChildren () override;

    SIM_FUNKNOWN

protected:
    bool query (const Steinberg::TUID iid, void** obj) override;
    /** Whether changes to this node's attributes go into an open edit. */
    virtual bool journaled () const { return false; }
    /** How hand-outs of string values look (owner copy or borrowed). */
    bool borrowedStrings () const { return borrowedStrings_; }
    /** Where this node's texts are kept: its project's pool. */
    TextPool& texts () const;
    /** Sets `store`'s entry to `value`, journaled when `journal`. */
    void change (AttributeStore& store, uint32_t entry, const Slot& value, bool journal);

private:

    struct Child
    {
        std::unique_ptr<Object> owned;  // null for a null child
        Steinberg::IProjectNode* face;
    };

    std::vector<std::string> types_;
    std::u16string rawName_;
    AttributeStore attributes_;
    std::optional<Steinberg::tresult> missingResult_;
    bool borrowedStrings_ = false;
    bool muted_ = false;
    bool childrenNull_ = false;
    double start_ = 0.0, end_ = 0.0, contentStart_ = 0.0;
    std::vector<Child> children_;
    Project* project_;
    Node* parent_ = nullptr;
};

/** What a host may slip into a child list: no project node when asked. */
class Stranger : public Node
{
public:
    Stranger (const std::string& name, Project* project);

protected:
    bool query (const Steinberg::TUID iid, void** obj) override;
};

} // namespace Sim
