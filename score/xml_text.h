// XML from a file's bytes, parsed with pugixml: it builds the tree in a loop
// whatever the depth, and expands no entity a document declares.
#pragma once

#include <pugixml.hpp>

#include <cstdint>
#include <string>
#include <vector>

namespace Score {

constexpr int deepestXml = 256;  ///< levels of elements; a score needs about ten

/**
 * Parses XML in UTF-8, UTF-16 or UTF-32 (told by its byte order mark or first
 * bytes) or Latin-1 (as its declaration says). False with a message for
 * broken XML, XML nested deeper than `deepestXml` levels, and XML that
 * declares entities of its own: a score needs none, and a parser that expands
 * them can be made to expand without end.
 */
bool parseXml (const std::uint8_t* data, std::size_t size, pugi::xml_document& document, std::string& error);

/** The same, parsed where the bytes lie: the document points into them, so they must outlive it, changed. */
bool parseXmlInPlace (std::vector<std::uint8_t>& data, pugi::xml_document& document, std::string& error);

/** A text from a file for a message: its first 60 bytes or so, cut between characters, "..." after. */
std::string shortened (const std::string& text);

/** The text right inside an element parsed by the above (CDATA too, nested elements not), blanks trimmed. */
std::string textOf (const pugi::xml_node& element);

} // namespace Score
