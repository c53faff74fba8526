// The JSON of every bundled song against docs/workbench-output.schema.json, by
// a validator of the part of JSON Schema (2020-12) that the schema uses. A
// keyword outside that part fails the check, so the schema cannot promise what
// nothing here checks.
#include <juce_core/juce_core.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <regex>
#include <set>
#include <string>

namespace {

class Validator
{
public:
    explicit Validator (const juce::var& schema) : root_ (schema) {}

    /** Every fault of `value`, one a line, each with its JSON pointer. */
    std::string check (const juce::var& value)
    {
        faults_.clear ();
        visit (root_, value, "");
        return faults_;
    }

private:
    void fault (const std::string& where, const std::string& what) { faults_ += (where.empty () ? "/" : where) + ": " + what + "\n"; }

    static bool isNumber (const juce::var& v) { return v.isInt () || v.isInt64 () || v.isDouble (); }

    static bool hasType (const juce::var& v, const juce::String& type)
    {
        if (type == "null")
            return v.isVoid ();
        if (type == "boolean")
            return v.isBool ();
        if (type == "integer")
            return v.isInt () || v.isInt64 () || (v.isDouble () && std::floor (double (v)) == double (v));
        if (type == "number")
            return isNumber (v);
        if (type == "string")
            return v.isString ();
        if (type == "array")
            return v.isArray ();
        return type == "object" && v.getDynamicObject () != nullptr;
    }

    static bool same (const juce::var& a, const juce::var& b) { return juce::JSON::toString (a, true) == juce::JSON::toString (b, true); }

    void visit (const juce::var& schema, const juce::var& v, const std::string& at)
    {
        static const std::set<juce::String> annotations = {"$schema", "$id", "$comment", "title", "description", "$defs"};
        auto* keywords = schema.getDynamicObject ();
        if (!keywords)
            return fault (at, "the schema here is no object");
        for (const auto& [key, arg] : keywords->getProperties ())
        {
            const juce::String k = key.toString ();
            if (annotations.count (k))
                continue;
            if (k == "$ref")
            {
                const auto name = arg.toString ().fromFirstOccurrenceOf ("#/$defs/", false, false);
                const auto target = root_["$defs"][juce::Identifier (name.isEmpty () ? "?" : name)];
                if (target.isVoid ())
                    fault (at, "the schema's $ref " + arg.toString ().toStdString () + " leads nowhere");
                else
                    visit (target, v, at);
            }
            else if (k == "type")
            {
                bool any = false;
                if (arg.isArray ())
                    for (const auto& t : *arg.getArray ())
                        any = any || hasType (v, t.toString ());
                else
                    any = hasType (v, arg.toString ());
                if (!any)
                    fault (at, "not of type " + juce::JSON::toString (arg, true).toStdString ());
            }
            else if (k == "const" && !same (arg, v))
                fault (at, "not " + juce::JSON::toString (arg, true).toStdString ());
            else if (k == "enum")
            {
                bool any = false;
                for (const auto& e : *arg.getArray ())
                    any = any || same (e, v);
                if (!any)
                    fault (at, "none of " + juce::JSON::toString (arg, true).toStdString ());
            }
            else if (k == "required" && v.getDynamicObject ())
            {
                for (const auto& name : *arg.getArray ())
                    if (!v.getDynamicObject ()->hasProperty (juce::Identifier (name.toString ())))
                        fault (at, "no " + name.toString ().toStdString ());
            }
            else if (k == "properties" && v.getDynamicObject ())
            {
                for (const auto& [name, sub] : arg.getDynamicObject ()->getProperties ())
                    if (v.getDynamicObject ()->hasProperty (name))
                        visit (sub, v[name], at + "/" + name.toString ().toStdString ());
            }
            else if (k == "additionalProperties" && v.getDynamicObject ())
            {
                for (const auto& [name, value] : v.getDynamicObject ()->getProperties ())
                    if (!schema["properties"].getDynamicObject () || !schema["properties"].getDynamicObject ()->hasProperty (name))
                    {
                        if (arg.isBool () && !bool (arg))
                            fault (at, "a field it may not have: " + name.toString ().toStdString ());
                        else if (!arg.isBool ())
                            visit (arg, value, at + "/" + name.toString ().toStdString ());
                    }
            }
            else if (k == "items" && v.isArray ())
            {
                for (int i = 0; i < v.size (); ++i)
                    visit (arg, v[i], at + "/" + std::to_string (i));
            }
            else if ((k == "minItems" && v.isArray () && v.size () < int (arg))
                     || (k == "maxItems" && v.isArray () && v.size () > int (arg)))
                fault (at, k.toStdString () + " " + arg.toString ().toStdString () + " against " + std::to_string (v.size ()));
            else if ((k == "minimum" && isNumber (v) && double (v) < double (arg))
                     || (k == "maximum" && isNumber (v) && double (v) > double (arg))
                     || (k == "exclusiveMinimum" && isNumber (v) && double (v) <= double (arg)))
                fault (at, k.toStdString () + " " + arg.toString ().toStdString () + " against " + v.toString ().toStdString ());
            else if (k == "pattern" && v.isString ()
                     && !std::regex_search (v.toString ().toStdString (), std::regex (arg.toString ().toStdString ())))
                fault (at, "\"" + v.toString ().toStdString () + "\" does not match " + arg.toString ().toStdString ());
            else if (k == "oneOf")
            {
                int matching = 0;
                const std::string kept = faults_;
                for (const auto& sub : *arg.getArray ())
                {
                    faults_.clear ();
                    visit (sub, v, at);
                    matching += faults_.empty ();
                }
                faults_ = kept;
                if (matching != 1)
                    fault (at, "matches " + std::to_string (matching) + " of oneOf, not 1");
            }
            else if (!std::set<juce::String> {"type", "const", "enum", "required", "properties", "additionalProperties",
                                              "items", "minItems", "maxItems", "minimum", "maximum",
                                              "exclusiveMinimum", "pattern", "oneOf"}
                          .count (k))
                fault (at, "the schema uses " + k.toStdString () + ", which this check does not know");
        }
    }

