// The XML parser for scores, chosen on our 2,000-note score: the toolkit's
// reader that scores were parsed with, expat (streaming) and pugixml (a tree
// in one pass), each turning the same bytes into what a reader can walk.
#include "songs/generator/compose.h"

#include <benchmark/benchmark.h>
#include <expat.h>
#include <juce_core/juce_core.h>
#include <pugixml.hpp>

#include <string>
#include <vector>

namespace {

void Toolkit (benchmark::State& state)
{
    const std::string xml = Songs::twoThousand ();
    for (auto _ : state)
    {
        juce::XmlDocument document (juce::String::createStringFromData (xml.data (), static_cast<int> (xml.size ())));
        auto root = document.getDocumentElement ();
        benchmark::DoNotOptimize (root.get ());
    }
    state.SetBytesProcessed (static_cast<std::int64_t> (state.iterations () * xml.size ()));
}
BENCHMARK (Toolkit)->Unit (benchmark::kMillisecond);

/** Expat's events turned into a flat tree of names, attributes and texts, as a reader would keep them. */
struct ExpatTree
{
    struct Node
    {
        std::string name, text;
        std::vector<std::pair<std::string, std::string>> attributes;
        int parent = -1;
    };
    std::vector<Node> nodes;
    int open = -1;
};

void Expat (benchmark::State& state)
{
    const std::string xml = Songs::twoThousand ();
    const bool tree = state.range (0) == 1;
    for (auto _ : state)
    {
        XML_Parser parser = XML_ParserCreate (nullptr);
        ExpatTree t;
        if (tree)
        {
            XML_SetUserData (parser, &t);
            XML_SetElementHandler (
                parser,
                [] (void* data, const XML_Char* name, const XML_Char** attributes) {
                    auto& t = *static_cast<ExpatTree*> (data);
                    t.nodes.push_back ({name, {}, {}, t.open});
                    for (int i = 0; attributes[i]; i += 2)
                        t.nodes.back ().attributes.emplace_back (attributes[i], attributes[i + 1]);
                    t.open = static_cast<int> (t.nodes.size () - 1);
                },
                [] (void* data, const XML_Char*) {
                    auto& t = *static_cast<ExpatTree*> (data);
                    t.open = t.nodes[static_cast<std::size_t> (t.open)].parent;
                });
            XML_SetCharacterDataHandler (parser, [] (void* data, const XML_Char* s, int length) {
                auto& t = *static_cast<ExpatTree*> (data);
                if (t.open >= 0)
                    t.nodes[static_cast<std::size_t> (t.open)].text.append (s, static_cast<std::size_t> (length));
            });
        }
        if (XML_Parse (parser, xml.data (), static_cast<int> (xml.size ()), 1) != XML_STATUS_OK)
            state.SkipWithError ("expat refused the score");
        benchmark::DoNotOptimize (t.nodes.data ());
        XML_ParserFree (parser);
    }
    state.SetBytesProcessed (static_cast<std::int64_t> (state.iterations () * xml.size ()));
}
// 0: the parse alone, events to no handler (expat's least); 1: a tree built from them.
BENCHMARK (Expat)->Arg (0)->Arg (1)->Unit (benchmark::kMillisecond);

void Pugixml (benchmark::State& state)
{
    const std::string xml = Songs::twoThousand ();
    for (auto _ : state)
    {
        pugi::xml_document document;
        if (!document.load_buffer (xml.data (), xml.size (),
                                   pugi::parse_default | pugi::parse_doctype | pugi::parse_embed_pcdata))
            state.SkipWithError ("pugixml refused the score");
        benchmark::DoNotOptimize (document.first_child ().internal_object ());
    }
    state.SetBytesProcessed (static_cast<std::int64_t> (state.iterations () * xml.size ()));
}
BENCHMARK (Pugixml)->Unit (benchmark::kMillisecond);

} // namespace
