#include "score/xml_text.h"

#include "score/text_encoding.h"

#include <algorithm>
#include <cstring>

namespace Score {

namespace {

/** How deep the elements go, found by pugixml's walker, which keeps its place in a loop, not on the stack. */
class Depth : public pugi::xml_tree_walker
{
public:
    bool for_each (pugi::xml_node& node) override
    {
        if (node.type () == pugi::node_element)
            most = std::max (most, depth () + 1);
        return most <= deepestXml;  // no need to walk on
    }
    int most = 0;
};

std::string brokenAt (const pugi::xml_parse_result& result, const std::uint8_t* data, std::size_t size)
{
    std::string why = "broken XML: " + std::string (result.description ());
    // The offset counts bytes of the text as parsed, which are the file's own only in UTF-8.
    if (result.encoding == pugi::encoding_utf8 && result.offset >= 0 && static_cast<std::size_t> (result.offset) <= size)
        why += " (line " + std::to_string (1 + std::count (data, data + result.offset, '\n')) + ")";
    return why;
}

// Processing instructions and comments are left out, the document type is kept to look at, and an
// element's text is kept in the element, not in a node of its own: a score's tree takes a third less.
constexpr unsigned options = pugi::parse_default | pugi::parse_doctype | pugi::parse_embed_pcdata;

bool checked (const pugi::xml_parse_result& result, const std::uint8_t* data, std::size_t size,
              pugi::xml_document& document, std::string& error)
{
    // A tree cut short still shows how deep it went: a file left unclosed thousands of levels down says so.
    Depth depth;
    document.traverse (depth);
    if (depth.most > deepestXml)
    {
        error = "XML nested deeper than " + std::to_string (deepestXml) + " levels";
        return false;
    }
    if (!result)
    {
        error = brokenAt (result, data, size);
        return false;
    }
    for (auto node : document.children ())
        if (node.type () == pugi::node_doctype && std::strstr (node.value (), "<!ENTITY"))
        {
            error = "the XML declares entities of its own, which no score needs and this reader does not expand";
            return false;
        }
    return true;
}

} // namespace

bool parseXml (const std::uint8_t* data, std::size_t size, pugi::xml_document& document, std::string& error)
{
    return checked (document.load_buffer (data, size, options), data, size, document, error);
}

bool parseXmlInPlace (std::vector<std::uint8_t>& data, pugi::xml_document& document, std::string& error)
{
    // The line of a fault is counted in the bytes as parsed, which may have lost a carriage return.
    return checked (document.load_buffer_inplace (data.data (), data.size (), options), data.data (), data.size (),
                    document, error);
}

std::string shortened (const std::string& text)
{
    constexpr std::size_t most = 60;
    if (text.size () <= most)
        return toUtf8 (text);
    std::size_t cut = most;
    while (cut > 0 && (static_cast<unsigned char> (text[cut]) & 0xC0) == 0x80)
        --cut;  // not inside a character
    return toUtf8 (text.substr (0, cut)) + "...";
}

std::string textOf (const pugi::xml_node& element)
{
    std::string text = element.value ();  // the first text, when it comes before any element
    for (auto c : element.children ())
        if (c.type () == pugi::node_pcdata || c.type () == pugi::node_cdata)
            text += c.value ();
    return trimBlanks (text);
}

} // namespace Score