    juce::var root_;
    std::string faults_;
};

std::string run (const std::string& args)
{
    std::string out;
    if (FILE* pipe = popen ((std::string (WORKBENCH_EXE) + " " + args + " --json 2>/dev/null").c_str (), "r"))
    {
        char buf[4096];
        for (std::size_t n; (n = fread (buf, 1, sizeof buf, pipe)) > 0;)
            out.append (buf, n);
        pclose (pipe);
    }
    return out;
}

juce::var schema () { return juce::JSON::parse (juce::File (SCHEMA_FILE).loadFileAsString ()); }

TEST (OutputSchema, EveryBundledSongsJsonIsValid)
{
    Validator validator (schema ());
    std::vector<std::string> args = {"", "--all-tracks " + std::string (SONGS_DIR) + "/lantern.musicxml --undo 40",
                                     // notices of every kind, on a score with time signatures
                                     std::string (SONGS_DIR) + "/lantern.musicxml --lyrics-track Soprano --lyrics "
                                                               "'Ev-ery 夜 café 123 read[r eh d] light'"};
    for (const auto& entry : std::filesystem::directory_iterator (SONGS_DIR))
        if (entry.is_regular_file ()
            && std::set<std::string> {".mid", ".kar", ".musicxml", ".mxl"}.count (entry.path ().extension ().string ()))
            args.push_back (entry.path ().string ());
    ASSERT_GE (args.size (), 9u);
    for (const auto& a : args)
    {
        const auto doc = juce::JSON::parse (run (a));
        ASSERT_TRUE (doc.getDynamicObject ()) << "workbench " << a;
        EXPECT_EQ (validator.check (doc), "") << "workbench " << a;
    }
}

TEST (OutputSchema, DocumentsThatBreakItAreCaught)
{
    Validator validator (schema ());
    const auto good = run (std::string (SONGS_DIR) + "/lantern.musicxml --lyrics-track Soprano --lyrics 'Ev-ery 夜'");
    ASSERT_EQ (validator.check (juce::JSON::parse (good)), "");
    const struct
    {
        const char* from;
        const char* to;
        const char* fault;
    } cases[] = {
        {"\"format\": 2", "\"format\": 3", "/format: not 2"},
        {"\"format\": 2,", "", "/: no format"},
        {"\"note\": 64", "\"note\": \"64\"", "/synthesisers/0/notes/0/note: not of type"},
        {"\"rest\": false", "\"rest\": 0", "/synthesisers/0/notes/0/rest: not of type"},
        {"\"at\": \"1:1\"", "\"at\": \"1.1\"", "does not match"},
        {"\"phonemes\": [\"eh\"]", "\"phonemes\": []", "minItems 1"},
        {"\"slot\": \"Slot 1\"", "\"slot\": \"Slot 1\", \"plugin\": 1", "a field it may not have: plugin"},
        {"\"kind\": \"not-sung\"", "\"kind\": \"lost\"", "matches 0 of oneOf"},
        {"\"bpm\": 84.000", "\"bpm\": 0", "exclusiveMinimum"},
    };
    for (const auto& c : cases)
    {
        std::string bad = good;
        const auto at = bad.find (c.from);
        ASSERT_NE (at, std::string::npos) << c.from;
        bad.replace (at, std::strlen (c.from), c.to);
        const std::string faults = validator.check (juce::JSON::parse (bad));
        EXPECT_NE (faults.find (c.fault), std::string::npos) << c.from << " -> " << c.to << ":\n" << faults;
    }
    // A keyword the check does not know fails, rather than pass unchecked.
    auto s = schema ();
    s.getDynamicObject ()->setProperty ("minProperties", 1);
    EXPECT_NE (Validator (s).check (juce::JSON::parse (good)).find ("uses minProperties"), std::string::npos);
}

} // namespace
